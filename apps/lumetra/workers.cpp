#include "apps/lumetra/workers.h"

#include "apps/lumetra/signals.h"

#include <QRunnable>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <utility>

namespace apps {
namespace {

/// What the threads share.
struct Pieces {
    std::size_t count;
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr error;

    void keepError() {
        const std::lock_guard lock(mutex);
        error = error ? error : std::current_exception();
        next = count;
    }
};

class Worker : public QRunnable {
public:
    Worker(Pieces& pieces, const std::function<std::function<void(std::size_t)>()>& makeWorker)
        : pieces_(pieces), makeWorker_(makeWorker) {}

    void run() override {
        try {
            const auto work = makeWorker_();
            for (std::size_t i = pieces_.next++; i < pieces_.count && !caughtSignal();
                 i = pieces_.next++)
                work(i);
        } catch (const Interrupted&) {
            pieces_.next = pieces_.count;
        } catch (...) {
            pieces_.keepError();
        }
    }

private:
    Pieces& pieces_;
    const std::function<std::function<void(std::size_t)>()>& makeWorker_;
};

} // namespace

void runWorkers(int jobs, std::size_t count,
                const std::function<std::function<void(std::size_t)>()>& makeWorker,
                const std::function<void()>& tick) {
    constexpr int period = 100; // milliseconds
    Pieces pieces{count, {}, {}, {}};
    {
        QThreadPool pool;
        const int threads =
            static_cast<int>(std::min<std::size_t>(static_cast<std::size_t>(jobs), count));
        pool.setMaxThreadCount(std::max(threads, 1));
        for (int i = 0; i < threads; ++i)
            pool.start(new Worker(pieces, makeWorker)); // the pool owns it
        while (!pool.waitForDone(period))
            tick();
    }
    if (pieces.error)
        std::rethrow_exception(pieces.error);
}

int defaultJobs() { return std::max(QThread::idealThreadCount(), 1); }

} // namespace apps
