#include "render/dyes.h"

#include "lumetra/catalogue/dye_tables.h"
#include "render/render_error.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <utility>

namespace lumetra {
namespace {

char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lowerCase(std::string_view text) {
    std::string letters(text);
    std::transform(letters.begin(), letters.end(), letters.begin(),
                   [](char letter) { return lowerCase(letter); });
    return letters;
}

/// How many letters must be put in, left out or replaced to make `b` of `a`.
int editDistance(std::string_view a, std::string_view b) {
    std::vector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char letter : a) {
        int diagonal = row[0]++;
        auto column = row.begin() + 1;
        for (const char other : b) {
            const int replaced = diagonal + (letter == other ? 0 : 1);
            diagonal = *column;
            *column = std::min({replaced, *column + 1, *(column - 1) + 1});
            ++column;
        }
    }
    return row.back();
}

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

bool byName(const Dye& a, const Dye& b) { return a.name < b.name; }

Colour toColour(DisplayColour colour) {
    return {static_cast<std::uint8_t>(colour.red), static_cast<std::uint8_t>(colour.green),
            static_cast<std::uint8_t>(colour.blue)};
}

} // namespace

DyeList::DyeList() {
    for (const auto& row : catalogueTable)
        dyes_.push_back({row.name, toColour(row.colour), row.excitation, row.emission, false});
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
        return dye.custom && std::none_of(std::begin(sliderTable), std::end(sliderTable),
                                          [&](const char* name) { return dye.name == name; });
    });
    return ordered;
}

const Dye* DyeList::find(std::string_view name) const {
    const std::string wanted = lowerCase(name);
    const Dye* alike = nullptr;
    int matches = 0;
    for (const Dye& dye : dyes_) {
        if (dye.name == name)
            return &dye;
        if (lowerCase(dye.name) == wanted) {
            alike = &dye;
            ++matches;
        }
    }
    return matches == 1 ? alike : nullptr;
}

const Dye& DyeList::at(std::string_view name) const {
    if (const Dye* dye = find(name))
        return *dye;
    throw RenderError("there is no dye \"" + std::string(name) + "\"; the nearest names are " +
                      quotedList(nearestNames(name)));
}

std::vector<Dye> DyeList::containing(std::string_view text) const {
    const std::string wanted = lowerCase(text);
    std::vector<Dye> found;
    std::copy_if(dyes_.begin(), dyes_.end(), std::back_inserter(found), [&](const Dye& dye) {
        return lowerCase(dye.name).find(wanted) != std::string::npos;
    });
    return found;
}

std::vector<std::string> DyeList::nearestNames(std::string_view written, std::size_t count) const {
    const std::string wanted =
        lowerCase(written.substr(0, 100)); // longer than any: bounds the work
    std::vector<std::pair<int, std::string>> ranked;
    for (const Dye& dye : dyes_)
        ranked.emplace_back(editDistance(wanted, lowerCase(dye.name)), dye.name);
    std::sort(ranked.begin(), ranked.end());
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(count, ranked.size()); ++i)
        names.push_back(ranked[i].second);
    return names;
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
