#include "apps/cli/signals.h"

#include "platform/platform.h"

#include <atomic>

namespace lumetra {
namespace {

std::atomic<int> caught{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may touch it");

} // namespace

void catchSignals() {
    onStopRequest([](int number) { caught = number; });
}

int caughtSignal() { return caught; }

void throwIfInterrupted() {
    if (caught != 0)
        throw Interrupted();
}

} // namespace lumetra
