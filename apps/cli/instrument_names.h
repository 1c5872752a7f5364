// How the programs of instruments name their images.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace lumetra {

/// A way of naming.
struct InstrumentNames {
    QString instrument; ///< Its program, or the public collection of images.

    /// As `Pattern` understands it, without the extension, but with parts between `[` and `]` that
    /// may be missing. Placeholders mean: well, site (also called field of view), channel, z, t
    /// (time), plate (whatever the name begins with).
    QString pattern;
};

/// All that are known; special ones before those that are more general.
const std::vector<InstrumentNames>& instrumentNames();

/// The patterns that one with parts between brackets stands for: with all of them first.
QStringList expandedPattern(const QString& pattern);

} // namespace lumetra
