// How the name of a dye may be written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumetra {

/// With small ASCII letters.
std::string lowerCase(std::string_view text);

/// A name without case, spaces and punctuation; between two numbers a hyphen is left, so that
/// "BODIPY 493/503" is "bodipy493-503", and "SYTO 1-1" is not "SYTO 11".
std::string plainName(std::string_view name);

/// A plain name in the one spelling of its family: "alexafluor488", "af488" and "alexa488" are the
/// last.
std::string familySpelling(std::string plain);

/// What a name is before its first bracket: "SYTO 17" of "SYTO 17(red)". All of a name that tells
/// one pH, as a dye emits otherwise at another.
std::string_view withoutBrackets(std::string_view name);

/// The name of a built-in dye that a plain name is another one for; empty if there is none.
std::string_view nameMeantBy(std::string_view plain);

/// A plain name without what the dye is bound to: "alexa568" of "phalloidinalexa568" and of
/// "alexa568phalloidin"; empty if it names nothing of the kind, or nothing else.
std::string withoutLigand(std::string_view plain);

/// The names nearest to what was written, the nearest first: those that hold it whole, or most
/// of its words and numbers (of three letters or digits and more); of these the ones of which the
/// smallest share of letters differs. Names with nothing in common that differ in more than a third
/// of the letters are left out.
std::vector<std::string> nearestOf(const std::vector<std::string>& names, std::string_view written,
                                   std::size_t count);

} // namespace lumetra
