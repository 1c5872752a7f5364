// Channels and files as a command line names them.
#pragma once

#include "render/channel.h"
#include "render/dyes.h"

#include <QString>

namespace lumetra {

/// A file, or one page of it.
struct InputFile {
    QString file;
    int page = 0; ///< Counted from 1; 0 where none was named.
};

/// A file as one channel of an image.
struct ChannelFile : InputFile {
    Channel channel;
};

/// Understands `DYE` and `DYE+X+Y`, each sign plus or minus; DYE is a name of the list or
/// `#rrggbb`.
///
/// Names of dyes hold signs, digits and brackets themselves, so the end of the text is an offset
/// only if the text is no name as a whole.
/// @throws RenderError, with the nearest names, for an unknown dye; Error for an offset that is not
///         a 32-bit number.
Channel parseChannel(const QString& text, const DyeList& dyes);

/// What `parseChannel` understands as the channel's dye, colour and offset: the name alone where
/// the list has it in this colour.
QString channelSpec(const Channel& channel, const DyeList& dyes);

/// Understands `FILE` and `FILE[PAGE]`. A file whose own name ends in brackets is taken as it is.
ChannelFile parseFile(const QString& text);

/// What `parseFile` understands.
QString fileSpec(const InputFile& file);

/// Understands `FILE[PAGE]=DYE+X+Y`; the text after the last "=" is the channel.
/// @throws UsageError without a file or "="; otherwise as `parseChannel`.
ChannelFile parseChannelFile(const QString& text, const DyeList& dyes);

} // namespace lumetra
