#include "apps/cli/render_field.h"

#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/error.h"

#include <QElapsedTimer>

namespace lumetra {

QString renderField(const Field& field, const QJsonObject& work, FileRenderer& renderer,
                    BatchLog& log) {
    QElapsedTimer timer;
    timer.start();
    try {
        if (!field.problem.isEmpty())
            throw Error(field.problem);
        QString size = renderer.render(field.job);
        log.addDone(work, timer.elapsed());
        return size;
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        log.addFailed(work, timer.elapsed(), currentErrorText());
        throw;
    }
}

} // namespace lumetra
