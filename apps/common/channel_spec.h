// Channels and files as a command line names them.
#pragma once

#include "render/channel.h"
#include "render/dyes.h"

#include <QString>
#include <QStringList>

namespace lumetra {

/// A part of an axis, both ends counted from 1; all of it where nothing was named.
struct AxisRange {
    int first = 0, last = 0;

    bool isNamed() const { return first > 0; }
};

/// A file, one page of it, or some of its channels, z-slices and time points.
struct InputFile {
    QString file; ///< Or the pattern of its z-slices, `cells_z{z}.tif`, that `sliceFiles` are of.
    int page = 0; ///< Counted from 1; 0 where none was named.
    AxisRange channels{}, slices{}, frames{};
    QStringList sliceFiles{}; ///< The files of z-slices in their order, where each has its own.
};

/// A file as one channel of an image.
struct ChannelFile : InputFile {
    Channel channel;
};

/// Understands `DYE` and `DYE+X+Y`, each sign plus or minus; DYE is what `DyeList::find`
/// understands, `#rrggbb` or `NAME#rrggbb`.
///
/// Names of dyes hold signs, digits and brackets themselves, so the end of the text is an offset
/// only if the list has no such name. An offset goes before other ways to write a name.
/// @throws RenderError, with the nearest names, for an unknown dye; Error for what follows a dye
///         like an offset and is not two numbers, or numbers of more than 32 bits.
Channel parseChannel(const QString& text, const DyeList& dyes);

/// What `parseChannel` understands as the channel's dye, colour and offset: the name alone where
/// the list has it in this colour.
QString channelSpec(const Channel& channel, const DyeList& dyes);

/// Understands `FILE`, `FILE[PAGE]` and `FILE[c2,z3-7,t1]`, each part once and in any order. A file
/// whose own name ends in brackets is taken as it is.
/// @throws Error where a number or a range makes no sense.
ChannelFile parseFile(const QString& text);

/// Whether a text is a channel, `FILE=DYE`, and no file with "=" in its name.
bool isChannelText(const QString& text);

/// What `parseFile` understands.
QString fileSpec(const InputFile& file);

/// Understands `FILE[PAGE]=DYE+X+Y`; the text after the last "=" is the channel.
/// @throws UsageError without a file or "="; otherwise as `parseChannel`.
ChannelFile parseChannelFile(const QString& text, const DyeList& dyes);

} // namespace lumetra
