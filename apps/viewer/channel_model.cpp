#include "apps/viewer/channel_model.h"

#include "apps/common/annotation.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/text.h"

#include <QElapsedTimer>

#include <algorithm>
#include <limits>
#include <utility>

namespace lumetra {
namespace {

int shifted(int from, int by) {
    constexpr qint64 least = std::numeric_limits<int>::min(),
                     most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(qint64{from} + by, least, most));
}

/// Whether two states differ in nothing but what is dragged: levels, gamma or offset of one row.
bool isDrag(const std::vector<ChannelRow>& before, const std::vector<ChannelRow>& after) {
    int changed = 0;
    for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
        ChannelRow row = before[i];
        changed += row == after[i] ? 0 : 1;
        row.measuresLevels = after[i].measuresLevels;
        row.channel.levels = after[i].channel.levels;
        row.channel.gamma = after[i].channel.gamma;
        row.channel.offset = after[i].channel.offset;
        if (!(row == after[i]))
            return false;
    }
    return before.size() == after.size() && changed == 1;
}

} // namespace

/// Turns one state of all channels into another.
class ChannelModel::EditCommand : public QUndoCommand {
public:
    EditCommand(ChannelModel& model, std::vector<ChannelRow> after)
        : model_(model), before_(model.rows_), after_(std::move(after)) {
        since_.start();
    }
    void redo() override { model_.setRows(after_); }
    void undo() override { model_.setRows(before_); }
    int id() const override { return 1; }

    /// A drag is one edit, until it rests.
    bool mergeWith(const QUndoCommand* other) override {
        constexpr int rest = 700; // milliseconds
        const auto& next = static_cast<const EditCommand&>(*other);
        if (since_.hasExpired(rest) || !isDrag(before_, next.after_))
            return false;
        after_ = next.after_;
        since_.start();
        return true;
    }

private:
    ChannelModel& model_;
    std::vector<ChannelRow> before_, after_;
    QElapsedTimer since_;
};

ChannelModel::ChannelModel(QObject* parent) : QAbstractTableModel(parent) {}

int ChannelModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : size();
}

int ChannelModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QString ChannelModel::limitsText(int row) const {
    const QString text = QStringLiteral("%1 – %2").arg(levels(row).low).arg(levels(row).high);
    const bool isFixed = isContinuous_ && !rows_[static_cast<size_t>(row)].measuresLevels;
    return isFixed ? tr("%1 fixed").arg(text) : text;
}

QVariant ChannelModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const int row = index.row(), column = index.column();
    const Channel& channel = this->channel(row);
    if (role == Qt::CheckStateRole && column == visibleColumn)
        return static_cast<int>(channel.visible ? Qt::Checked : Qt::Unchecked);
    if (role == Qt::DecorationRole && column == colourColumn)
        return toQt(channel.colour);
    if (role == Qt::ToolTipRole && column == colourColumn)
        return tr("Click to show this channel only, and again to show all; double-click to choose "
                  "a colour");
    if (role == Qt::ToolTipRole && column == nameColumn)
        return tr("%1; double-click to rename it").arg(channelLabel(channel));
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (column) {
    case visibleColumn:
        return row + 1;
    case nameColumn:
        return panelName(channel);
    case limitsColumn:
        return limitsText(row);
    case offsetColumn:
        return channel.offset == cv::Point()
                   ? QString()
                   : tr("← %1 ↑ %2").arg(channel.offset.x).arg(channel.offset.y);
    default:
        return {};
    }
}

QVariant ChannelModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const bool isShown = role == Qt::DisplayRole && section >= nameColumn; // boxes are narrow
    const bool isTold = role == Qt::ToolTipRole || role == Qt::AccessibleTextRole;
    if (orientation != Qt::Horizontal || section < 0 || section >= columns || !(isShown || isTold))
        return {};
    const QString titles[] = {tr("Visible"), tr("Colour"), tr("Channel"), tr("Limits"),
                              tr("Offset")};
    return titles[section];
}

Qt::ItemFlags ChannelModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren;
    if (index.column() == visibleColumn)
        flags |= Qt::ItemIsUserCheckable;
    if (index.column() == nameColumn)
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool ChannelModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const bool isName = index.column() == nameColumn && role == Qt::EditRole;
    const bool isBox = index.column() == visibleColumn && role == Qt::CheckStateRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || !(isName || isBox))
        return false;
    if (isName)
        setName(index.row(), value.toString());
    else
        setVisible(index.row(), value.toInt() == Qt::Checked);
    return true;
}

/// Shows another state of the same channels, or of some of them in another order.
void ChannelModel::setRows(const std::vector<ChannelRow>& rows) {
    const bool isSameOrder =
        std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(),
                   [](const ChannelRow& a, const ChannelRow& b) { return a.plane == b.plane; });
    if (!isSameOrder)
        beginResetModel();
    rows_ = rows;
    if (!isSameOrder)
        endResetModel();
    if (isSameOrder && !rows.empty())
        emit dataChanged(index(0, 0), index(size() - 1, columns - 1));
    emit edited();
}

/// Lets `edit(rows)` change all there is.
void ChannelModel::edit(const std::function<void(Rows&)>& edit) {
    Rows rows = rows_;
    edit(rows);
    if (!(rows == rows_))
        undo_.push(new EditCommand(*this, std::move(rows)));
}

/// Lets `edit(row)` change each channel.
void ChannelModel::editAll(const EditRow& edit) {
    this->edit([&](Rows& rows) { std::for_each(rows.begin(), rows.end(), edit); });
}

/// Lets `edit(row)` change a channel, if it is there.
void ChannelModel::editOne(int row, const EditRow& edit) {
    if (has(row))
        this->edit([&](Rows& rows) { edit(rows[static_cast<size_t>(row)]); });
}

void ChannelModel::setCustomDyes(const std::vector<Dye>& custom) {
    beginResetModel();
    dyes_ = DyeList();
    dyes_.add(custom);
    for (ChannelRow& row : rows_)
        for (const Dye& dye : custom)
            if (dye.name == row.channel.dye)
                row.channel.colour = dye.colour;
    endResetModel();
    emit edited();
}

void ChannelModel::setChannels(const std::vector<Channel>& channels) {
    beginResetModel();
    rows_.clear();
    for (const Channel& channel : channels)
        rows_.push_back({channel, rows_.size(), isContinuous_ || !channel.levels});
    statistics_.assign(channels.size(), {});
    undo_.clear();
    endResetModel();
    emit edited();
}

std::vector<Channel> ChannelModel::channels() const {
    std::vector<Channel> channels;
    channels.reserve(rows_.size());
    for (const ChannelRow& row : rows_)
        channels.push_back(row.channel);
    return channels;
}

std::vector<std::size_t> ChannelModel::planes() const {
    std::vector<std::size_t> planes;
    planes.reserve(rows_.size());
    for (const ChannelRow& row : rows_)
        planes.push_back(row.plane);
    return planes;
}

std::vector<Channel> ChannelModel::requested() const {
    std::vector<Channel> channels = this->channels();
    for (std::size_t i = 0; i < channels.size(); ++i) {
        channels[i].levelsBits = 0; // adopted with the image, which it does not change
        if (rows_[i].measuresLevels)
            channels[i].levels.reset();
    }
    return channels;
}

bool ChannelModel::adopt(const std::vector<ContrastLimits>& levels,
                         const std::vector<ChannelStatistics>& statistics) {
    if (levels.size() != rows_.size() || statistics.size() != rows_.size() || rows_.empty())
        return false;
    bool isFixed = false;
    QStringList problems;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        ChannelRow& row = rows_[i];
        Channel& channel = row.channel;
        statistics_[row.plane] = statistics[i];
        const int bits = statistics[i].bits;
        if (row.measuresLevels) {
            channel.levels = levels[i];
            isFixed = isFixed || !isContinuous_;
        } else if (channel.levelsBits > 0 && channel.levelsBits != bits) {
            problems << tr("The contrast limits of channel %1 were found at %2 bits, and the image "
                           "has %3: they are measured again")
                            .arg(i + 1)
                            .arg(channel.levelsBits)
                            .arg(bits);
            channel.levels = statistics[i].automatic;
            isFixed = true;
        }
        channel.levelsBits = bits;
        row.measuresLevels = row.measuresLevels && isContinuous_;
    }
    emit dataChanged(index(0, 0), index(size() - 1, columns - 1));
    for (const QString& problem : problems)
        emit refused(problem);
    return isFixed;
}

void ChannelModel::setVisible(int row, bool visible) {
    editOne(row, [&](ChannelRow& r) { r.channel.visible = visible; });
}

void ChannelModel::setName(int row, const QString& name) {
    editOne(row, [&](ChannelRow& r) {
        if (name != panelName(r.channel))
            r.channel.name = r.channel.dye = toUtf8(name.trimmed());
    });
}

void ChannelModel::setColour(int row, Colour colour) {
    editOne(row, [&](ChannelRow& r) { r.channel.colour = colour; });
}

bool ChannelModel::setDye(int row, const QString& name) {
    try {
        const Channel parsed = parseChannel(name, dyes_);
        editOne(row, [&](ChannelRow& r) {
            if (r.channel.name == r.channel.dye)
                r.channel.name.clear();
            r.channel.dye = parsed.dye;
            r.channel.colour = parsed.colour;
        });
        return true;
    } catch (const std::runtime_error&) {
        emit refused(currentExceptionText());
        return false;
    }
}

void ChannelModel::fixLevels(ChannelRow& row, ContrastLimits levels) const {
    const int largest = statistics_[row.plane].bits == 8 ? 255 : 65535;
    levels.low = std::clamp(levels.low, 0, largest - 1);
    levels.high = std::clamp(levels.high, levels.low + 1, largest);
    row.channel.levels = levels;
    row.measuresLevels = false;
}

void ChannelModel::setLevels(int row, ContrastLimits levels) {
    editOne(row, [&](ChannelRow& r) { fixLevels(r, levels); });
}

void ChannelModel::setBlackLevel(int row, int low) {
    if (has(row))
        setLevels(row, {low, std::max(levels(row).high, low + 1)});
}

void ChannelModel::setWhiteLevel(int row, int high) {
    if (has(row))
        setLevels(row, {std::min(levels(row).low, high - 1), high});
}

void ChannelModel::setGamma(int row, double gamma) {
    editOne(row, [&](ChannelRow& r) {
        r.channel.gamma = std::clamp(gamma, smallestGamma, largestGamma);
    });
}

void ChannelModel::useAutomaticLevels(int row) {
    editOne(row, [](ChannelRow& r) { r.measuresLevels = true; });
}

void ChannelModel::useAutomaticLevelsForAll() {
    editAll([](ChannelRow& row) { row.measuresLevels = true; });
}

void ChannelModel::useFullRange(int row, int bits) { setLevels(row, {0, largestOf(bits)}); }

void ChannelModel::resetContrast(int row) {
    editOne(row, [&](ChannelRow& r) {
        fixLevels(r, {0, statistics_[r.plane].largest});
        r.channel.gamma = 1;
    });
}

void ChannelModel::nudge(int row, QPoint by) {
    editOne(row, [&](ChannelRow& r) {
        const cv::Point offset = r.channel.offset; // to the left and up
        r.channel.offset = {shifted(offset.x, -by.x()), shifted(offset.y, -by.y())};
    });
}

void ChannelModel::setOffset(int row, cv::Point offset) {
    editOne(row, [&](ChannelRow& r) { r.channel.offset = offset; });
}

void ChannelModel::copyLevelsToAll(int row) {
    if (!has(row))
        return;
    editAll([limits = levels(row), gamma = channel(row).gamma, this](ChannelRow& r) {
        fixLevels(r, limits);
        r.channel.gamma = gamma;
    });
}

void ChannelModel::solo(int row) {
    if (!has(row))
        return;
    const auto visible = std::count_if(rows_.begin(), rows_.end(),
                                       [](const ChannelRow& r) { return r.channel.visible; });
    const bool isAlone = visible == 1 && channel(row).visible;
    std::vector<bool> shown(rows_.size(), isAlone);
    shown[static_cast<size_t>(row)] = true;
    showOnly(shown);
}

void ChannelModel::showAll() { showOnly(std::vector<bool>(rows_.size(), true)); }

void ChannelModel::showOnly(const std::vector<bool>& visible) {
    edit([&](Rows& rows) {
        for (std::size_t i = 0; i < std::min(rows.size(), visible.size()); ++i)
            rows[i].channel.visible = visible[i];
    });
}

void ChannelModel::remove(int row) {
    if (has(row) && size() > 1)
        edit([&](Rows& rows) { rows.erase(rows.begin() + row); });
}

void ChannelModel::move(int row, int by) {
    if (has(row) && has(row + by))
        edit([&](Rows& rows) { std::iter_swap(rows.begin() + row, rows.begin() + row + by); });
}

void ChannelModel::resetOffsets() {
    editAll([](ChannelRow& row) { row.channel.offset = {}; });
}

void ChannelModel::setContinuousLevels(bool on) {
    isContinuous_ = on;
    std::vector<ChannelRow> rows = rows_;
    for (ChannelRow& row : rows)
        row.measuresLevels = row.measuresLevels || on;
    setRows(rows);
}

void ChannelModel::applySettings(const std::vector<Channel>& settings) {
    edit([&](Rows& rows) {
        for (std::size_t i = 0; i < std::min(rows.size(), settings.size()); ++i) {
            rows[i].channel = settings[i];
            rows[i].measuresLevels = isContinuous_ || !settings[i].levels;
        }
    });
}

} // namespace lumetra
