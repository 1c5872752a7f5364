#include "apps/cli/sequence.h"

#include "apps/cli/signals.h"

#include <chrono>

namespace lumetra {

void Sequence::waitFor(std::size_t number) {
    constexpr std::chrono::milliseconds period(100); // a signal wakes nobody
    std::unique_lock lock(mutex_);
    while (!isAbandoned_ && next_ != number) {
        throwIfInterrupted();
        passed_.wait_for(lock, period);
    }
    if (isAbandoned_)
        throw Interrupted();
}

void Sequence::pass(std::size_t number, const std::function<void()>& work) {
    waitFor(number);
    try {
        work();
    } catch (...) {
        abandon();
        throw;
    }
    const std::lock_guard lock(mutex_);
    ++next_;
    passed_.notify_all();
}

void Sequence::abandon() {
    const std::lock_guard lock(mutex_);
    isAbandoned_ = true;
    passed_.notify_all();
}

} // namespace lumetra
