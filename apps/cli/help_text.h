// Text for a terminal of 80 columns.
#pragma once

#include <string>

namespace lumetra {

/// Text broken between words, each line after the first one indented, without a line break at the
/// end. Names in the text are ASCII: a byte counts as a column.
/// @param column  Where the first line begins, from 0.
/// @param indent  Where the others do.
std::string wrapped(const std::string& text, std::size_t column, std::size_t indent);

/// An entry of a list: a form such as `-o, --output OUT`, and what it means beside or below it.
std::string helpEntry(const std::string& form, const std::string& meaning);

} // namespace lumetra
