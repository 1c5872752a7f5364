// Numbered pieces of work, one after another.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>

namespace lumetra {

/// Lets threads do numbered pieces one at a time, in the order of their numbers from 0 on.
class Sequence {
public:
    /// Waits for its turn, and works. If a piece throws, those after it will not be done.
    /// @throws Interrupted if a signal has come, or a piece before will not be done.
    void pass(std::size_t number, const std::function<void()>& work);

    /// Tells that a piece will not be done.
    void abandon();

private:
    void waitFor(std::size_t number);

    std::mutex mutex_;
    std::condition_variable passed_;
    std::size_t next_ = 0;
    bool isAbandoned_ = false;
};

} // namespace lumetra
