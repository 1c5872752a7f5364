// What an image file says of its planes.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetra {

/// How many planes a file has along each axis: each at least 1.
struct Axes {
    int channels = 1;
    int slices = 1; ///< Along z.
    int frames = 1; ///< Time points.
};

/// How pixel values are stored.
struct ValueType {
    enum Kind { unsignedInteger, signedInteger, floatingPoint };
    Kind kind = unsignedInteger;
    int bits = 8; ///< Of one value.

    /// Whether planes of this type need contrast limits before they can be shown.
    bool needsConversion() const { return kind != unsignedInteger || bits > 16; }

    /// "16-bit unsigned", "32-bit float".
    QString text() const {
        return QStringLiteral("%1-bit %2")
            .arg(bits)
            .arg(QLatin1String(kind == unsignedInteger ? "unsigned"
                               : kind == signedInteger ? "signed"
                                                       : "float"));
    }
};

/// What a file says of one channel. What it does not say is empty.
struct ChannelMetadata {
    QString name;
    std::optional<std::uint32_t> colour; ///< 0xRRGGBB
    std::vector<std::uint32_t> lut;   ///< 256 colours 0xRRGGBB, for the values 0 to 255, or none.
    std::optional<double> excitation; ///< Wavelength in nm.
    std::optional<double> emission;   ///< Wavelength in nm.
};

/// What a file says of its planes.
struct FileMetadata {
    /// As many as Axes::channels.
    std::vector<ChannelMetadata> channels{1};
    /// The sides of a pixel in µm. A resolution that belongs to screens and printers (a pixel of
    /// more than 10 µm, where nothing but the plain tags of the format tells it) is left out.
    std::optional<double> pixelSizeX, pixelSizeY;
    /// The distance of z-slices in µm.
    std::optional<double> sliceDistance;
    /// Whether the file itself tells its axes. If not, its pages count as z-slices.
    bool axesKnown = false;
    /// Who tells them: "OME-XML", "ImageJ" or "STK"; empty if nobody does.
    QString source;
    /// What was not understood, in words that follow "FILE: ".
    std::vector<QString> warnings;
};

} // namespace lumetra
