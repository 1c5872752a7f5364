#include "apps/common/file_channels.h"

#include "apps/common/error.h"
#include "apps/common/text.h"

#include <algorithm>
#include <cmath>

namespace lumetra {
namespace {

/// How many channels a file has where this page is meant, or none is.
int channelCount(const ImageFile& file, const InputFile& input) {
    return input.page > 0 ? file.components(input.page) : file.axes().channels;
}

} // namespace

bool describeChannel(const ImageFile& file, int number, const DyeList& dyes, Channel& channel) {
    const auto& channels = file.metadata().channels;
    if (static_cast<std::size_t>(number) > channels.size())
        return false;
    const ChannelMetadata& said = channels[static_cast<std::size_t>(number - 1)];
    channel.name = toUtf8(said.name);
    if (const Dye* dye = said.name.isEmpty() ? nullptr : dyes.find(channel.name)) {
        channel.dye = dye->name;
        channel.colour = dye->colour;
        return true;
    }
    channel.dye = channel.name; // what a legend says
    if (said.colour)
        channel.colour = toColour(*said.colour);
    else if (said.emission)
        channel.colour = emissionColour(static_cast<int>(std::lround(*said.emission)));
    else if (!said.lut.empty())
        channel.colour = toColour(said.lut.back());
    else
        return false;
    return true;
}

std::vector<InputFile> channelsOf(const ImageFile& file, const InputFile& input) {
    const int count = channelCount(file, input);
    const AxisRange named = input.channels.isNamed() ? input.channels : AxisRange{1, count};
    if (named.last > count)
        throw Error(QStringLiteral("%1: has %2, no %3")
                        .arg(fileSpec(input),
                             plural(static_cast<std::size_t>(count), QStringLiteral("channel")))
                        .arg(named.last));
    std::vector<InputFile> channels;
    for (int number = named.first; number <= named.last; ++number) {
        channels.push_back(input);
        if (count > 1)
            channels.back().channels = {number, number};
    }
    return channels;
}

std::vector<ChannelFile> channelFilesOf(const InputFile& named, const DyeList& dyes) {
    const ImageFile file(named.sliceFiles.value(0, named.file));
    const std::vector<InputFile> inputs = channelsOf(file, named);
    std::vector<ChannelFile> channels;
    for (const InputFile& input : inputs) {
        Channel channel;
        const int number = std::max(input.channels.first, 1);
        if (!describeChannel(file, number, dyes, channel))
            throw UsageError(QStringLiteral("%1: the file does not say the dye or colour of this "
                                            "channel: write %1=DYE")
                                 .arg(fileSpec(input)));
        channels.push_back({input, channel});
    }
    return channels;
}

void selectChannels(std::vector<InputFile>& inputs, const std::vector<std::string>& names) {
    const ImageFile file(inputs.front().sliceFiles.value(0, inputs.front().file));
    const int count = file.axes().channels;
    if (count == 1 && inputs.size() == 1)
        return;
    const auto& channels = file.metadata().channels;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const QString name = toQt(names[i]);
        int number = name.toInt();
        for (std::size_t k = 0; k < channels.size(); ++k)
            if (channels[k].name.compare(name, Qt::CaseInsensitive) == 0)
                number = static_cast<int>(k) + 1;
        if (number < 1 || number > count)
            throw Error(QStringLiteral("%1: has %2, none of them \"%3\" by name or number")
                            .arg(file.file(),
                                 plural(static_cast<std::size_t>(count), QStringLiteral("channel")),
                                 name));
        inputs[i].channels = {number, number};
    }
}

} // namespace lumetra
