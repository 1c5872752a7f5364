#include "apps/cli/print.h"

#include "apps/cli/options.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/atomic_file.h"
#include "imageio/file_error.h"

namespace lumetra {

void print(const QString& text) { writeBytes(QStringLiteral("-"), text.toUtf8(), Existing::keep); }

QString currentErrorText() {
    try {
        throw;
    } catch (const FileExistsError&) {
        return currentExceptionText() + QStringLiteral("; --overwrite replaces it");
    } catch (...) {
        return currentExceptionText();
    }
}

void reportImage(const OutputOptions& output, const QString& size) {
    if (!output.quiet && output.file != QLatin1String("-"))
        printError(QStringLiteral("%1: %2").arg(output.file, size));
}

} // namespace lumetra
