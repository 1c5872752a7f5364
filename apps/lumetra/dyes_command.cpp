// lumetra dyes: the dyes that there are.

#include "apps/common/dyes.h"
#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/options.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace apps {
namespace {

struct DyesOptions {
    std::string text, custom;
    int emission = 0, excitation = 0;
    bool json = false;
};

QString nanometres(int wavelength) {
    return wavelength > 0 ? QString::number(wavelength) : QStringLiteral("-");
}

QString table(const std::vector<Dye>& dyes) {
    QString lines = QStringLiteral("excitation  emission  colour   name\n");
    for (const Dye& dye : dyes)
        lines += QStringLiteral("%1  %2  %3  %4\n")
                     .arg(nanometres(dye.excitation), 10)
                     .arg(nanometres(dye.emission), 8)
                     .arg(dye.colour.name(), shown(dye.name));
    return lines;
}

QString json(const std::vector<Dye>& dyes) {
    QJsonArray list;
    for (const Dye& dye : dyes) {
        QJsonObject object{
            {"name", dye.name}, {"colour", dye.colour.name()}, {"custom", dye.custom}};
        if (dye.excitation > 0)
            object["excitation"] = dye.excitation;
        if (dye.emission > 0)
            object["emission"] = dye.emission;
        list << object;
    }
    return QString::fromUtf8(QJsonDocument(list).toJson());
}

int listDyes(const DyesOptions& options) {
    DyeList list;
    if (!options.custom.empty())
        list.add(readCustomDyes(text(options.custom)));
    const QString wanted = text(options.text);
    std::vector<Dye> found = list.containing(wanted);
    if (options.emission > 0)
        sortByEmission(found, options.emission);
    if (options.excitation > 0)
        sortByExcitation(found, options.excitation);
    if (found.empty()) {
        tell(
            QStringLiteral("lumetra: no dye has \"%1\" in its name; the nearest names are \"%2\"\n")
                .arg(shown(wanted), list.nearestNames(wanted).join(QStringLiteral("\", \""))));
        return nothingMatched;
    }
    print(options.json ? json(found) : table(found));
    return done;
}

} // namespace

void addDyesCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<DyesOptions>();
    CLI::App& command = *program.add_subcommand("dyes", "Lists dyes by name or wavelength");
    command.add_option("TEXT", options->text, "A part of the name, in any case")->type_name("");
    auto* emission = command
                         .add_option("--emission", options->emission,
                                     "Orders by the distance from this emission, nearest first")
                         ->type_name("NM")
                         ->check(CLI::Range(1, 100000, "from 1"));
    command
        .add_option("--excitation", options->excitation,
                    "Orders by the distance from this excitation, nearest first")
        ->type_name("NM")
        ->check(CLI::Range(1, 100000, "from 1"))
        ->excludes(emission);
    command
        .add_option("--custom", options->custom,
                    "A file of your own dyes, as the library keeps them")
        ->type_name("FILE");
    command.add_flag("--json", options->json, "Writes JSON");
    command.footer("example: lumetra dyes alexa --emission 520");
    command.callback([&action, options] { action = [options] { return listDyes(*options); }; });
}

} // namespace apps
