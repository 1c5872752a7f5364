#include "apps/viewer/recent_menu.h"

#include <QFileInfo>
#include <QSettings>

namespace lumetra {
namespace {

const QString recentKey = QStringLiteral("recent"); // an entry's files with line ends between them
constexpr QChar lineEnd = QLatin1Char('\n');

} // namespace

RecentMenu::RecentMenu(QWidget* parent) : QMenu(parent) { showEntries(); }

void RecentMenu::add(const QStringList& files) {
    constexpr int most = 10;
    QSettings kept;
    QStringList entries = kept.value(recentKey).toStringList();
    const QString entry = files.join(lineEnd);
    entries.removeAll(entry);
    entries.prepend(entry);
    kept.setValue(recentKey, QStringList(entries.mid(0, most)));
    showEntries();
}

void RecentMenu::showEntries() {
    clear();
    for (const QString& entry : QSettings().value(recentKey).toStringList()) {
        const QStringList files = entry.split(lineEnd);
        QStringList names;
        for (const QString& file : files)
            names << QFileInfo(file).fileName().replace(QLatin1Char('&'), QStringLiteral("&&"));
        addAction(names.join(QStringLiteral(", ")), this, [this, files] { emit chosen(files); });
    }
    setEnabled(!isEmpty());
}

} // namespace lumetra
