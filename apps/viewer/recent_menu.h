// The files that were opened last.
#pragma once

#include <QMenu>
#include <QStringList>

namespace lumetra {

/// Lists what was opened, newest first, and keeps it from run to run.
class RecentMenu : public QMenu {
    Q_OBJECT
public:
    explicit RecentMenu(QWidget* parent = nullptr);

    /// Puts files that were opened together at the top.
    void add(const QStringList& files);

signals:
    void chosen(const QStringList& files);

private:
    void showEntries();
};

} // namespace lumetra
