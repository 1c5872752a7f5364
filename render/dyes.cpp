#include "render/dyes.h"

#include "lumetra/catalogue/dye_tables.h"
#include "render/dye_names.h"
#include "render/dye_published.h"
#include "render/render_error.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

namespace lumetra {
namespace {

/// Bounds the work; no name is as long.
constexpr std::size_t longestWritten = 200;

struct ColourName {
    const char* name;
    Colour colour;
};

/// Gray, grey and white are the same; so is transmitted light, which has no colour of its own.
constexpr ColourName colourNames[] = {
    {"red", {255, 0, 0}},
    {"green", {0, 255, 0}},
    {"blue", {0, 0, 255}},
    {"cyan", {0, 255, 255}},
    {"magenta", {255, 0, 255}},
    {"yellow", {255, 255, 0}},
    {"orange", {255, 165, 0}},
    {"purple", {160, 32, 240}},
    {"violet", {143, 0, 255}},
    {"pink", {255, 105, 180}},
    {"gray", {255, 255, 255}},
    {"white", {255, 255, 255}},
    {"transmitted light", {255, 255, 255}},
};

void sortByDistance(std::vector<Dye>& dyes, int Dye::*wavelength, int nanometres) {
    dyes.erase(std::remove_if(dyes.begin(), dyes.end(),
                              [&](const Dye& dye) { return dye.*wavelength == 0; }),
               dyes.end());
    const auto place = [&](const Dye& dye) {
        return std::pair(std::abs(dye.*wavelength - nanometres), dye.name);
    };
    std::sort(dyes.begin(), dyes.end(),
              [&](const Dye& a, const Dye& b) { return place(a) < place(b); });
}

bool byName(const Dye& a, const Dye& b) {
    const std::string x = lowerCase(a.name), y = lowerCase(b.name);
    return x != y ? x < y : a.name < b.name;
}

Colour toColour(DisplayColour colour) {
    return {static_cast<std::uint8_t>(colour.red), static_cast<std::uint8_t>(colour.green),
            static_cast<std::uint8_t>(colour.blue)};
}

bool isTheSame(const Dye& a, const Dye& b) {
    return a.emission == b.emission && a.colour == b.colour;
}

/// The dye of which `isMeant` tells so; null if there are several that are not the same, none if
/// there is none.
template<class IsMeant>
std::optional<const Dye*> search(const std::vector<Dye>& dyes, IsMeant isMeant) {
    const auto first = std::find_if(dyes.begin(), dyes.end(), isMeant);
    if (first == dyes.end())
        return std::nullopt;
    const bool isAmbiguous = std::any_of(first, dyes.end(), [&](const Dye& other) {
        return isMeant(other) && !isTheSame(*first, other);
    });
    return isAmbiguous ? nullptr : &*first;
}

/// The dye of a plain name.
const Dye* findPlain(const std::vector<Dye>& dyes, const std::string& plain) {
    const std::string family = familySpelling(plain);
    const auto isSpelling = [&](const Dye& dye) { return plainName(dye.name) == plain; };
    const auto hasOtherName = [meant = nameMeantBy(plain)](const Dye& dye) {
        return dye.name == meant;
    };
    const auto isOfFamily = [&](const Dye& dye) {
        return familySpelling(plainName(dye.name)) == family;
    };
    const auto isShortened = [&](const Dye& dye) {
        return familySpelling(plainName(withoutBrackets(dye.name))) == family;
    };
    if (const auto dye = search(dyes, isSpelling))
        return *dye;
    if (const auto dye = search(dyes, hasOtherName))
        return *dye;
    if (const auto dye = search(dyes, isOfFamily))
        return *dye;
    return search(dyes, isShortened).value_or(nullptr);
}

} // namespace

Colour emissionColour(double nanometres) {
    if (std::isnan(nanometres))
        throw RenderError("an emission wavelength is a number of nanometres");
    constexpr double shortest = 380, longest = 799;
    return toColour(
        displayColour(static_cast<int>(std::lround(std::clamp(nanometres, shortest, longest)))));
}

DyeList::DyeList() {
    for (const auto& row : catalogueTable)
        dyes_.push_back({row.name, toColour(row.colour), row.excitation, row.emission,
                         DyeOrigin::catalogue, "catalogue"});
    for (const auto& row : publishedTable)
        dyes_.push_back({row.name, emissionColour(row.emission), row.excitation, row.emission,
                         DyeOrigin::published, row.source});
    for (const auto& row : colourNames)
        dyes_.push_back({row.name, row.colour, 0, 0, DyeOrigin::colour, "colour name"});
    std::sort(dyes_.begin(), dyes_.end(), byName);
}

void DyeList::add(const std::vector<Dye>& custom) {
    for (const Dye& added : custom) {
        const auto place = std::lower_bound(dyes_.begin(), dyes_.end(), added, byName);
        if (place != dyes_.end() && place->name == added.name)
            *place = added;
        else
            dyes_.insert(place, added);
    }
}

std::vector<Dye> DyeList::inSliderOrder() const {
    std::vector<Dye> ordered;
    for (const char* name : sliderTable)
        ordered.push_back(at(name));
    std::copy_if(dyes_.begin(), dyes_.end(), std::back_inserter(ordered), [](const Dye& dye) {
        return dye.origin == DyeOrigin::custom &&
               std::none_of(std::begin(sliderTable), std::end(sliderTable),
                            [&](const char* name) { return dye.name == name; });
    });
    return ordered;
}

const Dye* DyeList::find(std::string_view name) const {
    for (const Dye& dye : dyes_)
        if (dye.name == name)
            return &dye;
    const std::string lower = lowerCase(name);
    if (const auto dye =
            search(dyes_, [&](const Dye& other) { return lowerCase(other.name) == lower; }))
        return *dye;
    const std::string plain = plainName(name.substr(0, longestWritten));
    if (plain.empty())
        return nullptr;
    if (const Dye* dye = findPlain(dyes_, plain))
        return dye;
    const std::string bound = withoutLigand(plain);
    return bound.empty() ? nullptr : findPlain(dyes_, bound);
}

const Dye& DyeList::at(std::string_view name) const {
    if (const Dye* dye = find(name))
        return *dye;
    const std::vector<std::string> nearest = nearestNames(name);
    throw RenderError("there is no dye \"" + std::string(name) + "\"; " +
                      (nearest.empty() ? "see the list of dyes"
                                       : "the nearest names are " + quotedList(nearest)) +
                      ", or give a colour, #rrggbb or NAME#rrggbb");
}

const Dye& DyeList::nearestByEmission(double nanometres) const {
    const auto distance = [&](const Dye& dye) {
        const bool isColoured = dye.emission > 0 && dye.colour == emissionColour(dye.emission);
        return isColoured ? std::abs(dye.emission - nanometres)
                          : std::numeric_limits<double>::infinity();
    };
    return *std::min_element(dyes_.begin(), dyes_.end(),
                             [&](const Dye& a, const Dye& b) { return distance(a) < distance(b); });
}

std::vector<Dye> DyeList::containing(std::string_view text) const {
    const std::string lower = lowerCase(text), plain = plainName(text);
    const Dye* meant = find(text);
    std::vector<Dye> found;
    std::copy_if(dyes_.begin(), dyes_.end(), std::back_inserter(found), [&](const Dye& dye) {
        return &dye == meant || lowerCase(dye.name).find(lower) != std::string::npos ||
               (!plain.empty() && plainName(dye.name).find(plain) != std::string::npos);
    });
    return found;
}

std::vector<std::string> DyeList::nearestNames(std::string_view written, std::size_t count) const {
    std::vector<std::string> names;
    for (const Dye& dye : dyes_)
        names.push_back(dye.name);
    return nearestOf(names, written, count);
}

void sortByEmission(std::vector<Dye>& dyes, int nanometres) {
    sortByDistance(dyes, &Dye::emission, nanometres);
}

void sortByExcitation(std::vector<Dye>& dyes, int nanometres) {
    sortByDistance(dyes, &Dye::excitation, nanometres);
}

std::string quotedList(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "\"" : ", \"") + name + "\"";
    return list;
}

} // namespace lumetra
