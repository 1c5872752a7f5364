// The user's own dyes.
#pragma once

#include <QColor>
#include <QDialog>
#include <QMap>

class QHBoxLayout;
class QLabel;
class QTableWidget;

namespace apps {

/// Writes custom dyes as the library does, which says nothing of a file that cannot be written.
/// @throws Failure with the file's name.
void writeCustomDyes(const QMap<QString, QColor>& dyes, const QString& file);

/// Adds, changes, removes, loads and saves dyes.
class CustomDyesDialog : public QDialog {
    Q_OBJECT
public:
    explicit CustomDyesDialog(const QMap<QString, QColor>& dyes, QWidget* parent = nullptr);

    /// The dyes as they are in the table.
    QMap<QString, QColor> dyes() const;

    void add(const QString& name, const QColor& colour);
    void removeCurrent();
    void load(const QString& file);
    void save(const QString& file);

    /// What was said last.
    QString message() const;

signals:
    void changed();

private:
    enum Column { nameColumn, colourColumn, columns };

    void addButtons(QHBoxLayout& row);
    void setDyes(const QMap<QString, QColor>& dyes);
    void addRow(const QString& name, const QColor& colour);
    void chooseColour(int row);
    void checkNames();
    void say(const QString& words);

    QTableWidget* table_;
    QLabel* message_;
};

} // namespace apps
