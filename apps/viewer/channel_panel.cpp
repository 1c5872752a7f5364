#include "apps/viewer/channel_panel.h"

#include "apps/viewer/channel_delegate.h"
#include "apps/viewer/channel_model.h"
#include "apps/viewer/dye_controls.h"
#include "apps/viewer/level_editor.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

namespace apps {
namespace {

QString noteOn(const Measure& measure) {
    QString note =
        QStringLiteral("Samples %1 to %2").arg(measure.range.low).arg(measure.range.high);
    if (measure.saturated > 0)
        note += QStringLiteral(" · <b>%1 % saturated</b>").arg(100 * measure.saturated, 0, 'g', 2);
    return note;
}

QSpinBox* numberBox(const QString& name, int least, int most) {
    auto* field = new QSpinBox;
    field->setRange(least, most);
    field->setKeyboardTracking(false);
    field->setAccessibleName(name);
    field->setToolTip(name);
    return field;
}

/// Leaves alone what the user is about to write.
void showNumber(QSpinBox* field, int value) {
    if (field->value() != value)
        field->setValue(value);
}

} // namespace

ChannelPanel::ChannelPanel(ChannelModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    details_ = new QWidget(this);
    auto* inner = new QVBoxLayout(details_);
    inner->setContentsMargins(0, 0, 0, 0);
    inner->addWidget(makeDyeBox());
    inner->addWidget(makeLevelBox());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeTable(), 1);
    layout->addWidget(details_, 0);
    connectEditors();
    showChannels();
}

QWidget* ChannelPanel::makeTable() {
    table_ = new QTableView(this);
    table_->setModel(&model_);
    table_->setItemDelegate(new ChannelDelegate(model_, table_));
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    table_->setTabKeyNavigation(false); // Tab leads out of the table
    table_->setShowGrid(false);
    table_->setAlternatingRowColors(true);
    table_->setMinimumHeight(140);
    table_->setAccessibleName(QStringLiteral("Channels"));
    table_->verticalHeader()->hide();
    QHeaderView* header = table_->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(ChannelModel::dyeColumn, QHeaderView::Stretch);
    header->setHighlightSections(false);
    return table_;
}

QWidget* ChannelPanel::makeDyeBox() {
    auto* box = new QWidget(this);
    auto* form = new QFormLayout(box);
    form->setContentsMargins(0, 0, 0, 0);
    dyeField_ = new DyeField(model_.dyes(), box);
    dyeSlider_ = new DyeSlider(model_.dyes(), box);
    form->addRow(QStringLiteral("&Dye"), dyeField_);
    form->addRow(dyeSlider_);
    QLayout* offset = makeOffsetRow();
    auto* moved = new QLabel(QStringLiteral("&Moved"), box);
    moved->setBuddy(left_);
    form->addRow(moved, offset);
    return box;
}

/// The offset in the words and signs of the command.
QLayout* ChannelPanel::makeOffsetRow() {
    constexpr int farthest = 99999;
    left_ = numberBox(QStringLiteral("Pixels to the left"), -farthest, farthest);
    left_->setPrefix(QStringLiteral("← "));
    up_ = numberBox(QStringLiteral("Pixels up"), -farthest, farthest);
    up_->setPrefix(QStringLiteral("↑ "));
    auto* row = new QHBoxLayout;
    row->addWidget(left_, 1);
    row->addWidget(up_, 1);
    return row;
}

QWidget* ChannelPanel::makeLevelBox() {
    auto* box = new QWidget(this);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    levels_ = new LevelEditor(box);
    note_ = new QLabel(box);
    column->addWidget(levels_, 1);
    column->addWidget(note_);

    black_ = numberBox(QStringLiteral("Black level"), 0, 65535);
    white_ = numberBox(QStringLiteral("White level"), 0, 65535);
    gammaOn_ = new QCheckBox(QStringLiteral("&Gamma"), box);
    gamma_ = new QDoubleSpinBox(box);
    gamma_->setRange(0.05, 10);
    gamma_->setSingleStep(0.05);
    gamma_->setAccessibleName(QStringLiteral("Gamma"));
    gamma_->setEnabled(false);
    auto* numbers = new QHBoxLayout;
    numbers->addWidget(black_, 1);
    numbers->addWidget(white_, 1);
    numbers->addWidget(gammaOn_);
    numbers->addWidget(gamma_);
    column->addLayout(numbers);

    auto* buttons = new QHBoxLayout;
    const auto addButton = [&](const QString& text, const QString& tip, auto action) {
        auto* button = new QPushButton(text, box);
        button->setToolTip(tip);
        connect(button, &QPushButton::clicked, this, action);
        buttons->addWidget(button);
    };
    addButton(QStringLiteral("A&uto"), QStringLiteral("All but 0.1 % of the samples at each end"),
              [this] { model_.useAutomaticLevels(currentRow()); });
    addButton(QStringLiteral("&Reset"), QStringLiteral("The whole range of the samples"), [this] {
        model_.useFullRange(currentRow());
        model_.setGamma(currentRow(), 1);
    });
    addButton(QStringLiteral("To a&ll"), QStringLiteral("These levels for all channels"),
              [this] { model_.copyLevelsToAll(currentRow()); });
    follow_ = new QCheckBox(QStringLiteral("Follo&w"), box);
    follow_->setToolTip(QStringLiteral("Measures the levels of all channels in every frame"));
    buttons->addWidget(follow_);
    column->addLayout(buttons);
    return box;
}

void ChannelPanel::connectEditors() {
    connect(dyeField_, &QLineEdit::editingFinished, this, [this] {
        const int row = currentRow();
        const auto cell = model_.index(row, ChannelModel::dyeColumn);
        if (row >= 0 && dyeField_->isModified() &&
            !model_.setData(cell, dyeField_->text(), Qt::EditRole))
            dyeField_->selectAll();
        dyeField_->setModified(false);
    });
    connect(dyeSlider_, &DyeSlider::dyeChosen, this,
            [this](const Dye& dye) { model_.setDye(currentRow(), dye); });
    connect(levels_, &LevelEditor::levelsMoved, this,
            [this](LevelRange levels) { model_.setLevels(currentRow(), levels); });
    const auto connectLevel = [this](QSpinBox* field, ChannelModel::Column column) {
        connect(field, QOverload<int>::of(&QSpinBox::valueChanged), this,
                [this, column](int value) {
                    model_.setData(model_.index(currentRow(), column), value, Qt::EditRole);
                });
    };
    connectLevel(black_, ChannelModel::blackColumn);
    connectLevel(white_, ChannelModel::whiteColumn);
    const auto move = [this] { model_.setOffset(currentRow(), {left_->value(), up_->value()}); };
    connect(left_, QOverload<int>::of(&QSpinBox::valueChanged), this, move);
    connect(up_, QOverload<int>::of(&QSpinBox::valueChanged), this, move);
    connect(gammaOn_, &QCheckBox::toggled, this, [this](bool on) {
        constexpr double brighter = 0.6;
        model_.setGamma(currentRow(), on ? brighter : 1);
    });
    connect(gamma_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this](double gamma) { model_.setGamma(currentRow(), gamma); });
    connect(follow_, &QCheckBox::toggled, &model_, &ChannelModel::followLevels);
    connect(&model_, &ChannelModel::modelReset, this, &ChannelPanel::showChannels);
    connect(&model_, &ChannelModel::dataChanged, this, &ChannelPanel::showCurrent);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        showCurrent();
        emit currentRowChanged(currentRow());
    });
}

int ChannelPanel::currentRow() const {
    const int row = table_->currentIndex().row();
    return row < model_.size() ? row : -1;
}

void ChannelPanel::setCurrentRow(int row) {
    table_->setCurrentIndex(model_.index(row, ChannelModel::dyeColumn));
}

void ChannelPanel::focusChannels() { table_->setFocus(Qt::ShortcutFocusReason); }

void ChannelPanel::focusLevels() {
    black_->setFocus(Qt::ShortcutFocusReason);
    black_->selectAll();
}

void ChannelPanel::showChannels() {
    dyeField_->updateNames(model_.dyes());
    dyeSlider_->updateDyes(model_.dyes());
    if (currentRow() < 0 && model_.size() > 0)
        setCurrentRow(0);
    showCurrent();
}

void ChannelPanel::showCurrent() {
    const int row = currentRow();
    details_->setEnabled(row >= 0);
    if (row < 0)
        return;
    const Channel& channel = model_.channel(row);
    const Measure& measure = model_.measured(row);
    const LevelRange levels = channel.levels.value_or(LevelRange{});
    const QSignalBlocker blockers[] = {QSignalBlocker(left_),    QSignalBlocker(up_),
                                       QSignalBlocker(black_),   QSignalBlocker(white_),
                                       QSignalBlocker(gammaOn_), QSignalBlocker(gamma_),
                                       QSignalBlocker(follow_)};
    if (!dyeField_->isModified())
        dyeField_->setText(channel.dye.isEmpty() ? channel.colour.name() : channel.dye);
    dyeSlider_->showDye(channel.dye);
    showNumber(left_, channel.offset.x());
    showNumber(up_, channel.offset.y());
    showNumber(black_, levels.low);
    showNumber(white_, levels.high);
    gammaOn_->setChecked(channel.gamma != 1);
    gamma_->setEnabled(channel.gamma != 1);
    if (!gamma_->hasFocus())
        gamma_->setValue(channel.gamma);
    follow_->setChecked(model_.followsLevels());
    levels_->setColour(channel.colour);
    levels_->setLevels(levels, channel.gamma);
    levels_->setMeasure(measure);
    note_->setText(noteOn(measure));
}

} // namespace apps
