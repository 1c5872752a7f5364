// One image file from the files of its channels.
#pragma once

#include "apps/cli/channel_files.h"
#include "apps/cli/figure.h"
#include "apps/cli/large_image.h"
#include "apps/cli/render_spec.h"
#include "render/renderer.h"

#include <QString>

#include <functional>
#include <vector>

namespace lumetra {

/// The files of one image.
struct RenderJob {
    std::vector<InputFile> inputs; ///< One for each channel.
    QString output;
};

/// What has become of the files of one image.
struct RenderedFile {
    QString size;                  ///< Of the image, in words.
    std::vector<Channel> channels; ///< With the contrast limits that were used.
    cv::Mat thumbnail{};           ///< Of the first image, if it is wanted.
};

/// Renders images one after another, and keeps the memory that it needs.
class FileRenderer {
public:
    /// @param rendering  Kept by reference.
    explicit FileRenderer(const RenderSpec& rendering, bool makesThumbnails = false)
        : rendering_(rendering), makesThumbnails_(makesThumbnails) {}

    /// Reads, renders and writes one image, or a stack. Contrast limits that are to be measured are
    /// measured over all of its pages.
    /// @throws Error, if only because contrast limits of settings were measured at another bit
    ///         depth; Interrupted.
    RenderedFile render(const RenderJob& job);

private:
    RenderedFile renderWhole(ChannelFiles& files, const QString& output);
    RenderedFile renderLarge(const LargeImage& image, const ChannelFiles& files,
                             const QString& output);
    bool canRenderInStrips(const QString& output) const;
    std::vector<Channel> channelsWithLimits(ChannelFiles& files);

    const RenderSpec& rendering_;
    bool makesThumbnails_;
    Renderer renderer_;
    std::vector<cv::Mat> planes_;
    Figure figure_;
};

/// The names of the files that are read.
QStringList inputNames(const InputFile& input);
QStringList inputNames(const RenderJob& job);

/// How images of a file are rendered, whose pixel size counts where the user gave none.
/// @throws Error if a scale bar is wanted and nobody tells the pixel size.
RenderSpec withPixelSize(RenderSpec rendering, const ImageFile& file);

/// Writes the images that `draw` makes for 0 to `count` − 1 into a file: one, or a stack. Makes its
/// folder.
/// @throws Error with the file's name; Interrupted.
void writeImages(const QString& output, const RenderSpec& rendering, int count,
                 const std::function<const Figure&(int)>& draw);

} // namespace lumetra
