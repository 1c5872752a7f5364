#ifndef LUMETRA_RENDER_PARSED_NUMBER_H
#define LUMETRA_RENDER_PARSED_NUMBER_H

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace lumetra {

/// The number that a text is as a whole, in the notation of std::from_chars; nothing if it is none
/// or out of the type's range.
template<class Number>
std::optional<Number> parsed(std::string_view text) {
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

} // namespace lumetra

#endif
