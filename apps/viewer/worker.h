// Work that must not keep the window waiting.
#pragma once

#include "apps/common/error.h"

#include <QObject>
#include <QThreadPool>

#include <functional>

namespace lumetra {

/// Does one piece of work after another in a thread of its own.
class Worker : public QObject {
    Q_OBJECT
public:
    Worker() { pool_.setMaxThreadCount(1); }

    /// Waits for the work that has begun.
    ~Worker() override { pool_.waitForDone(); }

    /// What is to be done about a result, in the thread of this object.
    using Outcome = std::function<void()>;

    /// Runs `work` in the other thread, then what it returns here. Work that throws ends with
    /// `failed` instead.
    void run(const std::function<Outcome()>& work) {
        ++jobs_;
        pool_.start([this, work] {
            Outcome outcome;
            try {
                outcome = work();
            } catch (...) {
                outcome = [this, reason = currentExceptionText()] { emit failed(reason); };
            }
            const auto finish = [this, outcome] {
                --jobs_;
                outcome();
            };
            QMetaObject::invokeMethod(this, finish, Qt::QueuedConnection);
        });
    }

    /// Whether there is work whose outcome is not known here yet.
    bool isBusy() const { return jobs_ > 0; }

signals:
    void failed(const QString& reason);

private:
    int jobs_ = 0;
    QThreadPool pool_;
};

} // namespace lumetra
