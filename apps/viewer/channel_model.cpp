#include "apps/viewer/channel_model.h"

#include "apps/common/annotation.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/text.h"
#include "render/palette.h"

#include <algorithm>
#include <limits>

namespace lumetra {
namespace {

QString offsetText(cv::Point offset) {
    const auto part = [](int pixels, const char* forward, const char* backward) {
        const char* arrow = pixels > 0 ? forward : backward;
        return pixels == 0 ? QString()
                           : QString::fromUtf8(arrow) + QString::number(qAbs(qint64{pixels}));
    };
    return (part(offset.x, "←", "→") + QLatin1Char(' ') + part(offset.y, "↑", "↓")).trimmed();
}

int shifted(int from, int by) {
    constexpr qint64 least = std::numeric_limits<int>::min(),
                     most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(qint64{from} + by, least, most));
}

} // namespace

int ChannelModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : size();
}

int ChannelModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant ChannelModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const int row = index.row();
    const Channel& channel = this->channel(row);
    if (role == Qt::CheckStateRole && index.column() == visibleColumn)
        return static_cast<int>(channel.visible ? Qt::Checked : Qt::Unchecked);
    if (role == Qt::DecorationRole && index.column() == colourColumn)
        return toQt(channel.colour);
    if (role == Qt::ToolTipRole && index.column() == colourColumn)
        return tr("Click to show this channel only; click again to show all");
    if (role == Qt::ToolTipRole && index.column() == dyeColumn && !channel.name.empty())
        return toQt(channel.name);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case visibleColumn:
        return row + 1;
    case dyeColumn:
        return channelLabel(channel);
    case blackColumn:
        return levels(row).low;
    case whiteColumn:
        return levels(row).high;
    case offsetColumn:
        return offsetText(channel.offset);
    default:
        return {};
    }
}

QVariant ChannelModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= columns)
        return QAbstractTableModel::headerData(section, orientation, role);
    const QString titles[] = {tr("Visible"), tr("Colour"), tr("Dye"),
                              tr("Black"),   tr("White"),  tr("Offset")};
    return titles[section];
}

Qt::ItemFlags ChannelModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren;
    if (index.column() == visibleColumn)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

bool ChannelModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || role != Qt::CheckStateRole ||
        index.column() != visibleColumn)
        return false;
    setVisible(index.row(), value.toInt() == Qt::Checked);
    return true;
}

void ChannelModel::notifyEdited(int firstRow, int lastRow) {
    if (firstRow > lastRow)
        return;
    emit dataChanged(index(firstRow, 0), index(lastRow, columns - 1));
    emit edited();
}

/// Lets `edit(channel, row)` change all channels.
template<class Edit>
void ChannelModel::editAll(const Edit& edit) {
    const std::vector<Channel> before = channels_;
    for (int row = 0; row < size(); ++row)
        edit(channels_[static_cast<size_t>(row)], row);
    if (channels_ != before)
        notifyEdited(0, size() - 1);
}

/// Lets `edit(channel)` change a channel, if it is there.
template<class Edit>
void ChannelModel::editOne(int row, const Edit& edit) {
    if (!has(row))
        return;
    const Channel before = channel(row);
    edit(channels_[static_cast<size_t>(row)]);
    if (before != channel(row))
        notifyEdited(row, row);
}

int ChannelModel::largestValue(int row) const { return statistics(row).bits == 8 ? 255 : 65535; }

void ChannelModel::setCustomDyes(const std::vector<Dye>& custom) {
    dyes_ = DyeList();
    dyes_.add(custom);
    editAll([&](Channel& channel, int) {
        for (const Dye& dye : custom)
            if (dye.name == channel.dye)
                channel.colour = dye.colour;
    });
}

void ChannelModel::setChannels(const std::vector<Channel>& channels) {
    beginResetModel();
    channels_ = channels;
    statistics_.assign(channels.size(), {});
    measuresLevels_.clear();
    for (const Channel& channel : channels)
        measuresLevels_.push_back(isContinuous_ || !channel.levels);
    endResetModel();
    emit edited();
}

std::vector<Channel> ChannelModel::requested() const {
    std::vector<Channel> channels = channels_;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        channels[i].levelsBits = 0; // adopted with the image, which it does not change
        if (measuresLevels_[i])
            channels[i].levels.reset();
    }
    return channels;
}

bool ChannelModel::adopt(const std::vector<ContrastLimits>& levels,
                         const std::vector<ChannelStatistics>& statistics) {
    if (levels.size() != channels_.size() || statistics.size() != channels_.size() || size() == 0)
        return false;
    statistics_ = statistics;
    bool isFixed = false;
    QStringList problems;
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        Channel& channel = channels_[i];
        const int bits = statistics[i].bits;
        if (measuresLevels_[i]) {
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
        measuresLevels_[i] = measuresLevels_[i] && isContinuous_;
    }
    emit dataChanged(index(0, 0), index(size() - 1, columns - 1));
    for (const QString& problem : problems)
        emit refused(problem);
    return isFixed;
}

void ChannelModel::setVisible(int row, bool visible) {
    editOne(row, [&](Channel& channel) { channel.visible = visible; });
}

void ChannelModel::setDye(int row, const Dye& dye) {
    editOne(row, [&](Channel& channel) {
        channel.dye = dye.name;
        channel.colour = dye.colour;
    });
}

bool ChannelModel::setDye(int row, const QString& name) {
    try {
        const Channel parsed = parseChannel(name, dyes_);
        setDye(row, Dye{parsed.dye, parsed.colour});
        return true;
    } catch (const std::runtime_error&) {
        emit refused(currentExceptionText());
        return false;
    }
}

void ChannelModel::setLevels(int row, ContrastLimits levels) {
    if (!has(row))
        return;
    const int largest = largestValue(row);
    levels.low = std::clamp(levels.low, 0, largest - 1);
    levels.high = std::clamp(levels.high, levels.low + 1, largest);
    const bool wasMeasured = measuresLevels_[static_cast<size_t>(row)];
    measuresLevels_[static_cast<size_t>(row)] = false;
    editOne(row, [&](Channel& channel) { channel.levels = levels; });
    if (wasMeasured) // even if they are what was measured
        emit edited();
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
    editOne(row, [&](Channel& channel) {
        channel.gamma = std::clamp(gamma, smallestGamma, largestGamma);
    });
}

void ChannelModel::useAutomaticLevels(int row) {
    if (!has(row))
        return;
    measuresLevels_[static_cast<size_t>(row)] = true;
    emit edited();
}

void ChannelModel::useFullRange(int row, int bits) {
    if (has(row))
        setLevels(row, {0, bits > 0 ? largestOf(bits) : largestValue(row)});
}

void ChannelModel::nudge(int row, QPoint by) {
    editOne(row, [&](Channel& channel) {
        const cv::Point offset = channel.offset; // to the left and up
        channel.offset = {shifted(offset.x, -by.x()), shifted(offset.y, -by.y())};
    });
}

void ChannelModel::setOffset(int row, cv::Point offset) {
    editOne(row, [&](Channel& channel) { channel.offset = offset; });
}

void ChannelModel::copyLevelsToAll(int row) {
    if (!has(row) || !channel(row).levels)
        return;
    const ContrastLimits levels = *channel(row).levels;
    const double gamma = channel(row).gamma;
    for (int other = 0; other < size(); ++other) {
        setLevels(other, levels);
        setGamma(other, gamma);
    }
}

void ChannelModel::solo(int row) {
    if (!has(row))
        return;
    const auto visible = std::count_if(channels_.begin(), channels_.end(),
                                       [](const Channel& channel) { return channel.visible; });
    const bool isAlone = visible == 1 && channel(row).visible;
    editAll([&](Channel& channel, int other) { channel.visible = isAlone || other == row; });
}

void ChannelModel::showAll() {
    editAll([](Channel& channel, int) { channel.visible = true; });
}

void ChannelModel::resetOffsets() {
    editAll([](Channel& channel, int) { channel.offset = {}; });
}

void ChannelModel::setContinuousLevels(bool on) {
    isContinuous_ = on;
    if (on)
        measuresLevels_.assign(channels_.size(), true);
    notifyEdited(0, size() - 1);
}

void ChannelModel::useColourBlindSafeColours() {
    const std::vector<Colour> colours = safePalette(channels_.size());
    editAll([&](Channel& channel, int row) { channel.colour = colours[static_cast<size_t>(row)]; });
}

void ChannelModel::applySettings(const std::vector<Channel>& settings) {
    std::vector<Channel> channels = channels_;
    std::copy_n(settings.begin(), std::min(settings.size(), channels.size()), channels.begin());
    setChannels(channels);
}

} // namespace lumetra
