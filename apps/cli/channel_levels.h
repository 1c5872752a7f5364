// The contrast limits of channels, in the pixel values of their files.
#pragma once

#include "apps/cli/channel_files.h"
#include "apps/cli/render_spec.h"
#include "render/histogram.h"

#include <optional>

namespace lumetra {

/// The pixel values of a channel, counted.
struct ChannelValues {
    /// Of values that are neither 8- nor 16-bit unsigned: the range that 0 to 65535 stand for in
    /// the histogram.
    std::optional<FiniteRange> range{};
    Histogram histogram{};
};

/// Where a policy's limits are measured, the limits of these values; else the policy itself. Limits
/// of floats are rounded to seven digits, as `LevelPolicy::text` tells them.
LevelPolicy settledLevels(const LevelPolicy& policy, const ChannelValues& values);

/// Gives a channel limits that are settled.
/// @param values  What they were found of, or will be used for; only its kind counts.
void setLimits(Channel& channel, const LevelPolicy& settled, const ChannelValues& values);

/// Refuses contrast limits that would not fit values of 8 or 16 bits, unsigned.
/// @throws Error as `channelWithLimits`.
void requireFit(const QString& file, std::size_t number, const ChannelSpec& wanted, int bits,
                const QString& settings);

/// A channel of such values with its contrast limits.
/// @param histogram  Of the values, if its limits are to be measured.
Channel channelWithLimits(const ChannelSpec& wanted, const Histogram& histogram);

/// The contrast limits of a channel's files: known, or measured over all of their images. Values
/// that are neither 8- nor 16-bit unsigned are brought to 16 bits under them from then on, and what
/// is not a number is told.
/// @param number    Of the channel among those of the files.
/// @param plane     Its plane of the only image, if there is only one; renewed if that changes.
/// @param settings  The file that limits are from; may be empty.
/// @return The channel with its limits.
/// @throws Error with the file's name if limits do not fit its values; as `ChannelFiles::gray`;
///         Interrupted.
Channel channelWithLimits(ChannelFiles& files, std::size_t number, const ChannelSpec& wanted,
                          cv::Mat& plane, const QString& settings);

/// The contrast limits of a channel as `--levels` understands them; empty if it has none.
QString levelsText(const Channel& channel);

} // namespace lumetra
