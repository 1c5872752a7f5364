#include "render/dye_names.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace lumetra {
namespace {

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }
bool isLetter(char letter) { return letter >= 'a' && letter <= 'z'; }
bool isSeparator(char letter) {
    return std::string_view(" \t-_^/()[],'").find(letter) != std::string_view::npos;
}

struct Spelling {
    std::string_view written, meant;
};

/// Before a number. Short ones count at the beginning of a name only.
constexpr Spelling families[] = {
    {"alexafluorplus", "alexa"},
    {"alexafluor", "alexa"},
    {"af", "alexa"},
    {"a", "alexa"},
    {"cyanine", "cy"},
    {"hoescht", "hoechst"},
    {"h", "hoechst"},
    {"janeliafluor", "jf"},
    {"brilliantviolet", "bv"},
    {"brilliantultraviolet", "buv"},
    {"brilliantblue", "bb"},
    {"abberiorstar", "star"},
    {"qdots", "qdot"},
    {"qd", "qdot"},
};
constexpr std::size_t shortFamily = 2;

/// Other names of single dyes; plain names, and names as the list has them.
constexpr Spelling otherNames[] = {
    {"abberiorstarorange", "Abberior STAR ORANGE"},
    {"calceinam", "Calcein"},
    {"cellmaskdeepredplasmamembrane", "CellMask Deep Red"},
    {"celltrackerblue", "CellTracker Blue CMAC"},
    {"celltrackergreen", "CellTracker Green CMFDA"},
    {"celltrackerorange", "CellTracker Orange CMTMR"},
    {"celltrackerred", "CellTracker Red CMTPX"},
    {"cf405", "CF405M"},
    {"cf488", "CF488A"},
    {"ethd1", "Ethidium homodimer-1(EthD-1)"},
    {"ethd2", "Ethidium homodimer-2(EthD-2)"},
    {"fam", "5-Carboxyfluorescein[5-FAM]"},
    {"fluo4am", "Fluo-4"},
    {"fura2", "Fura-2(high Ca++])"},
    {"fura2am", "Fura-2(high Ca++])"},
    {"gcamp", "GCaMP6"},
    {"gcamp6f", "GCaMP6"},
    {"gcamp6m", "GCaMP6"},
    {"gcamp6s", "GCaMP6"},
    {"grey", "gray"},
    {"hoechst", "Hoescht 33342"},
    {"irdye680", "IRDye 680RD"},
    {"irdye800", "IRDye 800CW"},
    {"irfp", "iRFP713"},
    {"mitotrackerdeepred", "MitoTracker Deep Red 633"},
    {"mitotrackerdeepredfm", "MitoTracker Deep Red 633"},
    {"mitotrackergreen", "MitoTracker Green FM"},
    {"mitotrackerorange", "MitoTracker Orange CMTMRos"},
    {"mitotrackerredfm", "MitoTracker Red 580"},
    {"mrfp", "mRFP1"},
    {"neurotrace500-525", "Neuro Trace 500_525 Nissl"},
    {"phycoerythrin", "PE"},
    {"pi", "Propidium iodide(PI)"},
    {"rfp", "mRFP1"},
    {"rpe", "PE"},
    {"rphycoerythrin", "PE"},
    {"starorange", "Abberior STAR ORANGE"},
    {"starred", "Abberior STAR RED"},
    {"sybrgreen", "SYBR Green I"},
    {"tamra", "5-TAMRA[5-Carboxytetramethylrhodamine]"},
    {"tmr", "Tetramethylrhodamine"},
    {"txred", "Texas Red"},
};

/// What dyes are bound to; plain names.
constexpr std::string_view ligands[] = {
    "annexinv",    "choleratoxinb", "concanavalina",       "cona",
    "dextran",     "isolectinb4",   "phalloidin",          "streptavidin",
    "transferrin", "wga",           "wheatgermagglutinin",
};

/// Shorter parts of names are in too many others.
constexpr std::size_t shortestPart = 3;

/// The runs of letters, or of digits, of a text in lower case, but for short ones.
template<class Belongs>
std::vector<std::string> runsOf(const std::string& text, Belongs belongs) {
    std::vector<std::string> runs;
    for (auto at = text.begin(); at != text.end();) {
        const auto begin = std::find_if(at, text.end(), belongs);
        at = std::find_if_not(begin, text.end(), belongs);
        if (static_cast<std::size_t>(at - begin) >= shortestPart)
            runs.emplace_back(begin, at);
    }
    return runs;
}

std::vector<std::string> wordsAndNumbers(const std::string& text) {
    std::vector<std::string> all = runsOf(text, isLetter);
    const std::vector<std::string> numbers = runsOf(text, isDigit);
    all.insert(all.end(), numbers.begin(), numbers.end());
    return all;
}

/// How many letters must be put in, left out, replaced or swapped with the next one to make `b` of
/// `a`.
int editDistance(std::string_view a, std::string_view b) {
    std::vector<int> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    std::iota(last.begin(), last.end(), 0);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

} // namespace

std::string lowerCase(std::string_view text) {
    std::string letters(text);
    for (char& letter : letters)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return letters;
}

std::string plainName(std::string_view name) {
    std::string plain;
    bool isParted = false;
    for (const char letter : lowerCase(name)) {
        if (isSeparator(letter)) {
            isParted = true;
            continue;
        }
        if (isParted && isDigit(letter) && !plain.empty() && isDigit(plain.back()))
            plain += '-';
        plain += letter;
        isParted = false;
    }
    return plain;
}

std::string familySpelling(std::string plain) {
    for (const auto& [written, meant] : families) {
        const auto at = plain.find(written);
        const auto end = at + written.size();
        if (at == std::string::npos || (at > 0 && written.size() <= shortFamily) ||
            end >= plain.size() || !isDigit(plain[end]))
            continue;
        plain.replace(at, written.size(), meant);
    }
    return plain;
}

std::string_view withoutBrackets(std::string_view name) {
    const bool isCondition = name.find(" pH") != std::string_view::npos;
    return isCondition ? name : name.substr(0, name.find_first_of("(["));
}

std::string_view nameMeantBy(std::string_view plain) {
    for (const auto& [written, meant] : otherNames)
        if (written == plain)
            return meant;
    return {};
}

std::string withoutLigand(std::string_view plain) {
    for (const std::string_view ligand : ligands) {
        if (plain.size() <= ligand.size())
            continue;
        const auto rest = plain.size() - ligand.size();
        if (plain.substr(0, ligand.size()) == ligand)
            return std::string(plain.substr(ligand.size()));
        if (plain.substr(rest) == ligand)
            return std::string(plain.substr(0, rest));
    }
    return {};
}

std::vector<std::string> nearestOf(const std::vector<std::string>& names, std::string_view written,
                                   std::size_t count) {
    const std::string wanted =
        lowerCase(written.substr(0, 100)); // longer than any: bounds the work
    const std::vector<std::string> wantedParts = wordsAndNumbers(wanted);
    const std::string plain = plainName(wanted);
    std::vector<std::tuple<std::ptrdiff_t, double, std::string>> ranked;
    for (const std::string& name : names) {
        const std::string letters = lowerCase(name);
        const std::vector<std::string> parts = wordsAndNumbers(letters);
        std::ptrdiff_t common =
            std::count_if(wantedParts.begin(), wantedParts.end(), [&](const std::string& part) {
                return std::find(parts.begin(), parts.end(), part) != parts.end();
            });
        if (plain.size() >= shortestPart && plainName(name).find(plain) != std::string::npos)
            ++common;
        const int distance = editDistance(wanted, letters);
        const auto length = static_cast<double>(std::max(wanted.size(), letters.size()));
        if (common > 0 || 3 * distance <= static_cast<int>(letters.size()) + 1)
            ranked.emplace_back(-common, distance / length, name);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<std::string> nearest;
    for (std::size_t i = 0; i < std::min(count, ranked.size()); ++i)
        nearest.push_back(std::get<std::string>(ranked[i]));
    return nearest;
}

} // namespace lumetra
