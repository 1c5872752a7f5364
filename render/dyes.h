// The dyes that a channel can have.
#pragma once

#include "render/colour.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumetra {

/// A dye (fluorophore) of the catalogue or of the user.
struct Dye {
    std::string name; ///< In UTF-8.
    Colour colour;
    int excitation = 0; ///< Peak wavelength in nanometres; 0 if it is not known.
    int emission = 0;   ///< As `excitation`.
    bool custom = false;
};

/// All dyes, built-in and custom ones, as one list. A custom dye stands in place of a built-in one
/// of its name.
class LUMETRA_RENDER_EXPORT DyeList {
public:
    /// The built-in dyes.
    DyeList();

    /// Adds a user's own dyes.
    void add(const std::vector<Dye>& custom);

    /// Every dye, in the order of the names.
    const std::vector<Dye>& all() const { return dyes_; }

    /// The dyes of the colour slider in their order, then the custom ones.
    std::vector<Dye> inSliderOrder() const;

    /// The dye of this name; in any case of ASCII letters, if that leaves one only; null if there
    /// is none.
    const Dye* find(std::string_view name) const;

    /// As `find`, but throws RenderError with the nearest names.
    const Dye& at(std::string_view name) const;

    /// The dyes with `text` in their name, in any case of ASCII letters.
    std::vector<Dye> containing(std::string_view text) const;

    /// The names nearest to what was written, the nearest first.
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
