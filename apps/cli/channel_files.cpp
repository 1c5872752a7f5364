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
                                                   const InputFile& input) const {
    ChannelPlanes result{std::move(file), input, std::max(input.channels.first, 1)};
    const int wanted = input.page > 0 ? input.page : pages_.number;
    const int channels =
        wanted > 0 ? result.file->components(wanted) : result.file->axes().channels;
    if (channels > 1 && input.channels.first != input.channels.last)
        throw Error(QStringLiteral("%1: stands for several channels; choose one of them, as [c1]")
                        .arg(fileSpec(input)));
    if (channels > 1 && !input.channels.isNamed())
        throw Error(QStringLiteral("%1: has %2 channels; choose one of them, as %1[c1]")
                        .arg(input.file)
                        .arg(channels));
    if (pages_.all && wanted > 0)
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
        if (pages_.project)
            result.images.push_back(stack);
        for (std::size_t i = 0; !pages_.project && i < stack.size(); ++i)
            result.images.push_back({stack[i]});
    }
    if (!pages_.all && result.images.size() > 1)
        throw Error(choices(*result.file, pages_.project ? 1 : slices.last - slices.first + 1,
                            frames.last - frames.first + 1));
    return result;
}

ChannelFiles::ChannelFiles(const std::vector<InputFile>& inputs, const PageSelection& pages)
    : pages_(pages) {
    for (const InputFile& input : inputs) {
        if (!input.sliceFiles.isEmpty() && !pages.project)
            throw UsageError(
                QStringLiteral("%1 stands for z-slices in %2: give --project max, mean "
                               "or sum")
                    .arg(input.file, plural(static_cast<std::size_t>(input.sliceFiles.size()),
                                            QStringLiteral("file"))));
        const QString name = input.sliceFiles.value(0, input.file);
        const auto known =
            std::find_if(channels_.begin(), channels_.end(), [&](const ChannelPlanes& channel) {
                return channel.file->file() == name;
            });
        channels_.push_back(planesOf(
            known != channels_.end() ? known->file : std::make_shared<ImageFile>(name), input));
        const ChannelPlanes &first = channels_.front(), &last = channels_.back();
        if (last.images.size() != first.images.size())
            throw Error(QStringLiteral("the files give different numbers of images: %1 gives %2, "
                                       "%3 gives %4")
                            .arg(first.file->file())
                            .arg(first.images.size())
                            .arg(name)
                            .arg(last.images.size()));
    }
    images_ = static_cast<int>(channels_.front().images.size());
}

cv::Mat ChannelFiles::plane(const ChannelPlanes& channel, const Plane& plane) {
    return plane.page > 0 ? channel.file->planeOfPage(plane.page, channel.channel)
                          : channel.file->plane(channel.channel, plane.slice, plane.frame);
}

std::unique_ptr<PlaneRows> ChannelFiles::rowsOf(const ImageFile& file, std::size_t channel) const {
    const ChannelPlanes& planes = channels_[channel];
    if (images_ != 1 || planes.images.front().size() != 1 || planes.input.sliceFiles.size() > 1)
        return {};
    const Plane& plane = planes.images.front().front();
    return plane.page > 0 ? file.rowsOfPage(plane.page, planes.channel)
                          : file.rows(planes.channel, plane.slice, plane.frame);
}

std::unique_ptr<PlaneRows> ChannelFiles::rows(std::size_t channel) const {
    return rowsOf(file(channel), channel);
}

OpenRows ChannelFiles::openRows(std::size_t channel) const {
    OpenRows opened{std::make_unique<ImageFile>(file(channel).file()), {}};
    opened.rows = rowsOf(*opened.file, channel);
    if (!opened.rows)
        throw Error(QStringLiteral("%1: has changed meanwhile").arg(file(channel).file()));
    return opened;
}

void ChannelFiles::addPlanes(const ChannelPlanes& channel, int i, Projection& projection) {
    for (const Plane& part : channel.images.at(static_cast<std::size_t>(i))) {
        throwIfInterrupted();
        try {
            projection.add(plane(channel, part));
        } catch (const RenderError& error) {
            throw Error(QStringLiteral("%1: cannot be projected: %2")
                            .arg(channel.file->file(), toQt(error.what())));
        }
    }
}

cv::Mat ChannelFiles::raw(std::size_t channel, int i) {
    const ChannelPlanes& planes = channels_[channel];
    const std::vector<Plane>& image = planes.images[static_cast<std::size_t>(i)];
    const QStringList& files = planes.input.sliceFiles;
    if (image.size() == 1 && files.size() <= 1)
        return plane(planes, image.front());
    Projection projection(pages_.project.value_or(ProjectionMethod::max));
    addPlanes(planes, i, projection);
    for (int k = 1; k < static_cast<int>(files.size()); ++k) {
        const ChannelPlanes slice = planesOf(std::make_shared<ImageFile>(files[k]), planes.input);
        if (slice.images.size() != planes.images.size())
            throw Error(QStringLiteral("%1 and %2 have different numbers of time points")
                            .arg(files[0], files[k]));
        addPlanes(slice, i, projection);
    }
    return projection.result();
}

FiniteRange ChannelFiles::finiteRangeOf(std::size_t channel) {
    FiniteRange range;
    for (int i = 0; i < images_; ++i) {
        throwIfInterrupted();
        range.add(finiteRange(raw(channel, i)));
    }
    return range;
}

cv::Mat ChannelFiles::gray(std::size_t channel, int i) {
    cv::Mat values = raw(channel, i);
    auto& [file, input, number, images, range, type] = channels_[channel];
    if (type.value_or(values.type()) != values.type())
        throw Error(QStringLiteral("%1: has planes of different bit depths").arg(input.file));
    type = values.type();
    if (!needsConversion(values))
        return values;
    if (!range)
        range = images_ == 1 ? finiteRange(values) : finiteRangeOf(channel);
    return toDisplay16(values, range->low, range->high);
}

cv::Mat ChannelFiles::any(std::size_t channel, int i) {
    const ChannelPlanes& planes = channels_[channel];
    const std::vector<Plane>& image = planes.images[static_cast<std::size_t>(i)];
    const Plane& first = image.front();
    const int page =
        first.page > 0 ? first.page : planes.file->pageOf(planes.channel, first.slice, first.frame);
    if (image.size() > 1 || planes.input.sliceFiles.size() > 1 || page == 0 ||
        planes.file->components(page) > 1)
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

void ChannelFiles::setRange(std::size_t channel, ValueLimits limits) {
    FiniteRange& range = channels_[channel].range.emplace();
    range.low = limits.low;
    range.high = limits.high;
}

} // namespace lumetra
