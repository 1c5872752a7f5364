#include "apps/cli/file_renderer.h"

#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
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

std::vector<Channel> FileRenderer::channelsWithLevels(const ChannelFiles& files) {
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
        channels.back().levels = levelsOf(histogram, policy);
    }
    return channels;
}

QString FileRenderer::render(const RenderJob& job) {
    checkOutput(job.output, inputNames(job), rendering_.existing);
    const ChannelFiles files(job.inputs, rendering_.pages);
    if (files.images() == 1)
        files.planes(0, planes_);
    const std::vector<Channel> channels = channelsWithLevels(files);
    try {
        writeImages(job.output, rendering_.existing, files.images(), [&](int i) -> const cv::Mat& {
            if (files.images() > 1)
                files.planes(i, planes_);
            renderer_.render(planes_, channels, image_);
            annotate(image_, channels, rendering_.annotation);
            return image_;
        });
    } catch (...) {
        planes_.clear();
        throw;
    }
    planes_.clear();
    return sizeText(image_);
}

QStringList inputNames(const RenderJob& job) {
    QStringList names;
    for (const InputFile& input : job.inputs)
        names << input.file;
    return names;
}

void writeImages(const QString& output, Existing existing, int count,
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
        return writeImage(output, image, existing);
    }
    if (outputFormat(output) != OutputFormat::tiff)
        throw Error(QStringLiteral("%1: a stack of %2 pages is written as .tif or .tiff")
                        .arg(output)
                        .arg(count));
    std::unique_ptr<TiffWriter> writer;
    for (int i = 0; i < count; ++i) {
        const cv::Mat& page = drawn(i);
        if (!writer)
            writer = std::make_unique<TiffWriter>(
                output, existing, page.total() * page.elemSize() * static_cast<std::size_t>(count));
        throwIfInterrupted();
        writer->add(page);
    }
    throwIfInterrupted();
    writer->commit();
}

} // namespace lumetra
