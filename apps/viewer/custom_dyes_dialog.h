// The user's custom dyes in a dialog.
#pragma once

#include "apps/common/custom_dyes.h"

#include <QColor>
#include <QDialog>

#include <functional>

class QHBoxLayout;
class QLabel;
class QTableWidget;

namespace lumetra {

/// Adds, changes, removes, loads and saves dyes.
class CustomDyesDialog : public QDialog {
    Q_OBJECT
public:
    explicit CustomDyesDialog(const CustomDyes& dyes, QWidget* parent = nullptr);

    /// The dyes as they are in the table.
    CustomDyes dyes() const;

    void add(const QString& name, const QColor& colour);
    void removeCurrent();
    void load(const QString& file);
    void save(const QString& file);

signals:
    void changed();

private:
    enum Column { nameColumn, colourColumn, columns };

    void addButtons(QHBoxLayout& row);
    void setDyes(const CustomDyes& dyes);
    void addRow(const QString& name, const QColor& colour);
    void setColour(int row, const QColor& colour);
    QColor colour(int row) const;
    void chooseColour(int row);
    void showOutcome(const std::function<QString()>& work);

    QTableWidget* table_;
    QLabel* message_;
};

} // namespace lumetra
