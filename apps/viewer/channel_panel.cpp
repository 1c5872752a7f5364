#include "apps/viewer/channel_panel.h"

#include "apps/common/annotation.h"
#include "apps/common/text.h"
#include "apps/viewer/channel_model.h"
#include "apps/viewer/dye_box.h"
#include "apps/viewer/level_editor.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QDoubleSpinBox>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSignalBlocker>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <utility>

namespace lumetra {
namespace {

QString noteOn(const ChannelStatistics& statistics) {
    QString note = ChannelPanel::tr("Pixel values %1 to %2")
                       .arg(statistics.range.low)
                       .arg(statistics.range.high);
    if (statistics.saturated > 0)
        note += ChannelPanel::tr(" · <b>%L1 % saturated</b>")
                    .arg(100 * statistics.saturated, 0, 'g', 2);
    return note;
}

/// Leaves alone what the user is about to write.
void showNumber(QSpinBox* field, int value) {
    if (field->value() != value)
        field->setValue(value);
}

} // namespace

ChannelPanel::ChannelPanel(ChannelModel& model, const Actions& actions, QWidget* parent)
    : QWidget(parent), model_(model), details_(new QWidget(this)), levels_(new LevelEditor),
      note_(new QLabel) {
    auto* details = new QVBoxLayout(details_);
    details->setContentsMargins(0, 0, 0, 0);
    details->addLayout(makeForm());
    details->addWidget(levels_, 1);
    details->addWidget(note_);
    details->addLayout(makeLimitsRow());
    details->addLayout(makeContrastRows(actions));
    note_->setWordWrap(true);
    connect(levels_, &LevelEditor::levelsMoved, this,
            [this](ContrastLimits levels) { model_.setLevels(currentRow(), levels); });
    makeTable(actions);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(table_);
    layout->addWidget(details_, 1);
    connectTable();
    connectActions(actions);
    showChannels();
    const QList<QWidget*> fields{dyeBox_, left_, up_, black_, white_, gamma_, percent_};
    for (QWidget* field : fields) {
        field->setFocusPolicy(Qt::StrongFocus);
        field->installEventFilter(this);
    }
}

bool ChannelPanel::eventFilter(QObject* field, QEvent* event) {
    const auto* widget = qobject_cast<QWidget*>(field);
    if (event->type() != QEvent::Wheel || !widget || widget->hasFocus())
        return QWidget::eventFilter(field, event);
    event->ignore();
    return true;
}

void ChannelPanel::makeTable(const Actions& actions) {
    table_ = new QTableView(this);
    table_->setModel(&model_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setTabKeyNavigation(false); // Tab leads out of the table
    table_->setShowGrid(false);
    table_->setWordWrap(false);
    table_->setAlternatingRowColors(true);
    table_->setSizeAdjustPolicy(
        QAbstractScrollArea::AdjustToContents); // the histogram has the rest
    table_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    table_->setMinimumHeight(80);
    table_->setAccessibleName(tr("Channels"));
    table_->verticalHeader()->hide();
    QHeaderView* header = table_->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(ChannelModel::nameColumn, QHeaderView::Stretch);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    table_->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const ActionId id : {ActionId::solo, ActionId::showAll, ActionId::rename, ActionId::moveUp,
                              ActionId::moveDown, ActionId::remove})
        table_->addAction(&actions[id]);
}

QSpinBox* ChannelPanel::makeNumberBox(const QString& name, int least, int most,
                                      const std::function<void(int)>& change) {
    auto* field = new QSpinBox(details_);
    field->setRange(least, most);
    field->setKeyboardTracking(false);
    field->setAccessibleName(name);
    field->setToolTip(name);
    connect(field, QOverload<int>::of(&QSpinBox::valueChanged), this, change);
    return field;
}

/// Dye and offset, the latter with the signs of the command, as the table shows it.
QLayout* ChannelPanel::makeForm() {
    constexpr int farthest = 99999;
    dyeBox_ = new DyeBox(details_);
    connect(dyeBox_, &DyeBox::dyeChosen, this,
            [this](const QString& dye) { model_.setDye(currentRow(), dye); });
    const auto move = [this](int) {
        model_.setOffset(currentRow(), {left_->value(), up_->value()});
    };
    left_ = makeNumberBox(tr("Pixels to the left"), -farthest, farthest, move);
    left_->setPrefix(tr("← "));
    up_ = makeNumberBox(tr("Pixels up"), -farthest, farthest, move);
    up_->setPrefix(tr("↑ "));
    auto* offset = new QHBoxLayout;
    offset->addWidget(left_, 1);
    offset->addWidget(up_, 1);
    auto* form = new QFormLayout;
    form->addRow(tr("Dye"), dyeBox_);
    form->addRow(tr("Offset"), offset);
    return form;
}

QLayout* ChannelPanel::makeLimitsRow() {
    black_ = makeNumberBox(tr("Black level"), 0, 65535,
                           [this](int value) { model_.setBlackLevel(currentRow(), value); });
    white_ = makeNumberBox(tr("White level"), 0, 65535,
                           [this](int value) { model_.setWhiteLevel(currentRow(), value); });
    for (QSpinBox* field : {black_, white_})
        field->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    gammaOn_ = new QCheckBox(tr("Gamma"), details_);
    connect(gammaOn_, &QCheckBox::toggled, this, [this](bool on) {
        constexpr double brighter = 0.6;
        model_.setGamma(currentRow(), on ? brighter : 1);
    });
    gamma_ = new QDoubleSpinBox(details_);
    gamma_->setRange(0.05, 10);
    gamma_->setSingleStep(0.05);
    gamma_->setAccessibleName(tr("Gamma"));
    gamma_->setEnabled(false);
    connect(gamma_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            [this](double gamma) { model_.setGamma(currentRow(), gamma); });
    auto* row = new QHBoxLayout;
    row->addWidget(black_, 1);
    row->addWidget(white_, 1);
    row->addWidget(gammaOn_);
    row->addWidget(gamma_);
    return row;
}

QLayout* ChannelPanel::makeContrastRows(const Actions& actions) {
    percent_ = new QDoubleSpinBox(details_);
    percent_->setRange(0, 10);
    percent_->setDecimals(2);
    percent_->setSingleStep(0.05);
    percent_->setSuffix(tr(" % saturated"));
    percent_->setToolTip(tr("Pixels that auto-contrast saturates at each end"));
    percent_->setAccessibleName(tr("Saturated pixels"));
    percent_->setKeyboardTracking(false);
    connect(percent_, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &ChannelPanel::saturatedPercentChanged);
    auto* grid = new QGridLayout;
    const auto addButton = [&](ActionId id, const QString& text, int row, int column) {
        auto* button = new QToolButton(details_);
        actions[id].setIconText(text);
        button->setDefaultAction(&actions[id]);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        grid->addWidget(button, row, column);
    };
    addButton(ActionId::automatic, tr("Auto"), 0, 0);
    grid->addWidget(percent_, 0, 1);
    addButton(ActionId::continuous, tr("Continuous"), 0, 2);
    addButton(ActionId::reset, tr("Reset"), 1, 0);
    addButton(ActionId::toAll, tr("Copy to All"), 1, 1);
    addButton(ActionId::dataRange, tr("Data Range"), 1, 2);
    return grid;
}

void ChannelPanel::connectTable() {
    // A click shows one channel alone; the second click of two takes that back and asks for a
    // colour. Its release is a click or is none, as Qt likes.
    connect(table_, &QTableView::clicked, this, [this](const QModelIndex& cell) {
        if (std::exchange(isDoubleClick_, false) || cell.column() != ChannelModel::colourColumn)
            return;
        visibleBefore_.clear();
        for (const ChannelRow& row : model_.rows())
            visibleBefore_.push_back(row.channel.visible);
        model_.solo(cell.row());
    });
    connect(table_, &QTableView::doubleClicked, this, [this](const QModelIndex& cell) {
        isDoubleClick_ = cell.column() == ChannelModel::colourColumn;
        if (isDoubleClick_)
            QTimer::singleShot(0, this, [this, row = cell.row()] {
                isDoubleClick_ = false;
                model_.showOnly(visibleBefore_);
                const Channel& channel = model_.channel(row);
                const QColor colour = QColorDialog::getColor(toQt(channel.colour), this);
                if (colour.isValid())
                    model_.setColour(row, toColour(colour));
            });
    });
    connect(&model_, &ChannelModel::modelReset, this, &ChannelPanel::showChannels);
    connect(&model_, &ChannelModel::dataChanged, this, &ChannelPanel::showCurrent);
    connect(table_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        if (currentRow() >= 0)
            row_ = currentRow();
        showCurrent();
        emit currentRowChanged(currentRow());
    });
}

/// What the actions of the menus Channels and Contrast do, some of them with the selected channel.
void ChannelPanel::connectActions(const Actions& actions) {
    using Id = ActionId;
    const auto onAll = [&](Id id, auto change) {
        connect(&actions[id], &QAction::triggered, this,
                [this, change] { std::invoke(change, model_); });
    };
    const auto onSelected = [&](Id id, auto change) {
        connect(&actions[id], &QAction::triggered, this,
                [this, change] { std::invoke(change, model_, currentRow()); });
    };
    for (int row = 0; row < 9; ++row)
        onAll(Id::show1 + row, [row](ChannelModel& m) {
            if (row < m.size())
                m.setVisible(row, !m.channel(row).visible);
        });
    onSelected(Id::solo, &ChannelModel::solo);
    onAll(Id::showAll, &ChannelModel::showAll);
    for (const int by : {-1, 1})
        onSelected(by < 0 ? Id::moveUp : Id::moveDown, [this, by](ChannelModel& m, int row) {
            m.move(row, by);
            setCurrentRow(std::clamp(row + by, 0, std::max(m.size() - 1, 0)));
        });
    onSelected(Id::remove, &ChannelModel::remove);
    onSelected(Id::rename, [this](ChannelModel& m, int row) {
        if (row >= 0)
            table_->edit(m.index(row, ChannelModel::nameColumn));
    });
    constexpr int far = 10;
    const std::pair<Id, QPoint> shifts[] = {{Id::left, {-1, 0}},      {Id::right, {1, 0}},
                                            {Id::up, {0, -1}},        {Id::down, {0, 1}},
                                            {Id::farLeft, {-far, 0}}, {Id::farRight, {far, 0}},
                                            {Id::farUp, {0, -far}},   {Id::farDown, {0, far}}};
    for (const auto& shift : shifts)
        onSelected(shift.first,
                   [by = shift.second](ChannelModel& m, int row) { m.nudge(row, by); });
    onAll(Id::resetOffsets, &ChannelModel::resetOffsets);

    onSelected(Id::automatic, &ChannelModel::useAutomaticLevels);
    onAll(Id::allAutomatic, &ChannelModel::useAutomaticLevelsForAll);
    connect(&actions[Id::continuous], &QAction::toggled, &model_,
            &ChannelModel::setContinuousLevels);
    for (int i = 0; i < 5; ++i)
        onSelected(Id::full8 + i,
                   [i](ChannelModel& m, int row) { m.useFullRange(row, 8 + 2 * i); });
    onSelected(Id::reset, &ChannelModel::resetContrast);
    onSelected(Id::toAll, &ChannelModel::copyLevelsToAll);

    const auto letStack = [&](Id id, auto change, auto canChange) {
        connect(&actions[id], &QAction::triggered, &model_.undoStack(), change);
        connect(&model_.undoStack(), canChange, &actions[id], &QAction::setEnabled);
        actions[id].setEnabled(false);
    };
    letStack(Id::undo, &QUndoStack::undo, &QUndoStack::canUndoChanged);
    letStack(Id::redo, &QUndoStack::redo, &QUndoStack::canRedoChanged);

    connect(&actions[Id::goToChannels], &QAction::triggered, table_,
            [this] { table_->setFocus(Qt::ShortcutFocusReason); });
    connect(&actions[Id::goToLevels], &QAction::triggered, black_, [this] {
        black_->setFocus(Qt::ShortcutFocusReason);
        black_->selectAll();
    });
}

int ChannelPanel::currentRow() const {
    const int row = table_->currentIndex().row();
    return row < model_.size() ? row : -1;
}

void ChannelPanel::setCurrentRow(int row) {
    table_->setCurrentIndex(model_.index(row, ChannelModel::nameColumn));
}

double ChannelPanel::saturatedPercent() const { return percent_->value(); }

void ChannelPanel::setSaturatedPercent(double percent) { percent_->setValue(percent); }

void ChannelPanel::showChannels() {
    dyeBox_->setDyes(model_.dyes());
    table_->updateGeometry();
    if (currentRow() < 0 && model_.size() > 0)
        setCurrentRow(std::min(row_, model_.size() - 1));
    showCurrent();
}

void ChannelPanel::showCurrent() {
    const int row = currentRow();
    details_->setEnabled(row >= 0);
    if (row < 0)
        return;
    const Channel& channel = model_.channel(row);
    const ContrastLimits levels = model_.levels(row);
    const QSignalBlocker blockers[] = {QSignalBlocker(left_),    QSignalBlocker(up_),
                                       QSignalBlocker(black_),   QSignalBlocker(white_),
                                       QSignalBlocker(gammaOn_), QSignalBlocker(gamma_)};
    dyeBox_->showDye(channelLabel(channel));
    showNumber(left_, channel.offset.x);
    showNumber(up_, channel.offset.y);
    showNumber(black_, levels.low);
    showNumber(white_, levels.high);
    gammaOn_->setChecked(channel.gamma != 1);
    gamma_->setEnabled(channel.gamma != 1);
    if (!gamma_->hasFocus())
        gamma_->setValue(channel.gamma);
    levels_->setChannel(channel, levels, model_.statistics(row));
    note_->setText(noteOn(model_.statistics(row)));
}

} // namespace lumetra
