#include "apps/common/shell.h"

#include "platform/platform.h"

namespace lumetra {

QString shellLine(const QStringList& words) {
    QStringList quoted;
    for (const QString& word : words)
        quoted << quotedForShell(word);
    return quoted.join(QLatin1Char(' '));
}

} // namespace lumetra
