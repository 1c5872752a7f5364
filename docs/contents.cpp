// Compares the generated parts of docs/api, the table of all dyes and a custom dye file, with what
// the library gives, or renews them.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include <QMap>
#include <QString>
#include <QTemporaryDir>

#include <lumetra>

#include "lumetra/catalogue/dye_tables.h"
#include "program.h"

namespace {

constexpr auto usage = R"(usage: contents [--renew] APIDIR

Compares the generated parts of the pages in APIDIR with the library's data; --renew rewrites them.
)";

/// Usual spellings of names, and explanations of unexpected values.
const QMap<QString, QString> remarks{
    {"7-ADD(7-amino-actinomycin D)", "usually 7-AAD; the same dye: 7-Aminoactinomycin D(7-ADD)"},
    {"7-Aminoactinomycin D(7-ADD)", "usually 7-AAD; the same dye: 7-ADD(7-amino-actinomycin D)"},
    {"5-Carboxynapthofluorescein", "usually 5-Carboxynaphthofluorescein"},
    {"BODIPY 577^618", "500 and 550 nm, not those of its name"},
    {"Brightfield", "transmitted light, not a dye"},
    {"CI-NERF[low pH]", "usually Cl-NERF; here with a capital I"},
    {"Dapoxyl", "37 nm: a digit is missing"},
    {"DIC", "transmitted light, not a dye"},
    {"DiI(DiIC 18(3))", "emission 656 nm, so red; DiL(DiLC 18(3)) has 565 nm"},
    {"DiL(DiLC 18(3))", "usually DiI; the entry with 565 nm"},
    {"Diehtylaminocoumarin", "usually Diethylaminocoumarin"},
    {"Fura-2(high Ca++])", "the bracket is never opened"},
    {"Fura-2(low Ca++])", "the bracket is never opened"},
    {"Hoescht 33258(bis-benzimide)", "usually Hoechst 33258"},
    {"Hoescht 33342", "usually Hoechst 33342"},
    {"Hoescht 34580", "usually Hoechst 34580"},
    {"LysoSensor Yellow_Blue(low pH)", "usually Yellow/Blue"},
    {"LysoSensor Yellow_Blue(high pH)", "usually Yellow/Blue"},
    {"Neuro Trace 500_525 Nissl", "usually NeuroTrace 500/525"},
    {"Nudear Yellow", "usually Nuclear Yellow"},
    {"PBF1", "usually PBFI; here with the digit 1"},
    {"Phase", "transmitted light, not a dye"},
    {"R-phycocythrin", "usually R-phycoerythrin"},
    {"R-phycocythrin[PE]", "usually R-phycoerythrin"},
    {"Rhodamine Rex-X", "usually Rhodamine Red-X"},
    {"jGold[high pH]", "usually Fluoro-Gold (high pH)"},
};

/// Whether the colour of a dye differs from that of its emission wavelength.
bool hasOwnColour(const FLUO_DYE_TYPE& dye) {
    if (dye.nEmission < 380 || dye.nEmission > 799)
        return true;
    const auto usual = lumetra::displayColour(dye.nEmission);
    return dye.nColorR != usual.red || dye.nColorG != usual.green || dye.nColorB != usual.blue;
}

QString remarkOn(const QString& name, const FLUO_DYE_TYPE& dye) {
    QStringList all;
    if (remarks.contains(name))
        all << remarks[name];
    if (name.contains('^'))
        all << "usually " + QString(name).replace('^', '/');
    if (dye.nEmission < dye.nExcitation)
        all << "emission below excitation";
    if (hasOwnColour(dye))
        all << "fixed colour";
    return all.join("; ");
}

std::string dyeTable() {
    for (const QString& name : remarks.keys())
        if (!Lumetra::g_mapFluo.contains(name))
            throw Error("a remark names an unknown dye: " + name.toStdString());
    std::ostringstream table;
    table << "| Dye | Excitation, nm | Emission, nm | Colour | Remark |\n|---|--:|--:|---|---|\n";
    for (auto dye = Lumetra::g_mapFluo.cbegin(); dye != Lumetra::g_mapFluo.cend(); ++dye)
        table << "| `" << dye.key().toStdString() << "` | " << dye->nExcitation << " | "
              << dye->nEmission << " | `"
              << QColor(dye->nColorR, dye->nColorG, dye->nColorB).name().toStdString() << "` | "
              << remarkOn(dye.key(), *dye).toStdString() << " |\n";
    return table.str();
}

std::string textOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (!in)
        throw Error("cannot read " + file.string());
    return text;
}

std::string customDyeFile() {
    const QTemporaryDir folder;
    const QString file = folder.filePath("custom_dyes.ini");
    QMap<QString, QColor> dyes{{"Heliotrope", QColor(196, 116, 255)},
                               {"Seaweed, new", QColor(0, 200, 150)}};
    Lumetra::SaveCustomDyeType(dyes, file);
    return textOf(file.toStdString());
}

/// Makes the part of a page from the line `first` up to the next line `last` equal to `content`.
void settle(const std::filesystem::path& page, const std::string& first, const std::string& last,
            const std::string& content, bool renew) {
    std::string text = textOf(page);
    const size_t begin = text.find("\n" + first) + 1;
    const size_t end = text.find("\n" + last + "\n", begin + first.size()) + 1;
    if (begin == 0 || end == 0)
        throw Error(page.string() + " lacks the section to renew");
    if (text.compare(begin, end - begin, content) == 0)
        return;
    if (!renew)
        throw Error(page.string() + " is out of date; build the target docs_contents");
    text.replace(begin, end - begin, content);
    if (!(std::ofstream(page, std::ios::binary) << text << std::flush))
        throw Error("cannot write " + page.string());
}

} // namespace

int main(int argc, char** argv) {
    return runProgram(usage, [&] {
        const bool renew = argc == 3 && argv[1] == std::string("--renew");
        if (argc != 2 && !renew)
            throw UsageError{};
        const std::filesystem::path pages = argv[argc - 1];
        Lumetra::InitFluoDyeType();
        settle(pages / "dyes.md", "| Dye |", "", dyeTable(), renew);
        settle(pages / "custom_dyes.md", "```ini\n", "```", "```ini\n" + customDyeFile(), renew);
    });
}
