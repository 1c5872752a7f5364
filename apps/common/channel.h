// A channel: a plane of gray samples and how it is shown.
#pragma once

#include "apps/common/dyes.h"

#include <QColor>
#include <QPoint>
#include <QString>

#include <optional>

namespace apps {

/// The samples that become black and white, in the units of the plane.
struct LevelRange {
    int low = 0;
    int high = 255;
};

inline bool operator==(LevelRange a, LevelRange b) { return a.low == b.low && a.high == b.high; }
inline bool operator!=(LevelRange a, LevelRange b) { return !(a == b); }

/// How a channel is shown. All of it is kept in settings files.
struct Channel {
    QString name;                     ///< What the user calls it; may be empty.
    QString dye;                      ///< A dye's name, or empty where only the colour is known.
    QColor colour = Qt::white;        ///< The dye's colour, or the user's.
    QPoint offset;                    ///< Pixels that the plane is moved left (x) and up (y).
    std::optional<LevelRange> levels; ///< None leaves the samples as they are.
    double gamma = 1;                 ///< Exponent from 0.01 to 100: below 1 brightens; 1 is off.
    bool visible = true;
};

/// The range of exponents that make sense.
constexpr double smallestGamma = 0.01;
constexpr double largestGamma = 100;

/// A channel as a command line names it.
struct ChannelFile {
    QString file;
    int page = 0; ///< Counted from 1; 0 where none was named.
    Channel channel;
};

/// Understands `DYE` and `DYE+X+Y`, each sign plus or minus; DYE is a name of the list or
/// `#rrggbb`.
///
/// Names of dyes hold signs, digits and brackets themselves, so the end of the text is an offset
/// only if the text is no name as a whole.
/// @throws Failure, with the nearest names, for an unknown dye, or for an offset that is no 32-bit
///         number.
Channel parseChannel(const QString& words, const DyeList& dyes);

/// What `parseChannel` understands as the channel's dye, colour and offset: the name alone where
/// the list has it in this colour.
QString channelWords(const Channel& channel, const DyeList& dyes);

/// Understands `FILE` and `FILE[PAGE]`. A file whose own name ends in brackets is taken as it is.
ChannelFile parseFile(const QString& words);

/// What `parseFile` understands.
QString fileWords(const ChannelFile& file);

/// Understands `FILE[PAGE]=DYE+X+Y`; the text after the last "=" is the channel.
/// @throws BadUsage without a file or "="; Failure as `parseChannel`.
ChannelFile parseChannelFile(const QString& words, const DyeList& dyes);

} // namespace apps
