// The channels and how they are shown, as a table that widgets look at.
#pragma once

#include "apps/common/channel_spec.h"
#include "apps/viewer/channel_statistics.h"

#include <QAbstractTableModel>
#include <QPoint>

#include <vector>

namespace lumetra {

/// One row for each channel. Everything that changes how channels are shown happens here.
class ChannelModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { visibleColumn, colourColumn, dyeColumn, blackColumn, whiteColumn, offsetColumn };
    static constexpr int columns = offsetColumn + 1;

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    const DyeList& dyes() const { return dyes_; }

    /// Replaces the custom dyes; channels with one of them take over its colour.
    void setCustomDyes(const std::vector<Dye>& custom);

    /// Replaces all channels. Those without levels get them from the next image.
    void setChannels(const std::vector<Channel>& channels);

    /// All channels with the levels that they are shown with.
    const std::vector<Channel>& channels() const { return channels_; }
    const Channel& channel(int row) const { return channels_.at(static_cast<size_t>(row)); }
    const ChannelStatistics& statistics(int row) const {
        return statistics_.at(static_cast<size_t>(row));
    }
    int size() const { return static_cast<int>(channels_.size()); }

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
    void setDye(int row, const Dye& dye);
    bool setDye(int row, const QString& name); ///< Or `#rrggbb`; false if there is none like it.
    void setLevels(int row, ContrastLimits levels); ///< Moved apart if they are not in order.
    void setBlackLevel(int row, int low);           ///< Moves the white level where it has to.
    void setWhiteLevel(int row, int high);          ///< Moves the black level where it has to.
    void setGamma(int row, double gamma);
    void useAutomaticLevels(int row);          ///< Measured once, in the next image.
    void useFullRange(int row, int bits = 0);  ///< Of so many bits; 0 for those of the plane.
    void nudge(int row, QPoint by);            ///< Pixels to the right and down.
    void setOffset(int row, cv::Point offset); ///< Pixels to the left and up, as channels have it.
    void copyLevelsToAll(int row);
    /// Shows this channel alone; or all of them, if it is alone already.
    void solo(int row);
    /// @}

    void showAll();
    void resetOffsets();

    /// Measures the levels of all channels in every image.
    void setContinuousLevels(bool on);
    bool hasContinuousLevels() const { return isContinuous_; }

    /// Colours that are told apart without red against green: magenta and green for two channels.
    void useColourBlindSafeColours();

    /// Each channel as settings say, in their order; channels beyond them stay.
    void applySettings(const std::vector<Channel>& settings);

signals:
    /// The image has to be rendered again.
    void edited();
    /// What the user wrote, or settings say, cannot be taken.
    void refused(const QString& reason);

private:
    bool has(int row) const { return row >= 0 && row < size(); }
    ContrastLimits levels(int row) const { return channel(row).levels.value_or(ContrastLimits{}); }
    int largestValue(int row) const;
    template<class Edit>
    void editAll(const Edit& edit);
    template<class Edit>
    void editOne(int row, const Edit& edit);
    void notifyEdited(int firstRow, int lastRow);

    DyeList dyes_;
    std::vector<Channel> channels_;
    std::vector<ChannelStatistics> statistics_;
    std::vector<bool> measuresLevels_; // of each channel, in the next image
    bool isContinuous_ = false;
};

} // namespace lumetra
