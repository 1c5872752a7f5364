#include "apps/cli/render_field.h"

#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "imageio/file_error.h"

#include <QElapsedTimer>

namespace lumetra {

RenderedFile renderField(const Field& field, const QJsonObject& work, FileRenderer& renderer,
                         BatchLog& log) {
    QElapsedTimer timer;
    timer.start();
    try {
        if (!field.problem.isEmpty())
            throw Error(field.problem);
        RenderedFile rendered = renderer.render(field.job);
        log.addDone(withLevels(work, rendered.channels), timer.elapsed());
        return rendered;
    } catch (const Interrupted&) {
        throw;
    } catch (const FileExistsError&) {
        throw;
    } catch (...) {
        log.addFailed(work, timer.elapsed(), currentErrorText());
        throw;
    }
}

} // namespace lumetra
