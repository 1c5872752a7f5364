// Command lines that make an image again.
#pragma once

#include "apps/common/annotation.h"
#include "apps/common/channel_spec.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace lumetra {

/// A LUT as the user chose it.
struct LutChoice {
    QString lut = QStringLiteral("viridis"); ///< A name, or an ImageJ `.lut` file.
    bool inverted = false;
};

inline bool operator==(const LutChoice& a, const LutChoice& b) {
    return a.lut == b.lut && a.inverted == b.inverted;
}

/// A name of a file as no program takes it for an option: "./-a.tif" for "-a.tif".
QString fileArgument(const QString& file);

/// `LOW:HIGH`, as `--levels` takes it.
QString levelsText(ContrastLimits levels);

/// The arguments that draw legend and scale bar.
QStringList annotationArguments(const Annotation& annotation);

/// The arguments of `lumetra` that merge channels; what is left to add is the output.
///
/// Colours that the built-in dyes do not give are written out, so no other file is needed.
/// @param channels  Files with how their channels are shown; `levels` of the channels is ignored.
/// @param levels    For each channel what `--levels` takes: `LOW:HIGH`, or how levels are found.
/// @param builtIn   The dyes that a command line can name without a file.
QStringList mergeArguments(const std::vector<ChannelFile>& channels,
                           const std::vector<QString>& levels, const Annotation& annotation,
                           const DyeList& builtIn);

/// The arguments of `lumetra` that apply a LUT to one channel; what is left to add is the output.
/// @param levels  What `--levels` takes.
QStringList pseudoArguments(const ChannelFile& channel, const QString& levels,
                            const LutChoice& choice, const Annotation& annotation);

} // namespace lumetra
