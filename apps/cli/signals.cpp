#include "apps/cli/signals.h"

#include <atomic>
#include <csignal>

namespace lumetra {
namespace {

std::atomic<int> caught{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may touch it");

} // namespace

void catchSignals() {
    struct sigaction action = {};
    action.sa_handler = [](int number) { caught = number; };
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

int caughtSignal() { return caught; }

void throwIfInterrupted() {
    if (caught != 0)
        throw Interrupted();
}

} // namespace lumetra
