// Fonts for text on images.
#pragma once

#include <QGuiApplication>

#include <memory>

namespace lumetra {

struct Annotation;

/// What has to live while `annotate` draws text; null if there is none to draw.
std::unique_ptr<QGuiApplication> fontsFor(const Annotation& annotation);

} // namespace lumetra
