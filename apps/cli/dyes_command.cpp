// lumetra dyes: the dyes that there are.

#include "apps/cli/commands.h"
#include "apps/cli/print.h"
#include "apps/cli/render_spec.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "render/dyes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace lumetra {
namespace {

QString nanometres(int wavelength) {
    return wavelength > 0 ? QString::number(wavelength) : QStringLiteral("-");
}

QString table(const std::vector<Dye>& dyes) {
    QString lines = QStringLiteral("excitation  emission  colour   source        name\n");
    for (const Dye& dye : dyes)
        lines += QStringLiteral("%1  %2  %3  %4  %5\n")
                     .arg(nanometres(dye.excitation), 10)
                     .arg(nanometres(dye.emission), 8)
                     .arg(toQt(toHex(dye.colour)), toQt(dye.source).leftJustified(12),
                          escaped(toQt(dye.name)));
    return lines;
}

QString json(const std::vector<Dye>& dyes) {
    QJsonArray list;
    for (const Dye& dye : dyes) {
        QJsonObject object{{"name", toQt(dye.name)},
                           {"colour", toQt(toHex(dye.colour))},
                           {"source", toQt(dye.source)},
                           {"custom", dye.origin == DyeOrigin::custom}};
        if (dye.excitation > 0)
            object["excitation"] = dye.excitation;
        if (dye.emission > 0)
            object["emission"] = dye.emission;
        list << object;
    }
    return QString::fromUtf8(QJsonDocument(list).toJson());
}

} // namespace

int runDyes(const DyesOptions& options) {
    const DyeList list = dyesWith(options.customDyes);
    std::vector<Dye> found = list.containing(toUtf8(options.text));
    if (options.emission > 0)
        sortByEmission(found, options.emission);
    if (options.excitation > 0)
        sortByExcitation(found, options.excitation);
    if (found.empty()) {
        const std::vector<std::string> nearest = list.nearestNames(toUtf8(options.text));
        printError(QStringLiteral("no dye has \"%1\" in its name").arg(options.text) +
                   (nearest.empty()
                        ? QString()
                        : QStringLiteral("; the nearest names are ") + toQt(quotedList(nearest))));
        return nothingMatched;
    }
    print(options.json ? json(found) : table(found));
    return done;
}

} // namespace lumetra
