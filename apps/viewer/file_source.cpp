#include "apps/viewer/file_source.h"

#include "apps/common/error.h"
#include "apps/common/file_channels.h"
#include "apps/common/image_size.h"
#include "apps/common/text.h"
#include "imageio/value_conversion.h"
#include "render/render_error.h"

#include <QFileInfo>

#include <algorithm>
#include <tuple>
#include <utility>

namespace lumetra {
namespace {

int length(const AxisRange& range) { return range.last - range.first + 1; }

/// What is named of an axis, or all of it.
/// @param problem  Names the file, how many there are, and the one that is not there.
AxisRange rangeOf(const AxisRange& named, int count, const QString& file, const QString& problem) {
    if (named.last > count)
        throw Error(problem.arg(file).arg(count).arg(named.last));
    return named.isNamed() ? named : AxisRange{1, count};
}

/// The number that a channel shows of those that there are for it.
int chosen(const AxisRange& range, int number) {
    return length(range) == 1 ? range.first : range.first + number - 1;
}

/// Whether a word stands in a text without letters beside it: "DIC" is not meant by "indicator".
bool holdsWord(const QString& text, const QString& word) {
    for (auto at = text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
         at = text.indexOf(word, at + 1, Qt::CaseInsensitive)) {
        const auto end = at + word.size();
        if ((at == 0 || !text[at - 1].isLetter()) && (end == text.size() || !text[end].isLetter()))
            return true;
    }
    return false;
}

} // namespace

Channel guessedChannel(const QString& file, int number, const DyeList& dyes) {
    constexpr std::size_t shortestName = 3;
    const QString name = QFileInfo(file).completeBaseName();
    Channel channel;
    for (const Dye& dye : dyes.all())
        if (dye.name.size() >= std::max(shortestName, channel.dye.size() + 1) &&
            dye.origin != DyeOrigin::colour && holdsWord(name, toQt(dye.name)))
            std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    if (channel.dye.empty()) {
        static const char* const usual[] = {"DAPI", "FITC", "TRITC", "Cy5"};
        const Dye& dye = dyes.at(usual[number % 4]);
        std::tie(channel.dye, channel.colour) = std::tie(dye.name, dye.colour);
    }
    return channel;
}

FileSource::FileSource(const std::vector<ChannelFile>& files, const DyeList& dyes) {
    for (const ChannelFile& named : files) {
        const auto known = std::find_if(files_.begin(), files_.end(), [&](const ImageFile& file) {
            return file.file() == named.file;
        });
        const auto number = static_cast<std::size_t>(known - files_.begin());
        if (known == files_.end())
            files_.emplace_back(named.file);
        addChannels(number, named, dyes);
    }
    pixelSize_ = files_.front().metadata().pixelSizeX;
}

void FileSource::addChannels(std::size_t number, const ChannelFile& named, const DyeList& dyes) {
    const ImageFile& file = files_[number];
    const std::vector<InputFile> inputs = channelsOf(file, named);
    const Channel& channel = named.channel;
    const bool isNamed = !channel.dye.empty() || channel.colour != Channel{}.colour;
    if (isNamed && inputs.size() > 1)
        throw Error(tr("%1: has %2 channels; choose one of them, as %1[c1]")
                        .arg(named.file)
                        .arg(inputs.size()));
    for (const InputFile& input : inputs) {
        Planes planes{number, std::max(input.channels.first, 1), {1, 1}, {1, 1}};
        if (input.page == 0) {
            planes.slices = rangeOf(input.slices, file.axes().slices, fileSpec(named),
                                    tr("%1: has %2 z-slices, no %3"));
            planes.frames = rangeOf(input.frames, file.axes().frames, fileSpec(named),
                                    tr("%1: has %2 time points, no %3"));
        }
        stepTogether(planes.slices, axes_.slices, file.file());
        stepTogether(planes.frames, axes_.frames, file.file());
        hasPages_ = hasPages_ || (length(planes.slices) > 1 && !file.metadata().axesKnown);
        Channel described = guessedChannel(inputs.size() > 1 ? QString() : file.file(),
                                           static_cast<int>(channels_.size()), dyes);
        if (Channel said; describeChannel(file, planes.channel, dyes, said))
            described = said;
        else
            described.name = said.name;
        planes_.push_back(planes);
        channels_.push_back({{input, channel}, described, isNamed});
    }
}

/// @throws Error if others have another number to step through.
void FileSource::stepTogether(const AxisRange& range, int& count, const QString& file) const {
    if (length(range) > 1 && count > 1 && length(range) != count)
        throw Error(tr("the files have different numbers of "
                       "planes: %1 has %2, %3 has %4")
                        .arg(files_.front().file())
                        .arg(count)
                        .arg(file)
                        .arg(length(range)));
    count = std::max(count, length(range));
}

std::vector<ChannelFile> FileSource::filesAt(const StackPosition& position) const {
    std::vector<ChannelFile> files;
    for (std::size_t i = 0; i < channels_.size(); ++i) {
        const Planes& planes = planes_[i];
        const ImageFile& file = files_[planes.file];
        ChannelFile& input = files.emplace_back(channels_[i].input);
        const int slice = chosen(planes.slices, position.slice);
        if (input.page == 0 && !file.metadata().axesKnown && file.pages() > 1 &&
            !position.projection)
            std::tie(input.page, input.slices) = std::pair(slice, AxisRange{});
        else if (input.page == 0 && file.axes().slices > 1 && !position.projection)
            input.slices = {slice, slice};
        const int frame = chosen(planes.frames, position.frame);
        if (input.page == 0 && file.axes().frames > 1)
            input.frames = {frame, frame};
    }
    return files;
}

void FileSource::setPosition(const StackPosition& position) {
    const std::lock_guard lock(mutex_);
    wanted_ = StackPosition{std::clamp(position.slice, 1, axes_.slices),
                            std::clamp(position.frame, 1, axes_.frames),
                            axes_.slices > 1 ? position.projection : std::nullopt};
}

StackPosition FileSource::nextPosition() {
    const std::lock_guard lock(mutex_);
    if (wanted_)
        return *std::exchange(wanted_, std::nullopt);
    StackPosition next = position_;
    if (axes_.frames > 1)
        next.frame = next.frame % axes_.frames + 1;
    else if (!next.projection)
        next.slice = next.slice % axes_.slices + 1;
    return next;
}

cv::Mat FileSource::plane(std::size_t channel, int slice, int frame) const {
    const Planes& planes = planes_[channel];
    const ImageFile& file = files_[planes.file];
    const int named = channels_[channel].input.page;
    const int page = named > 0 ? named : file.metadata().axesKnown ? 0 : slice;
    cv::Mat plane = page > 0 ? file.planeOfPage(page, planes.channel)
                             : file.plane(planes.channel, slice, frame);
    if (needsConversion(plane))
        throw Error(tr("%1: the viewer displays 8- and 16-bit unsigned integers, "
                       "and this file has pixel values of another type; convert it "
                       "to 16 bits, or render it with 'lumetra merge'")
                        .arg(file.file()));
    return plane;
}

cv::Mat FileSource::shownPlane(std::size_t channel, const StackPosition& position) const {
    const Planes& planes = planes_[channel];
    const int frame = chosen(planes.frames, position.frame);
    if (!position.projection || length(planes.slices) == 1)
        return plane(channel, chosen(planes.slices, position.slice), frame);
    Projection projection(*position.projection);
    for (int slice = planes.slices.first; slice <= planes.slices.last; ++slice)
        projection.add(plane(channel, slice, frame));
    return projection.result();
}

void FileSource::grab(Frame& frame) {
    position_ = nextPosition();
    frame.position = position_;
    frame.planes.resize(planes_.size());
    for (std::size_t i = 0; i < planes_.size(); ++i) {
        frame.planes[i] = shownPlane(i, position_);
        requireEqualSizes(files_[0].file(), frame.planes[0], files_[planes_[i].file].file(),
                          frame.planes[i]);
    }
}

} // namespace lumetra
