#include "apps/common/shell.h"

#include <QRegularExpression>

namespace lumetra {

QString quotedForShell(const QString& word) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9_@%+=:,./-]+$"));
    if (plain.match(word).hasMatch() && !word.endsWith(QLatin1Char('\n')))
        return word;
    QString inside = word;
    inside.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + inside + QLatin1Char('\'');
}

QString shellLine(const QStringList& words) {
    QStringList quoted;
    for (const QString& word : words)
        quoted << quotedForShell(word);
    return quoted.join(QLatin1Char(' '));
}

} // namespace lumetra
