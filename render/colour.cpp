#include "render/colour.h"

#include <charconv>

namespace lumetra {

std::string toHex(Colour colour) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "#";
    for (const unsigned component : {colour.red, colour.green, colour.blue}) {
        text += digits[component / 16];
        text += digits[component % 16];
    }
    return text;
}

std::optional<Colour> parseHex(std::string_view text) {
    constexpr std::size_t length = 7;
    if (text.size() != length || text.front() != '#')
        return std::nullopt;
    std::array<std::uint8_t, 3> components{};
    for (std::size_t i = 0; i < components.size(); ++i) {
        const char* const first = text.data() + 1 + 2 * i;
        const auto [end, error] = std::from_chars(first, first + 2, components[i], 16);
        if (error != std::errc() || end != first + 2)
            return std::nullopt;
    }
    return Colour{components[0], components[1], components[2]};
}

} // namespace lumetra
