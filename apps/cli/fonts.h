// Fonts for text on images.
#pragma once

#include <QGuiApplication>

#include <memory>

namespace lumetra {

struct RenderSpec;

/// What has to live while text is drawn onto images; null if there is none to draw.
std::unique_ptr<QGuiApplication> fontsFor(const RenderSpec& rendering);

} // namespace lumetra
