#include "apps/viewer/channel_model.h"

#include "apps/common/failure.h"

#include <algorithm>
#include <limits>

namespace apps {
namespace {

QString offsetText(QPoint offset) {
    const auto part = [](int pixels, const char* forward, const char* backward) {
        const char* arrow = pixels > 0 ? forward : backward;
        return pixels == 0 ? QString()
                           : QString::fromUtf8(arrow) + QString::number(qAbs(qint64{pixels}));
    };
    return (part(offset.x(), "←", "→") + QLatin1Char(' ') + part(offset.y(), "↑", "↓")).trimmed();
}

int moved(int from, int by) {
    constexpr qint64 least = std::numeric_limits<int>::min(),
                     most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(qint64{from} + by, least, most));
}

} // namespace

std::vector<QColor> distinctColours(int channels) {
    std::vector<QColor> colours{"#ff00ff", "#00ff00"};
    if (channels > 2) // bright ones of the blue, the orange and the neutral side
        colours = {"#3d9bff", "#ffb000", "#ff3fae", "#d8d8d8"};
    colours.resize(static_cast<size_t>(std::max(channels, 0)), QColor(0xd8, 0xd8, 0xd8));
    return colours;
}

int ChannelModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : size();
}

int ChannelModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns;
}

QVariant ChannelModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Channel& channel = this->channel(index.row());
    const LevelRange levels = channel.levels.value_or(LevelRange{});
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    switch (index.column()) {
    case visibleColumn:
        if (role == Qt::CheckStateRole)
            return static_cast<int>(channel.visible ? Qt::Checked : Qt::Unchecked);
        return role == Qt::DisplayRole ? QVariant(QString::number(index.row() + 1)) : QVariant();
    case colourColumn:
        if (role == Qt::ToolTipRole)
            return QStringLiteral("Click to see this channel alone, and again to see all");
        return role == Qt::DecorationRole ? QVariant(channel.colour) : QVariant();
    case dyeColumn:
        if (role == Qt::ToolTipRole && !channel.name.isEmpty())
            return channel.name;
        return isText ? QVariant(channel.dye.isEmpty() ? channel.colour.name() : channel.dye)
                      : QVariant();
    case blackColumn:
        return isText ? QVariant(levels.low) : QVariant();
    case whiteColumn:
        return isText ? QVariant(levels.high) : QVariant();
    default:
        return role == Qt::DisplayRole ? QVariant(offsetText(channel.offset)) : QVariant();
    }
}

QVariant ChannelModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static const char* const titles[] = {"On", "", "Dye", "Black", "White", "Moved"};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= columns)
        return QAbstractTableModel::headerData(section, orientation, role);
    return QString::fromLatin1(titles[section]);
}

Qt::ItemFlags ChannelModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren;
    if (index.column() == visibleColumn)
        flags |= Qt::ItemIsUserCheckable;
    if (index.column() >= dyeColumn && index.column() <= whiteColumn)
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool ChannelModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const int row = index.row();
    const LevelRange levels = channel(row).levels.value_or(LevelRange{});
    if (index.column() == visibleColumn && role == Qt::CheckStateRole)
        setVisible(row, value.toInt() == Qt::Checked);
    else if (index.column() == dyeColumn && role == Qt::EditRole)
        return setDyeByWords(row, value.toString());
    else if (index.column() == blackColumn && role == Qt::EditRole)
        setLevels(row, {value.toInt(), std::max(levels.high, value.toInt() + 1)});
    else if (index.column() == whiteColumn && role == Qt::EditRole)
        setLevels(row, {std::min(levels.low, value.toInt() - 1), value.toInt()});
    else
        return false;
    return true;
}

bool ChannelModel::setDyeByWords(int row, const QString& words) {
    try {
        const Channel parsed = parseChannel(words, dyes_);
        setDye(row, {parsed.dye, parsed.colour, 0, 0, false});
        return true;
    } catch (const Failure& failure) {
        emit refused(failure.text());
        return false;
    }
}

void ChannelModel::changed(int firstRow, int lastRow) {
    if (firstRow > lastRow)
        return;
    emit dataChanged(index(firstRow, 0), index(lastRow, columns - 1));
    emit edited();
}

int ChannelModel::largestSample(int row) const { return measured(row).bits == 8 ? 255 : 65535; }

void ChannelModel::setCustomDyes(const QMap<QString, QColor>& custom) {
    dyes_ = DyeList();
    dyes_.add(custom);
    for (Channel& channel : channels_)
        if (custom.contains(channel.dye))
            channel.colour = custom[channel.dye];
    changed(0, size() - 1);
}

void ChannelModel::setChannels(const std::vector<Channel>& channels) {
    beginResetModel();
    channels_ = channels;
    measures_.assign(channels.size(), {});
    measuresLevels_.clear();
    for (const Channel& channel : channels)
        measuresLevels_.push_back(follows_ || !channel.levels);
    endResetModel();
    emit edited();
}

std::vector<Channel> ChannelModel::requested() const {
    std::vector<Channel> channels = channels_;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (measuresLevels_[i])
            channels[i].levels.reset();
    return channels;
}

bool ChannelModel::adopt(const std::vector<LevelRange>& levels,
                         const std::vector<Measure>& measures) {
    if (levels.size() != channels_.size() || measures.size() != channels_.size() || size() == 0)
        return false;
    measures_ = measures;
    bool isFixed = false;
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        if (measuresLevels_[i])
            channels_[i].levels = levels[i];
        isFixed = isFixed || (measuresLevels_[i] && !follows_);
        measuresLevels_[i] = measuresLevels_[i] && follows_;
    }
    emit dataChanged(index(0, 0), index(size() - 1, columns - 1));
    return isFixed;
}

void ChannelModel::setVisible(int row, bool visible) {
    if (!has(row) || channel(row).visible == visible)
        return;
    at(row).visible = visible;
    changed(row, row);
}

void ChannelModel::setDye(int row, const Dye& dye) {
    if (!has(row) || (channel(row).dye == dye.name && channel(row).colour == dye.colour))
        return;
    at(row).dye = dye.name;
    at(row).colour = dye.colour;
    changed(row, row);
}

void ChannelModel::setLevels(int row, LevelRange levels) {
    if (!has(row))
        return;
    const int largest = largestSample(row);
    levels.low = std::clamp(levels.low, 0, largest - 1);
    levels.high = std::clamp(levels.high, levels.low + 1, largest);
    if (channel(row).levels == levels && !measuresLevels_[static_cast<size_t>(row)])
        return;
    at(row).levels = levels;
    measuresLevels_[static_cast<size_t>(row)] = false;
    changed(row, row);
}

void ChannelModel::setGamma(int row, double gamma) {
    gamma = std::clamp(gamma, smallestGamma, largestGamma);
    if (!has(row) || channel(row).gamma == gamma)
        return;
    at(row).gamma = gamma;
    changed(row, row);
}

void ChannelModel::useAutomaticLevels(int row) {
    if (!has(row))
        return;
    measuresLevels_[static_cast<size_t>(row)] = true;
    changed(row, row);
}

void ChannelModel::useFullRange(int row, int bits) {
    if (has(row))
        setLevels(row, {0, bits > 0 ? largestOf(bits) : largestSample(row)});
}

void ChannelModel::nudge(int row, QPoint by) {
    if (!has(row))
        return;
    const QPoint offset = channel(row).offset; // to the left and up
    setOffset(row, {moved(offset.x(), -by.x()), moved(offset.y(), -by.y())});
}

void ChannelModel::setOffset(int row, QPoint offset) {
    if (!has(row) || channel(row).offset == offset)
        return;
    at(row).offset = offset;
    changed(row, row);
}

void ChannelModel::copyLevelsToAll(int row) {
    if (!has(row) || !channel(row).levels)
        return;
    const LevelRange levels = *channel(row).levels;
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
    for (int other = 0; other < size(); ++other)
        at(other).visible = isAlone || other == row;
    changed(0, size() - 1);
}

void ChannelModel::showAll() {
    for (Channel& channel : channels_)
        channel.visible = true;
    changed(0, size() - 1);
}

void ChannelModel::resetOffsets() {
    for (Channel& channel : channels_)
        channel.offset = {};
    changed(0, size() - 1);
}

void ChannelModel::followLevels(bool on) {
    follows_ = on;
    if (on)
        measuresLevels_.assign(channels_.size(), true);
    changed(0, size() - 1);
}

void ChannelModel::useDistinctColours() {
    const std::vector<QColor> colours = distinctColours(size());
    for (int row = 0; row < size(); ++row)
        at(row).colour = colours[static_cast<size_t>(row)];
    changed(0, size() - 1);
}

void ChannelModel::applySettings(const std::vector<Channel>& settings) {
    std::vector<Channel> channels = channels_;
    std::copy_n(settings.begin(), std::min(settings.size(), channels.size()), channels.begin());
    setChannels(channels);
}

} // namespace apps
