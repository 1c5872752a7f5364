// The channels that a file stands for.
#pragma once

#include "apps/common/channel_spec.h"
#include "imageio/image_file.h"

#include <string>
#include <vector>

namespace lumetra {

/// What a file says of a channel: its name, and the dye that the name stands for, otherwise its
/// colour, otherwise the colour of its emission or of its LUT.
/// @param number  From 1.
/// @return Whether it says enough for a colour.
bool describeChannel(const ImageFile& file, int number, const DyeList& dyes, Channel& channel);

/// The channels of a file that an argument leaves, one by one.
/// @param input  The file, with what was named of it.
/// @throws Error if it names channels that are not there.
std::vector<InputFile> channelsOf(const ImageFile& file, const InputFile& input);

/// All channels that a file is left with, in the dyes and colours that it says.
/// @throws UsageError if it does not say a colour; FileError if it cannot be read.
std::vector<ChannelFile> channelFilesOf(const InputFile& named, const DyeList& dyes);

/// Lets the channels of a data set name those of its files, each of which holds them all: by number
/// or by the name in the metadata.
/// @param inputs  One for each channel, all of one file. A file with a single channel is left as it
///                is where one is meant.
/// @throws Error if the file has no such channel.
void selectChannels(std::vector<InputFile>& inputs, const std::vector<std::string>& names);

} // namespace lumetra
