// How images are to be rendered.
#pragma once

#include "apps/cli/options.h"
#include "apps/common/annotation.h"
#include "apps/common/settings.h"
#include "imageio/atomic_file.h"
#include "imageio/output_format.h"
#include "render/channel.h"
#include "render/framing.h"
#include "render/level_policy.h"
#include "render/panels.h"

#include <optional>
#include <vector>

namespace lumetra {

/// How one channel is shown.
struct ChannelSpec {
    /// The channel with the contrast limits that are known before its plane is; none if they are to
    /// be measured, or if pixel values stay as they are.
    Channel channelWithKnownLevels() const;

    /// Its `levels` are not used: `levels` below says how they are found. Its `levelsBits` are the
    /// bit depth that limits of settings are for.
    Channel channel;
    LevelPolicy levels; ///< How its contrast limits are found.
};

/// How images are to be rendered, the same for all of a data set.
struct RenderSpec {
    std::vector<ChannelSpec> channels;
    PageSelection pages;
    Framing framing;
    Annotation annotation;
    std::optional<double> pixelSize;    ///< In µm, if the user gave it.
    Existing existing = Existing::keep; ///< What becomes of outputs that are there.
    std::optional<PanelColours> panels; ///< Whether each channel is shown beside all, and how.
    QString settings;                   ///< The file that channels are from; may be empty.
    TiffCompression compression = TiffCompression::lzw; ///< Of outputs that are TIFF files.
    int jobs = 1;                                       ///< Threads for a large image.
};

/// Whether contrast limits of any of the channels are to be measured.
bool hasMeasuredLevels(const std::vector<ChannelSpec>& channels);

/// What options say of outputs that are there.
Existing existingOf(const OutputOptions& output);

/// The dyes, with those of a file of custom dyes if its name is not empty.
/// @throws Error with the file's name.
DyeList dyesWith(const QString& customDyes);

/// The settings that the options name, if they do.
/// @throws Error with the file's name.
std::optional<Settings> settingsOf(const ChannelOptions& options, const DyeList& dyes);

Annotation annotationOf(const AnnotationOptions& options);

/// @throws UsageError for a crop or a size that is none.
Framing framingOf(const FramingOptions& options);

/// @throws UsageError for panels that are neither.
std::optional<PanelColours> panelsOf(const MergeOptions& options);

/// Channels with the contrast limits, gamma and visibility that options ask for: the user's limits
/// for all or for each, otherwise the channel's own, otherwise `clip:0.1`.
/// @param hidden        Numbers of channels, from 1.
/// @param fromSettings  Whether the channels have limits of their own.
/// @throws UsageError if options fit neither the number of channels nor each other.
std::vector<ChannelSpec> channelSpecs(const std::vector<Channel>& channels,
                                      const ContrastOptions& contrast,
                                      const std::vector<int>& hidden, bool fromSettings);

/// All that the options of a command say about rendering.
/// @throws UsageError as `channelSpecs`.
RenderSpec renderSpec(const std::vector<Channel>& channels, const ImageOptions& image,
                      const ChannelOptions& options);

} // namespace lumetra
