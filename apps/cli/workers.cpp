#include "apps/cli/workers.h"

#include "apps/cli/signals.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace lumetra {
namespace {

/// What the threads share.
struct Pieces {
    std::size_t count;
    std::atomic<std::size_t> next{0};
};

/// Takes one piece after another; where one fails, no thread takes more.
void takePieces(Pieces& pieces,
                const std::function<std::function<void(std::size_t)>()>& makeWorker) {
    try {
        const auto work = makeWorker();
        for (std::size_t i = pieces.next++; i < pieces.count && !caughtSignal(); i = pieces.next++)
            work(i);
    } catch (const Interrupted&) {
        pieces.next = pieces.count;
    } catch (...) {
        pieces.next = pieces.count;
        throw;
    }
}

} // namespace

void runWorkers(int jobs, std::size_t count,
                const std::function<std::function<void(std::size_t)>()>& makeWorker,
                const std::function<void()>& tick) {
    constexpr std::chrono::milliseconds period(100);
    Pieces pieces{count, {}};
    const auto threads = std::min(static_cast<std::size_t>(std::max(jobs, 1)), count);
    std::vector<std::future<void>> workers; // whose end waits for the threads
    for (std::size_t i = 0; i < threads; ++i)
        workers.push_back(std::async(std::launch::async, [&] { takePieces(pieces, makeWorker); }));
    for (const std::future<void>& worker : workers)
        while (worker.wait_for(period) != std::future_status::ready)
            tick();
    for (std::future<void>& worker : workers)
        worker.get();
}

int jobsOfEach(int jobs, std::size_t pieces) {
    return std::max(1, jobs / static_cast<int>(std::clamp<std::size_t>(pieces, 1, 1024)));
}

int defaultJobs() { return static_cast<int>(std::max(std::thread::hardware_concurrency(), 1U)); }

} // namespace lumetra
