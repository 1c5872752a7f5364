#include "apps/viewer/channel_panel.h"

#include "apps/common/annotation.h"
#include "apps/common/text.h"
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

namespace lumetra {
namespace {

QString noteOn(const ChannelStatistics& statistics) {
    QString note = ChannelPanel::tr("Intensities %1 to %2")
                       .arg(statistics.range.low)
                       .arg(statistics.range.high);
    if (statistics.saturated > 0)
        note +=
            ChannelPanel::tr(" · <b>%1 % saturated</b>").arg(100 * statistics.saturated, 0, 'g', 2);
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
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setTabKeyNavigation(false); // Tab leads out of the table
    table_->setShowGrid(false);
    table_->setAlternatingRowColors(true);
    table_->setMinimumHeight(140);
    table_->setAccessibleName(tr("Channels"));
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
    form->addRow(tr("&Dye"), dyeField_);
    form->addRow(dyeSlider_);
    QLayout* offset = makeOffsetRow();
    auto* label = new QLabel(tr("&Offset"), box);
    label->setBuddy(left_);
    form->addRow(label, offset);
    return box;
}

/// The offset with the signs of the command.
QLayout* ChannelPanel::makeOffsetRow() {
    constexpr int farthest = 99999;
    left_ = numberBox(tr("Pixels to the left"), -farthest, farthest);
    left_->setPrefix(tr("← "));
    up_ = numberBox(tr("Pixels up"), -farthest, farthest);
    up_->setPrefix(tr("↑ "));
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

    black_ = numberBox(tr("Black level"), 0, 65535);
    white_ = numberBox(tr("White level"), 0, 65535);
    gammaOn_ = new QCheckBox(tr("&Gamma"), box);
    gamma_ = new QDoubleSpinBox(box);
    gamma_->setRange(0.05, 10);
    gamma_->setSingleStep(0.05);
    gamma_->setAccessibleName(tr("Gamma"));
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
    addButton(tr("A&uto"), tr("Auto-contrast: saturate 0.1 % of the pixels at each end"),
              [this] { model_.useAutomaticLevels(currentRow()); });
    addButton(tr("&Reset"), tr("Full range of the bit depth, no gamma"), [this] {
        model_.useFullRange(currentRow());
        model_.setGamma(currentRow(), 1);
    });
    addButton(tr("To a&ll"), tr("Copy levels and gamma to all channels"),
              [this] { model_.copyLevelsToAll(currentRow()); });
    continuous_ = new QCheckBox(tr("Con&tinuous"), box);
    continuous_->setToolTip(tr("Auto-contrast for all channels in every frame"));
    buttons->addWidget(continuous_);
    column->addLayout(buttons);
    return box;
}

void ChannelPanel::connectEditors() {
    connect(dyeField_, &QLineEdit::editingFinished, this, [this] {
        const int row = currentRow();
        if (row >= 0 && dyeField_->isModified() && !model_.setDye(row, dyeField_->text()))
            dyeField_->selectAll();
        dyeField_->setModified(false);
    });
    connect(dyeSlider_, &DyeSlider::dyeChosen, this,
            [this](const Dye& dye) { model_.setDye(currentRow(), dye); });
    connect(levels_, &LevelEditor::levelsMoved, this,
            [this](ContrastLimits levels) { model_.setLevels(currentRow(), levels); });
    connect(black_, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int value) { model_.setBlackLevel(currentRow(), value); });
    connect(white_, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int value) { model_.setWhiteLevel(currentRow(), value); });
    const auto move = [this] { model_.setOffset(currentRow(), {left_->value(), up_->value()}); };
    connect(left_, QOverload<int>::of(&QSpinBox::valueChanged), this, move);
    connect(up_, QOverload<int>::of(&QSpinBox::valueChanged), this, move);
    connect(gammaOn_, &QCheckBox::toggled, this, [this](bool on) {
        constexpr double brighter = 0.6;
        model_.setGamma(currentRow(), on ? brighter : 1);
    });
    connect(gamma_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this](double gamma) { model_.setGamma(currentRow(), gamma); });
    connect(continuous_, &QCheckBox::toggled, &model_, &ChannelModel::setContinuousLevels);
    connect(table_, &QTableView::clicked, this, [this](const QModelIndex& cell) {
        if (cell.column() == ChannelModel::colourColumn)
            model_.solo(cell.row());
    });
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
    const ChannelStatistics& statistics = model_.statistics(row);
    const ContrastLimits levels = channel.levels.value_or(ContrastLimits{});
    const QSignalBlocker blockers[] = {QSignalBlocker(left_),      QSignalBlocker(up_),
                                       QSignalBlocker(black_),     QSignalBlocker(white_),
                                       QSignalBlocker(gammaOn_),   QSignalBlocker(gamma_),
                                       QSignalBlocker(continuous_)};
    if (!dyeField_->isModified())
        dyeField_->setText(channelLabel(channel));
    dyeSlider_->showDye(channel.dye);
    showNumber(left_, channel.offset.x);
    showNumber(up_, channel.offset.y);
    showNumber(black_, levels.low);
    showNumber(white_, levels.high);
    gammaOn_->setChecked(channel.gamma != 1);
    gamma_->setEnabled(channel.gamma != 1);
    if (!gamma_->hasFocus())
        gamma_->setValue(channel.gamma);
    continuous_->setChecked(model_.hasContinuousLevels());
    levels_->setColour(toQt(channel.colour));
    levels_->setLevels(levels, channel.gamma);
    levels_->setStatistics(statistics);
    note_->setText(noteOn(statistics));
}

} // namespace lumetra
