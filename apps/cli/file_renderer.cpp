#include "apps/cli/file_renderer.h"

#include "apps/cli/channel_levels.h"
#include "apps/cli/image_strips.h"
#include "apps/cli/signals.h"
#include "apps/cli/thumbnails.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/messages.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"
#include "imageio/png_encoder.h"
#include "imageio/tiff_writer.h"

#include <opencv2/core.hpp>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <memory>
#include <new>

namespace lumetra {
namespace {

/// To be called in a catch block.
[[noreturn]] void failRendering(const QString& output) {
    throw Error(QStringLiteral("%1: cannot be rendered: %2").arg(output, currentExceptionText()));
}

} // namespace

std::vector<Channel> FileRenderer::channelsWithLimits(ChannelFiles& files) {
    std::vector<Channel> channels;
    for (std::size_t number = 0; number < rendering_.channels.size(); ++number)
        channels.push_back(channelWithLimits(files, number, rendering_.channels[number],
                                             planes_[number], rendering_.settings));
    return channels;
}

RenderedFile FileRenderer::render(const RenderJob& job) {
    checkOutput(job.output, inputNames(job), rendering_.existing);
    ChannelFiles files(job.inputs, rendering_.pages);
    if (canRenderInStrips(job.output))
        if (const auto image = LargeImage::of(files))
            return renderLarge(*image, files, job.output);
    return renderWhole(files, job.output);
}

/// Whether nothing is wanted of an image for which all of it has to be at hand.
bool FileRenderer::canRenderInStrips(const QString& output) const {
    const auto needsRange = [](const ChannelSpec& channel) {
        return channel.channel.colormap && channel.levels.method == LevelPolicy::Method::none;
    };
    return canBeWrittenInStrips(output) && rendering_.framing.isEmpty() &&
           rendering_.annotation.isEmpty() && !rendering_.panels &&
           std::none_of(rendering_.channels.begin(), rendering_.channels.end(), needsRange);
}

RenderedFile FileRenderer::renderLarge(const LargeImage& image, const ChannelFiles& files,
                                       const QString& output) {
    const auto& wanted = rendering_.channels;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        requireFit(files.file(i).file(), i, wanted[i], image.bitDepth(i), rendering_.settings);
    std::vector<Histogram> histograms(wanted.size());
    if (hasMeasuredLevels(wanted))
        histograms = image.histograms(rendering_.jobs);
    RenderedFile rendered;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        rendered.channels.push_back(channelWithLimits(wanted[i], histograms[i]));
    QDir().mkpath(QFileInfo(output).path()); // what goes wrong, writing tells
    try {
        const RenderSpec rendering = withPixelSize(rendering_, files.file(0));
        rendered.size = sizeText(image.render(rendered.channels, rendering, output));
    } catch (const cv::Exception&) {
        failRendering(output);
    } catch (const std::bad_alloc&) {
        failRendering(output);
    }
    return rendered;
}

RenderedFile FileRenderer::renderWhole(ChannelFiles& files, const QString& output) {
    files.planes(0, planes_);
    const std::vector<Channel> channels = channelsWithLimits(files);
    const RenderSpec rendering = withPixelSize(rendering_, files.file(0));
    RenderedFile rendered{{}, channels};
    try {
        const auto draw = [&](int i) -> const Figure& {
            if (files.images() > 1)
                files.planes(i, planes_);
            renderFigure(renderer_, planes_, channels, rendering, figure_);
            if (makesThumbnails_ && i == 0)
                rendered.thumbnail = thumbnailOf(figure_.image);
            return figure_;
        };
        writeImages(output, rendering, files.images(), draw);
    } catch (...) {
        planes_.clear();
        throw;
    }
    planes_.clear();
    rendered.size = sizeText(figure_.image);
    return rendered;
}

RenderSpec withPixelSize(RenderSpec rendering, const ImageFile& file) {
    auto& bar = rendering.annotation.scaleBar;
    if (!rendering.pixelSize)
        rendering.pixelSize = file.metadata().pixelSizeX;
    if (bar && !rendering.pixelSize)
        throw Error(
            QStringLiteral("%1: does not say its pixel size; give --pixel-size").arg(file.file()));
    if (bar)
        bar->pixelSize = *rendering.pixelSize;
    return rendering;
}

QStringList inputNames(const InputFile& input) {
    return input.sliceFiles.isEmpty() ? QStringList{input.file} : input.sliceFiles;
}

QStringList inputNames(const RenderJob& job) {
    QStringList names;
    for (const InputFile& input : job.inputs)
        names << inputNames(input);
    return names;
}

void writeImages(const QString& output, const RenderSpec& rendering, int count,
                 const std::function<const Figure&(int)>& draw) {
    QDir().mkpath(QFileInfo(output).path()); // what goes wrong, writing tells
    const auto drawn = [&](int i) -> const Figure& {
        try {
            return draw(i);
        } catch (const cv::Exception&) {
            failRendering(output);
        } catch (const std::bad_alloc&) {
            failRendering(output);
        }
    };
    if (count == 1) {
        const Figure& figure = drawn(0);
        throwIfInterrupted();
        if (isLarge(figure.image.size()) && canBeWrittenInStrips(output))
            return writeStrips(output, figure.image.size(), figure.image.type(), figure.pixelSize,
                               rendering, [&]() -> StripPainter {
                                   return [&](std::size_t /*number*/, cv::Range rows) {
                                       return figure.image.rowRange(rows);
                                   };
                               });
        return writeImage(output, figure.image, rendering.existing, figure.pixelSize,
                          rendering.compression);
    }
    if (outputFormat(output) != OutputFormat::tiff)
        throw Error(QStringLiteral("%1: a stack of %2 pages is written as .tif or .tiff")
                        .arg(output)
                        .arg(count));
    std::unique_ptr<TiffWriter> writer;
    for (int i = 0; i < count; ++i) {
        const Figure& page = drawn(i);
        if (!writer)
            writer = std::make_unique<TiffWriter>(output, rendering.existing,
                                                  page.image.total() * page.image.elemSize() *
                                                      static_cast<std::size_t>(count),
                                                  page.pixelSize, rendering.compression);
        throwIfInterrupted();
        writer->add(page.image);
    }
    throwIfInterrupted();
    writer->commit();
}

} // namespace lumetra
