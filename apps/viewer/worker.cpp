#include "apps/viewer/worker.h"

#include "apps/common/error.h"

namespace lumetra {

Worker::Worker() { pool_.setMaxThreadCount(1); }

Worker::~Worker() { pool_.waitForDone(); }

void Worker::run(const std::function<Outcome()>& work) {
    ++jobs_;
    pool_.start([this, work] {
        Outcome outcome;
        try {
            outcome = work();
        } catch (...) {
            outcome = [this, reason = currentExceptionText()] { emit failed(reason); };
        }
        QMetaObject::invokeMethod(
            this,
            [this, outcome] {
                --jobs_;
                outcome();
            },
            Qt::QueuedConnection);
    });
}

} // namespace lumetra
