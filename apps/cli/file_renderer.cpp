#include "apps/cli/file_renderer.h"

#include "apps/cli/figure.h"
#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/messages.h"
#include "imageio/image_writer.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"
#include "imageio/tiff_writer.h"

#include <opencv2/core.hpp>

#include <QDir>
#include <QFileInfo>

#include <memory>
#include <new>

namespace lumetra {
namespace {

/// To be called in a catch block.
[[noreturn]] void failRendering(const QString& output) {
    throw Error(QStringLiteral("%1: cannot be rendered: %2").arg(output, currentExceptionText()));
}

} // namespace

/// Values that had to be brought to 16 bits are so under the limits that the user gave, if any.
void FileRenderer::convert(ChannelFiles& files) {
    for (std::size_t number = 0; number < rendering_.channels.size(); ++number) {
        const LevelPolicy& policy = rendering_.channels[number].levels;
        const auto& range = files.convertedRange(number);
        if (!range)
            continue;
        const QString& name = files.file(number).file();
        if (policy.method == LevelPolicy::Method::none)
            throw Error(QStringLiteral("%1: has values that are neither 8- nor 16-bit unsigned: "
                                       "give contrast limits (--levels)")
                            .arg(name));
        if (range->notFinite > 0)
            printError(QStringLiteral("%1: %2 that are infinite or not a number are shown as black")
                           .arg(name, plural(range->notFinite, QStringLiteral("pixel value"))));
        if (!policy.known())
            continue;
        files.setRange(number, *policy.known());
        if (files.images() == 1)
            planes_[number] = files.gray(number, 0);
    }
}

std::vector<Channel> FileRenderer::channelsWithLevels(ChannelFiles& files) {
    std::vector<Channel> channels;
    for (std::size_t number = 0; number < rendering_.channels.size(); ++number) {
        const auto& [channel, policy] = rendering_.channels[number];
        Histogram histogram;
        // The planes of a single image are there already.
        for (int i = 0; policy.isMeasured() && i < files.images(); ++i) {
            throwIfInterrupted();
            histogram.add(files.images() == 1 ? planes_[number] : files.gray(number, i));
        }
        channels.push_back(channel);
        const bool isConverted = files.convertedRange(number) && policy.known();
        channels.back().levels =
            isConverted ? ContrastLimits{0, 65535} : levelsOf(histogram, policy);
        if (policy.isMeasured())
            channels.back().levelsBits = histogram.bitDepth();
    }
    return channels;
}

/// Reads the planes of an image, and refuses those that limits of settings would not fit.
void FileRenderer::readPlanes(ChannelFiles& files, int image, const RenderJob& job) {
    files.planes(image, planes_);
    for (std::size_t i = 0; i < planes_.size(); ++i) {
        const auto& [channel, policy] = rendering_.channels[i];
        const int bits = planes_[i].depth() == CV_8U ? 8 : 16;
        if (policy.method == LevelPolicy::Method::fixed && channel.levelsBits > 0 &&
            channel.levelsBits != bits)
            throw Error(QStringLiteral("%1 has %2 bits, and the contrast limits of channel %3 in "
                                       "%4 were measured at %5 bits; give --levels")
                            .arg(job.inputs[i].file, QString::number(bits), QString::number(i + 1),
                                 rendering_.settings, QString::number(channel.levelsBits)));
    }
}

RenderedFile FileRenderer::render(const RenderJob& job) {
    checkOutput(job.output, inputNames(job), rendering_.existing);
    ChannelFiles files(job.inputs, rendering_.pages);
    readPlanes(files, 0, job);
    convert(files);
    const std::vector<Channel> channels = channelsWithLevels(files);
    const RenderSpec rendering = withPixelSize(rendering_, files.file(0));
    try {
        const auto draw = [&](int i) -> const cv::Mat& {
            if (files.images() > 1)
                readPlanes(files, i, job);
            renderFigure(renderer_, planes_, channels, rendering, image_);
            return image_;
        };
        writeImages(job.output, rendering, files.images(), draw);
    } catch (...) {
        planes_.clear();
        throw;
    }
    planes_.clear();
    return {sizeText(image_), channels};
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
    if (rendering.framing.size) // whose pixels are larger
        rendering.pixelSize.reset();
    return rendering;
}

QStringList inputNames(const RenderJob& job) {
    QStringList names;
    for (const InputFile& input : job.inputs)
        names << input.file;
    return names;
}

void writeImages(const QString& output, const RenderSpec& rendering, int count,
                 const std::function<const cv::Mat&(int)>& draw) {
    QDir().mkpath(QFileInfo(output).path()); // what goes wrong, writing tells
    const auto drawn = [&](int i) -> const cv::Mat& {
        try {
            return draw(i);
        } catch (const cv::Exception&) {
            failRendering(output);
        } catch (const std::bad_alloc&) {
            failRendering(output);
        }
    };
    if (count == 1) {
        const cv::Mat& image = drawn(0);
        throwIfInterrupted();
        return writeImage(output, image, rendering.existing, rendering.pixelSize,
                          rendering.compression);
    }
    if (outputFormat(output) != OutputFormat::tiff)
        throw Error(QStringLiteral("%1: a stack of %2 pages is written as .tif or .tiff")
                        .arg(output)
                        .arg(count));
    std::unique_ptr<TiffWriter> writer;
    for (int i = 0; i < count; ++i) {
        const cv::Mat& page = drawn(i);
        if (!writer)
            writer = std::make_unique<TiffWriter>(output, rendering.existing,
                                                  page.total() * page.elemSize() *
                                                      static_cast<std::size_t>(count),
                                                  rendering.pixelSize, rendering.compression);
        throwIfInterrupted();
        writer->add(page);
    }
    throwIfInterrupted();
    writer->commit();
}

} // namespace lumetra
