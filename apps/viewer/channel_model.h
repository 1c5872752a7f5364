// The channels and how they are shown, as a table that widgets look at.
#pragma once

#include "apps/common/channel.h"
#include "apps/viewer/measure.h"

#include <QAbstractTableModel>

#include <vector>

namespace apps {

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

    /// Replaces the user's own dyes; channels that have one of them follow its colour.
    void setCustomDyes(const QMap<QString, QColor>& custom);

    /// Replaces all channels. Those without levels get them from the next picture.
    void setChannels(const std::vector<Channel>& channels);

    /// All channels with the levels that they are shown with.
    const std::vector<Channel>& channels() const { return channels_; }
    const Channel& channel(int row) const { return channels_.at(static_cast<size_t>(row)); }
    const Measure& measured(int row) const { return measures_.at(static_cast<size_t>(row)); }
    int size() const { return static_cast<int>(channels_.size()); }

    /// The channels without the levels that are to be measured.
    std::vector<Channel> requested() const;

    /// Takes over what was measured, and the levels of the channels that asked for them.
    /// @return Whether levels that were measured are fixed from now on.
    bool adopt(const std::vector<LevelRange>& levels, const std::vector<Measure>& measures);

    /// @name Edits of one channel; a row that is not there changes nothing.
    /// @{
    void setVisible(int row, bool visible);
    void setDye(int row, const Dye& dye);
    void setLevels(int row, LevelRange levels); ///< Moved apart if they are not in order.
    void setGamma(int row, double gamma);
    void useAutomaticLevels(int row);         ///< Measured once, in the next picture.
    void useFullRange(int row, int bits = 0); ///< Of so many bits; 0 for those of the samples.
    void nudge(int row, QPoint by);           ///< Pixels to the right and down.
    void setOffset(int row, QPoint offset);   ///< Pixels to the left and up, as channels have it.
    void copyLevelsToAll(int row);
    /// Shows this channel alone; or all of them, if it is alone already.
    void solo(int row);
    /// @}

    void showAll();
    void resetOffsets();

    /// Levels are measured in every picture.
    void followLevels(bool on);
    bool followsLevels() const { return follows_; }

    /// Colours that colour-blind people tell apart.
    void useDistinctColours();

    /// Each channel as settings say, in their order; channels beyond them stay.
    void applySettings(const std::vector<Channel>& settings);

signals:
    /// The picture has to be made anew.
    void edited();
    /// What the user wrote cannot be taken.
    void refused(const QString& reason);

private:
    bool has(int row) const { return row >= 0 && row < size(); }
    Channel& at(int row) { return channels_[static_cast<size_t>(row)]; }
    int largestSample(int row) const;
    bool setDyeByWords(int row, const QString& words);
    void changed(int firstRow, int lastRow);

    DyeList dyes_;
    std::vector<Channel> channels_;
    std::vector<Measure> measures_;
    std::vector<bool> measuresLevels_; // of each channel, in the next picture
    bool follows_ = false;
};

/// The colours for so many channels that are told apart without red against green: magenta and
/// green for two.
std::vector<QColor> distinctColours(int channels);

} // namespace apps
