// The dyes that a channel can have.
#pragma once

#include "render/colour.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumetra {

/// Where a dye comes from.
enum class DyeOrigin {
    catalogue, ///< The library's catalogue.
    published, ///< The list of further dyes, from published peaks.
    colour,    ///< The name of a colour.
    custom,    ///< The user.
};

/// A dye (fluorophore), or a colour by its name.
struct Dye {
    std::string name; ///< In UTF-8.
    Colour colour;
    int excitation = 0; ///< Peak wavelength in nanometres; 0 if it is not known.
    int emission = 0;   ///< As `excitation`.
    DyeOrigin origin = DyeOrigin::custom;
    /// Where it comes from, as a user reads it: "catalogue", "FPbase", "manufacturer" or "paper"
    /// (which published the peaks), "colour name", "custom".
    std::string source = "custom";
};

/// The catalogue's colour of an emission wavelength; the nearest one that it has for what is
/// outside 380 to 799 nm.
/// @throws RenderError for what is no number.
LUMETRA_RENDER_EXPORT Colour emissionColour(double nanometres);

/// All dyes, built-in and custom ones, as one list. A custom dye stands in place of a built-in one
/// of its name. What does not change the list can be called by several threads at once.
class LUMETRA_RENDER_EXPORT DyeList {
public:
    /// The built-in dyes: the catalogue's, further ones from published peaks, names of colours.
    DyeList();

    /// Adds a user's own dyes.
    void add(const std::vector<Dye>& custom);

    /// Every dye, in the order of the names, whatever their case.
    const std::vector<Dye>& all() const { return dyes_; }

    /// The dyes of the colour slider in their order, then the custom ones.
    std::vector<Dye> inSliderOrder() const;

    /// The dye that a name means; null if it means none, or could mean several that differ in
    /// emission or colour.
    ///
    /// The first of these that finds any decides: the exact name; the name in another case of
    /// ASCII letters; with other spaces and punctuation; another name of it ("PI"); another
    /// spelling of its family ("AF488" and "Alexa Fluor 488" for "Alexa 488"); without what
    /// stands in brackets ("SYTO 17" for "SYTO 17(red)"); without what it is bound to
    /// ("Phalloidin-Alexa 568").
    const Dye* find(std::string_view name) const;

    /// As `find`.
    /// @throws RenderError with the nearest names if there is none.
    const Dye& at(std::string_view name) const;

    /// The dye that emits nearest to a wavelength and has the colour of its emission; of several,
    /// the first one by name.
    const Dye& nearestByEmission(double nanometres) const;

    /// The dyes with `text` in their name, in any case and with any spaces and punctuation, and
    /// the one that it means.
    std::vector<Dye> containing(std::string_view text) const;

    /// The names nearest to what was written, the nearest first: by words and numbers that they
    /// share, then by the share of letters that differ. Fewer than `count`, or none, if nothing
    /// else is near.
    std::vector<std::string> nearestNames(std::string_view written, std::size_t count = 3) const;

private:
    std::vector<Dye> dyes_;
};

/// Orders dyes by the distance of a wavelength from `nanometres`, the nearest first, and drops
/// those that have none.
LUMETRA_RENDER_EXPORT void sortByEmission(std::vector<Dye>& dyes, int nanometres);
LUMETRA_RENDER_EXPORT void sortByExcitation(std::vector<Dye>& dyes, int nanometres);

/// Names as a message lists them: "A", "B".
LUMETRA_RENDER_EXPORT std::string quotedList(const std::vector<std::string>& names);

} // namespace lumetra
