// The command that makes the picture in the window.
#pragma once

#include "apps/viewer/render_loop.h"

#include <QString>

namespace apps {

/// A table of colours as the user chose it.
struct TableChoice {
    QString table = QStringLiteral("viridis"); ///< A name, or an ImageJ `.lut` file.
    bool reversed = false;
};

/// The line for the shell that makes the same bytes of these files as the viewer saves: `lumetra
/// merge`, or `lumetra pseudo` for a view in pseudo-colour.
///
/// It names every level and every colour that the built-in dyes do not give, so it needs no other
/// file.
QString commandFor(const std::vector<ChannelFile>& files, const View& view,
                   const TableChoice& table, const QString& output);

} // namespace apps
