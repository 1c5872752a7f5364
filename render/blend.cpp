#include "render/blend.h"

#include "render/render_error.h"

#include <algorithm>
#include <array>

namespace lumetra {
namespace {

struct Name {
    const char* text;
    Blend blend;
};
constexpr std::array<Name, 3> blendNames{
    {{"add", Blend::add}, {"screen", Blend::screen}, {"darkest", Blend::darkest}}};

} // namespace

std::string blendText(Blend blend) {
    return std::find_if(blendNames.begin(), blendNames.end(),
                        [&](const Name& name) { return name.blend == blend; })
        ->text;
}

Blend parseBlend(std::string_view text) {
    for (const Name& name : blendNames)
        if (text == name.text)
            return name.blend;
    throw RenderError("\"" + std::string(text) + "\": a blend is add, screen or darkest");
}

} // namespace lumetra
