#include "apps/cli/channel_files.h"

#include "apps/cli/signals.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/text.h"
#include "imageio/file_error.h"
#include "render/render_error.h"

#include <algorithm>

namespace lumetra {
namespace {

/// What is named of an axis, or all of it.
AxisRange within(const InputFile& input, const AxisRange& range, int count, const QString& noun) {
    const AxisRange whole{1, count};
    if (range.isNamed() && range.last > count)
        throw Error(QStringLiteral("%1: has %2, no %3")
                        .arg(fileSpec(input), plural(static_cast<std::size_t>(count), noun))
                        .arg(range.last));
    return range.isNamed() ? range : whole;
}

/// What is left to choose where one image is wanted and a file has several.
QString choices(const ImageFile& file, int slices, int frames) {
    if (!file.metadata().axesKnown)
        return QStringLiteral(
                   "%1: has %2 pages; choose one with --page, or --all-pages or --project")
            .arg(file.file())
            .arg(file.pages());
    QStringList has, choose;
    if (slices > 1) {
        has << plural(static_cast<std::size_t>(slices), QStringLiteral("z-slice"));
        choose << QStringLiteral("FILE[z1]") << QStringLiteral("--project max");
    }
    if (frames > 1) {
        has << plural(static_cast<std::size_t>(frames), QStringLiteral("time point"));
        choose << QStringLiteral("FILE[t1]");
    }
    return QStringLiteral("%1: has %2; choose with %3, or take all with --all-pages")
        .arg(file.file(), has.join(QStringLiteral(" and ")), choose.join(QStringLiteral(", ")));
}

} // namespace

ChannelFiles::ChannelPlanes ChannelFiles::planesOf(std::shared_ptr<ImageFile> file,
                                                   const InputFile& input,
                                                   const PageSelection& pages) {
    ChannelPlanes result{std::move(file), std::max(input.channels.first, 1), {}, {}};
    const int wanted = input.page > 0 ? input.page : pages.number;
    const int channels =
        wanted > 0 ? result.file->components(wanted) : result.file->axes().channels;
    if (channels > 1 && input.channels.first != input.channels.last)
        throw Error(QStringLiteral("%1: stands for several channels; choose one of them, as [c1]")
                        .arg(fileSpec(input)));
    if (channels > 1 && !input.channels.isNamed())
        throw Error(QStringLiteral("%1: has %2 channels; choose one of them, as %1[c1]")
                        .arg(input.file)
                        .arg(channels));
    if (pages.all && wanted > 0)
        throw UsageError(QStringLiteral("%1: names a page, which --all-pages does not allow")
                             .arg(fileSpec(input)));
    if (wanted > 0) {
        result.images = {{{0, 0, wanted}}};
        return result;
    }
    const Axes& axes = result.file->axes();
    const bool known = result.file->metadata().axesKnown;
    const AxisRange slices = within(input, input.slices, axes.slices, QStringLiteral("z-slice"));
    const AxisRange frames = within(input, input.frames, axes.frames, QStringLiteral("time point"));
    for (int frame = frames.first; frame <= frames.last; ++frame) {
        std::vector<Plane> stack;
        for (int slice = slices.first; slice <= slices.last; ++slice)
            stack.push_back({slice, frame, known ? 0 : slice});
        if (pages.project)
            result.images.push_back(stack);
        for (std::size_t i = 0; !pages.project && i < stack.size(); ++i)
            result.images.push_back({stack[i]});
    }
    if (!pages.all && result.images.size() > 1)
        throw Error(choices(*result.file, pages.project ? 1 : slices.last - slices.first + 1,
                            frames.last - frames.first + 1));
    return result;
}

ChannelFiles::ChannelFiles(const std::vector<InputFile>& inputs, const PageSelection& pages)
    : projection_(pages.project.value_or(ProjectionMethod::max)) {
    for (const InputFile& input : inputs) {
        const auto known =
            std::find_if(channels_.begin(), channels_.end(), [&](const ChannelPlanes& channel) {
                return channel.file->file() == input.file;
            });
        channels_.push_back(planesOf(
            known != channels_.end() ? known->file : std::make_shared<ImageFile>(input.file), input,
            pages));
        const ChannelPlanes &first = channels_.front(), &last = channels_.back();
        if (last.images.size() != first.images.size())
            throw Error(QStringLiteral("the files give different numbers of images: %1 gives %2, "
                                       "%3 gives %4")
                            .arg(first.file->file())
                            .arg(first.images.size())
                            .arg(input.file)
                            .arg(last.images.size()));
    }
    images_ = static_cast<int>(channels_.front().images.size());
}

cv::Mat ChannelFiles::rawPlane(const ChannelPlanes& channel, const Plane& plane) {
    return plane.page > 0 ? channel.file->planeOfPage(plane.page, channel.channel)
                          : channel.file->plane(channel.channel, plane.slice, plane.frame);
}

FiniteRange ChannelFiles::finiteRangeOf(const ChannelPlanes& channel) {
    FiniteRange range;
    for (const std::vector<Plane>& image : channel.images)
        for (const Plane& plane : image) {
            throwIfInterrupted();
            range.add(finiteRange(rawPlane(channel, plane)));
        }
    return range;
}

cv::Mat ChannelFiles::displayPlane(ChannelPlanes& channel, const Plane& plane) {
    cv::Mat raw = rawPlane(channel, plane);
    if (!needsConversion(raw))
        return raw;
    if (!channel.range)
        channel.range = finiteRangeOf(channel);
    return toDisplay16(raw, channel.range->low, channel.range->high);
}

cv::Mat ChannelFiles::gray(std::size_t channel, int i) {
    ChannelPlanes& planes = channels_[channel];
    const std::vector<Plane>& image = planes.images[static_cast<std::size_t>(i)];
    if (image.size() == 1)
        return displayPlane(planes, image.front());
    Projection projection(projection_);
    for (const Plane& plane : image) {
        throwIfInterrupted();
        try {
            projection.add(displayPlane(planes, plane));
        } catch (const RenderError& error) {
            throw Error(QStringLiteral("%1: cannot be projected: %2")
                            .arg(planes.file->file(), toQt(error.what())));
        }
    }
    return projection.result();
}

cv::Mat ChannelFiles::any(std::size_t channel, int i) {
    const ChannelPlanes& planes = channels_[channel];
    const std::vector<Plane>& image = planes.images[static_cast<std::size_t>(i)];
    const Plane& first = image.front();
    const int page =
        first.page > 0 ? first.page : planes.file->pageOf(planes.channel, first.slice, first.frame);
    if (image.size() > 1 || page == 0 || planes.file->components(page) > 1)
        return gray(channel, i);
    try {
        return planes.file->page(page);
    } catch (const FileError&) { // of values that have to be brought to 16 bits
        return gray(channel, i);
    }
}

void ChannelFiles::planes(int i, std::vector<cv::Mat>& planes) {
    planes.resize(channels_.size());
    for (cv::Mat& plane : planes)
        plane.release(); // before others are read
    for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
        throwIfInterrupted();
        planes[channel] = gray(channel, i);
        requireEqualSizes(file(0).file(), planes[0], file(channel).file(), planes[channel]);
    }
}

void ChannelFiles::setRange(std::size_t channel, ContrastLimits limits) {
    FiniteRange& range = channels_[channel].range.emplace();
    range.low = limits.low;
    range.high = limits.high;
}

} // namespace lumetra
