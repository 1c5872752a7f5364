#include "apps/viewer/custom_dyes_dialog.h"

#include "apps/common/error.h"
#include "render/dyes.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

namespace lumetra {

CustomDyesDialog::CustomDyesDialog(const CustomDyes& dyes, QWidget* parent)
    : QDialog(parent), table_(new QTableWidget(0, columns, this)), message_(new QLabel(this)) {
    setWindowTitle(tr("Custom Dyes"));
    resize(440, 360);
    table_->setHorizontalHeaderLabels({tr("Name"), tr("Colour")});
    table_->horizontalHeader()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    table_->verticalHeader()->hide();
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setTabKeyNavigation(false);
    message_->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    addButtons(*buttons);
    auto* closing = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(closing, &QDialogButtonBox::rejected, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_, 1);
    layout->addLayout(buttons);
    layout->addWidget(message_);
    layout->addWidget(closing);
    setDyes(dyes);
    connect(table_, &QTableWidget::cellChanged, this, [this] {
        const bool isLost = this->dyes().size() < table_->rowCount();
        message_->setText(
            isLost ? tr("Dyes without a name, or with the name of another dye, are not kept.")
                   : QString());
        emit changed();
    });
    connect(table_, &QTableWidget::cellDoubleClicked, this, [this](int row, int column) {
        if (column == colourColumn)
            chooseColour(row);
    });
}

void CustomDyesDialog::addButtons(QHBoxLayout& row) {
    const QString filter = tr("Custom dyes (*.ini);;All files (*)");
    const auto addButton = [&](const QString& text, auto action) {
        auto* button = new QPushButton(text, this);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, action);
        row.addWidget(button);
    };
    addButton(tr("&Add"), [this] { add(tr("New dye"), Qt::cyan); });
    addButton(tr("&Colour…"), [this] { chooseColour(table_->currentRow()); });
    addButton(tr("&Remove"), [this] { removeCurrent(); });
    addButton(tr("&Load…"), [this, filter] {
        const QString file = QFileDialog::getOpenFileName(this, {}, {}, filter);
        if (!file.isEmpty())
            load(file);
    });
    addButton(tr("&Save…"), [this, filter] {
        const QString file =
            QFileDialog::getSaveFileName(this, {}, QStringLiteral("dyes.ini"), filter);
        if (!file.isEmpty())
            save(file);
    });
}

CustomDyes CustomDyesDialog::dyes() const {
    CustomDyes dyes;
    for (int row = 0; row < table_->rowCount(); ++row) {
        const QString name = table_->item(row, nameColumn)->text().trimmed();
        if (!name.isEmpty())
            dyes[name] = colour(row);
    }
    return dyes;
}

void CustomDyesDialog::setDyes(const CustomDyes& dyes) {
    const QSignalBlocker blocker(table_);
    table_->setRowCount(0);
    for (auto dye = dyes.begin(); dye != dyes.end(); ++dye)
        addRow(dye.key(), dye.value());
}

void CustomDyesDialog::addRow(const QString& name, const QColor& colour) {
    const int row = table_->rowCount();
    table_->insertRow(row);
    table_->setItem(row, nameColumn, new QTableWidgetItem(name));
    auto* cell = new QTableWidgetItem;
    cell->setFlags(cell->flags() & ~Qt::ItemIsEditable);
    table_->setItem(row, colourColumn, cell);
    setColour(row, colour);
}

void CustomDyesDialog::setColour(int row, const QColor& colour) {
    const QSignalBlocker blocker(table_); // of two changes, which are one
    table_->item(row, colourColumn)->setData(Qt::DecorationRole, colour);
    table_->item(row, colourColumn)->setText(colour.name());
}

QColor CustomDyesDialog::colour(int row) const {
    return table_->item(row, colourColumn)->data(Qt::DecorationRole).value<QColor>();
}

void CustomDyesDialog::add(const QString& name, const QColor& colour) {
    QString unused = name;
    for (int n = 2; dyes().contains(unused); ++n)
        unused = QStringLiteral("%1 %2").arg(name).arg(n);
    const QSignalBlocker blocker(table_);
    addRow(unused, colour);
    table_->setCurrentCell(table_->rowCount() - 1, nameColumn);
    emit changed();
}

void CustomDyesDialog::removeCurrent() {
    if (table_->currentRow() < 0)
        return;
    table_->removeRow(table_->currentRow());
    emit changed();
}

void CustomDyesDialog::chooseColour(int row) {
    const QColor chosen = row < 0 ? QColor() : QColorDialog::getColor(colour(row), this);
    if (!chosen.isValid())
        return;
    setColour(row, chosen);
    emit changed();
}

/// Shows what came of work with a file, or why it cannot be done.
void CustomDyesDialog::showOutcome(const std::function<QString()>& work) {
    try {
        message_->setText(work());
    } catch (const std::runtime_error&) {
        message_->setText(currentExceptionText());
    }
}

void CustomDyesDialog::load(const QString& file) {
    showOutcome([&] {
        setDyes(readCustomDyes(file));
        emit changed();
        return tr("Loaded dyes: %1").arg(table_->rowCount());
    });
}

void CustomDyesDialog::save(const QString& file) {
    showOutcome([&] {
        writeCustomDyes(dyes(), file);
        return tr("Saved dyes: %1").arg(dyes().size());
    });
}

} // namespace lumetra
