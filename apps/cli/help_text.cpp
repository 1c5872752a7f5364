#include "apps/cli/help_text.h"

#include <sstream>

namespace lumetra {

std::string wrapped(const std::string& text, std::size_t column, std::size_t indent) {
    constexpr std::size_t width = 79; // the last column stays free: some terminals break after it
    std::istringstream words(text);
    std::string lines, word;
    std::size_t start = column; // of the line
    while (words >> word) {
        if (column > start && column + 1 + word.size() > width) {
            lines += '\n' + std::string(indent, ' ');
            column = start = indent;
        } else if (column > start) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines;
}

std::string helpEntry(const std::string& form, const std::string& meaning) {
    constexpr std::size_t indent = 24;
    std::string entry = "  " + form;
    const bool fits = entry.size() + 2 <= indent;
    entry += fits ? std::string(indent - entry.size(), ' ') : '\n' + std::string(indent, ' ');
    return entry + wrapped(meaning, indent, indent) + '\n';
}

} // namespace lumetra
