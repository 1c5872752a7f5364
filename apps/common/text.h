// Between Qt's texts and colours and those of the libraries without Qt.
#pragma once

#include "render/colour.h"

#include <QColor>
#include <QString>

#include <string>

namespace lumetra {

/// A text in UTF-8 as Qt has it.
inline QString toQt(const std::string& text) { return QString::fromStdString(text); }
inline QString toQt(const char* text) { return QString::fromUtf8(text); }
inline std::string toUtf8(const QString& text) { return text.toStdString(); }

/// The colour 0xRRGGBB.
inline Colour toColour(std::uint32_t rgb) {
    return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
            static_cast<std::uint8_t>(rgb)};
}

inline QColor toQt(Colour colour) { return {colour.red, colour.green, colour.blue}; }
inline Colour toColour(const QColor& colour) {
    return {static_cast<std::uint8_t>(colour.red()), static_cast<std::uint8_t>(colour.green()),
            static_cast<std::uint8_t>(colour.blue())};
}

} // namespace lumetra
