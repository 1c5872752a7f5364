// A place where one thread leaves things and another takes the newest.
#pragma once

#include <mutex>
#include <utility>

namespace lumetra {

/// Holds the newest of what is put into it. Three objects go round between the two threads, so
/// nobody waits for the other's work, and the memory in them is used again and again.
template<class T>
class Mailbox {
public:
    /// Leaves the content of `mine` and gives something older in exchange, to be filled anew.
    /// @return Whether what lay here had not been taken, and is lost.
    bool put(T& mine) {
        const std::lock_guard lock(mutex_);
        std::swap(mine, waiting_);
        return std::exchange(isFresh_, true);
    }

    /// Takes what lies here, and leaves what `mine` held to be filled anew.
    /// @return False, with `mine` unchanged, if nothing has come since the last call.
    bool take(T& mine) {
        const std::lock_guard lock(mutex_);
        if (!isFresh_)
            return false;
        std::swap(mine, waiting_);
        isFresh_ = false;
        return true;
    }

private:
    std::mutex mutex_;
    T waiting_;
    bool isFresh_ = false;
};

} // namespace lumetra
