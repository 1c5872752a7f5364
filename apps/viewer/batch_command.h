// From one field to all of its folder.
#pragma once

#include "apps/viewer/display_settings.h"
#include "apps/viewer/file_source.h"

#include <QStringList>

#include <vector>

namespace lumetra {

/// A command that renders all fields of a folder with the settings of one.
struct BatchCommand {
    std::vector<Channel> channels; ///< For the settings file, with the names that files give them.
    QStringList arguments;
    QString output; ///< A pattern, beside the images.

    /// The line for the shell.
    QString line(const QString& settingsFile) const;
};

/// @param settings  With the levels of all channels.
/// @throws Error unless each channel is in a file of its own or all are in one, and the names of
///         the files tell field and channel apart.
BatchCommand batchCommand(const FileSource& source, const DisplaySettings& settings,
                          const StackPosition& position);

} // namespace lumetra
