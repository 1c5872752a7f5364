#include "render/blend.h"

#include "render/render_error.h"

#include <algorithm>
#include <array>
#include <limits>

namespace lumetra {
namespace {

struct Name {
    const char* text;
    Blend blend;
};
constexpr std::array<Name, 3> blendNames{
    {{"add", Blend::add}, {"screen", Blend::screen}, {"darkest", Blend::darkest}}};

template<class Component>
constexpr std::uint32_t largest = std::numeric_limits<Component>::max();

template<class Component>
void add(const Component* over, Component* under, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto room = static_cast<Component>(largest<Component> - under[i]);
        under[i] = static_cast<Component>(under[i] + std::min(over[i], room));
    }
}

/// A product p of two components divided by the largest one, rounded, is (q + q / n) / n for
/// n = largest + 1 and q = p + n / 2; all of it fits 32 bits.
template<class Component>
void screen(const Component* over, Component* under, std::size_t count) {
    constexpr int bits = std::numeric_limits<Component>::digits;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t darkOver = largest<Component> - over[i];
        const std::uint32_t darkUnder = largest<Component> - under[i];
        const std::uint32_t product = darkOver * darkUnder + (1U << (bits - 1));
        under[i] =
            static_cast<Component>(largest<Component> - ((product + (product >> bits)) >> bits));
    }
}

template<class Component>
void takeDarker(const Component* over, Component* under, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        under[i] = std::min(over[i], under[i]);
}

template<class Component>
void blendComponents(Blend blend, const Component* over, Component* under, std::size_t count) {
    switch (blend) {
    case Blend::add:
        return add(over, under, count);
    case Blend::screen:
        return screen(over, under, count);
    case Blend::darkest:
        return takeDarker(over, under, count);
    }
}

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

void blendOver(Blend blend, const unsigned char* over, unsigned char* under, std::size_t count) {
    blendComponents(blend, over, under, count);
}

void blendOver(Blend blend, const std::uint16_t* over, std::uint16_t* under, std::size_t count) {
    blendComponents(blend, over, under, count);
}

} // namespace lumetra
