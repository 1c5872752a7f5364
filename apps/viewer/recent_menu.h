// The files that were opened last.
#pragma once

#include <QFileInfo>
#include <QMenu>
#include <QSettings>

namespace lumetra {

/// Lists what was opened, newest first, and keeps it from run to run.
class RecentMenu : public QMenu {
    Q_OBJECT
public:
    explicit RecentMenu(QWidget* parent = nullptr) : QMenu(parent) { showEntries(); }

    /// Puts files that were opened together at the top.
    void add(const QStringList& files) {
        constexpr int most = 10;
        QStringList entries = keptEntries();
        const QString entry = files.join(QLatin1Char('\n'));
        entries.removeAll(entry);
        entries.prepend(entry);
        QSettings().setValue(QStringLiteral("recent"), QStringList(entries.mid(0, most)));
        showEntries();
    }

signals:
    void chosen(const QStringList& files);

private:
    /// Of each entry its files, with line ends between them.
    static QStringList keptEntries() {
        return QSettings().value(QStringLiteral("recent")).toStringList();
    }

    void showEntries() {
        clear();
        for (const QString& entry : keptEntries()) {
            const QStringList files = entry.split(QLatin1Char('\n'));
            QStringList names;
            for (const QString& file : files)
                names << QFileInfo(file).fileName().replace(QLatin1Char('&'), QStringLiteral("&&"));
            addAction(names.join(QStringLiteral(", ")), this,
                      [this, files] { emit chosen(files); });
        }
        setEnabled(!isEmpty());
    }
};

} // namespace lumetra
