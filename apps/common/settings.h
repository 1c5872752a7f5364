// Settings of channels as a file that people keep, and that images can be compared by.
#pragma once

#include "render/channel.h"
#include "render/dyes.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace lumetra {

/// How levels were measured.
struct Measurement {
    QString method; ///< As `LevelPolicy::text`.
    int files = 0;  ///< How many planes were measured.
};

/// What a settings file holds.
struct Settings {
    std::vector<Channel> channels;
    std::optional<Measurement> measured;
};

/// One channel as JSON, in one line.
QByteArray channelJson(const Channel& channel);

/// The JSON text of a settings file. Levels are in the units of the planes, whose bit depth stands
/// beside them where it is known.
QByteArray settingsJson(const Settings& settings);

/// Understands the text of a settings file. A dye without a colour must be one of the list; a
/// colour that is written down counts, so that a file with custom dyes stands by itself.
/// @throws Error for anything that is not understood, unknown keys by name.
Settings parseSettings(const QByteArray& json, const DyeList& dyes);

/// Reads a settings file.
/// @throws Error with the file's name.
Settings readSettings(const QString& file, const DyeList& dyes);

} // namespace lumetra
