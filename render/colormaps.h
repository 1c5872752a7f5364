// Colormaps by their names.
#pragma once

#include "render/colour.h"

#include <optional>
#include <string_view>
#include <vector>

namespace lumetra {

/// The colormaps that have a name: "gray", "oklab", "viridis", "magma", ... The texts stay for as
/// long as the library is loaded.
LUMETRA_RENDER_EXPORT std::vector<const char*> colormapNames();

/// The colormap of this name; none if there is none.
LUMETRA_RENDER_EXPORT std::optional<Colormap> findColormap(std::string_view name);

/// A colormap from its end.
LUMETRA_RENDER_EXPORT Colormap reversed(const Colormap& colormap);

/// Black over violet, red and orange to a pale yellow, perceptually uniform: the lightness L of
/// the OKLab colour space rises in equal steps, so that equal steps of brightness stay equally
/// visible and no edge appears where the specimen has none.
LUMETRA_RENDER_EXPORT Colormap oklabColormap();

} // namespace lumetra
