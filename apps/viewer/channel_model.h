// The channels and how they are shown, as a table that widgets look at.
#pragma once

#include "apps/common/channel_spec.h"
#include "apps/viewer/channel_statistics.h"

#include <QAbstractTableModel>
#include <QPoint>
#include <QUndoStack>

#include <functional>
#include <vector>

namespace lumetra {

/// A channel among those that are shown.
struct ChannelRow {
    Channel channel;
    std::size_t plane = 0;      ///< Which plane of the source it is, counted from 0.
    bool measuresLevels = true; ///< In the next image.
};

inline bool operator==(const ChannelRow& a, const ChannelRow& b) {
    return a.channel == b.channel && a.plane == b.plane && a.measuresLevels == b.measuresLevels;
}

/// One row for each channel. Everything that changes how channels are shown happens here, and can
/// be undone.
class ChannelModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { visibleColumn, colourColumn, nameColumn, limitsColumn, offsetColumn };
    static constexpr int columns = offsetColumn + 1;

    explicit ChannelModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    const DyeList& dyes() const { return dyes_; }

    /// Replaces the custom dyes; channels with one of them take over its colour.
    void setCustomDyes(const std::vector<Dye>& custom);

    /// Replaces all channels by those of a source, one for each of its planes. Those without levels
    /// get them from the next image. This cannot be undone.
    void setChannels(const std::vector<Channel>& channels);

    /// All channels with the levels that they are shown with.
    std::vector<Channel> channels() const;
    const std::vector<ChannelRow>& rows() const { return rows_; }
    const Channel& channel(int row) const { return rows_.at(static_cast<size_t>(row)).channel; }
    ContrastLimits levels(int row) const { return channel(row).levels.value_or(ContrastLimits{}); }
    const ChannelStatistics& statistics(int row) const {
        return statistics_.at(rows_.at(static_cast<size_t>(row)).plane);
    }
    int size() const { return static_cast<int>(rows_.size()); }

    /// The planes of the channels.
    std::vector<std::size_t> planes() const;

    /// The channels without the levels that are to be measured, and without what changes no image.
    std::vector<Channel> requested() const;

    /// Takes over what was measured, and the levels of the channels that asked for them, or whose
    /// levels are for another bit depth; the latter are refused.
    /// @return Whether levels that were measured are fixed from now on.
    bool adopt(const std::vector<ContrastLimits>& levels,
               const std::vector<ChannelStatistics>& statistics);

    /// @name Edits of one channel; a row that is not there changes nothing.
    /// @{
    void setVisible(int row, bool visible);
    void setName(int row, const QString& name); ///< Of the channel, and in legends.
    void setColour(int row, Colour colour);
    bool setDye(int row, const QString& name); ///< Or `#rrggbb`; false if there is none like it.
    void setLevels(int row, ContrastLimits levels); ///< Moved apart if they are not in order.
    void setBlackLevel(int row, int low);           ///< Moves the white level where it has to.
    void setWhiteLevel(int row, int high);          ///< Moves the black level where it has to.
    void setGamma(int row, double gamma);
    void useAutomaticLevels(int row); ///< Measured once, in the next image.
    void useFullRange(int row, int bits);
    void resetContrast(int row);               ///< The source's full range, no gamma.
    void nudge(int row, QPoint by);            ///< Pixels to the right and down.
    void setOffset(int row, cv::Point offset); ///< Pixels to the left and up, as channels have it.
    void copyLevelsToAll(int row);
    /// Shows this channel alone; or all of them, if it is alone already.
    void solo(int row);
    void remove(int row); ///< Unless it is the last one.
    void move(int row, int by);
    /// @}

    void useAutomaticLevelsForAll();
    void showAll();
    void showOnly(const std::vector<bool>& visible);
    void resetOffsets();

    /// Measures the levels of all channels in every image, but for those that are set by hand.
    void setContinuousLevels(bool on);

    /// Each channel as settings say, in their order; channels beyond them stay.
    void applySettings(const std::vector<Channel>& settings);

    QUndoStack& undoStack() { return undo_; }

signals:
    /// The image has to be rendered again.
    void edited();
    /// What the user wrote, or settings say, cannot be taken.
    void refused(const QString& reason);

private:
    class EditCommand;
    using Rows = std::vector<ChannelRow>;
    using EditRow = std::function<void(ChannelRow&)>;

    bool has(int row) const { return row >= 0 && row < size(); }
    QString limitsText(int row) const;
    void edit(const std::function<void(Rows&)>& edit);
    void editAll(const EditRow& edit);
    void editOne(int row, const EditRow& edit);
    void fixLevels(ChannelRow& row, ContrastLimits levels) const;
    void setRows(const Rows& rows);

    DyeList dyes_;
    std::vector<ChannelRow> rows_;
    std::vector<ChannelStatistics> statistics_; // of each plane of the source
    bool isContinuous_ = false;
    QUndoStack undo_;
};

} // namespace lumetra
