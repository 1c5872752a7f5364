#include "apps/common/custom_dyes.h"

#include "apps/common/error.h"
#include "apps/common/text.h"
#include "imageio/atomic_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <lumetra>

namespace lumetra {

CustomDyes readCustomDyes(const QString& file) {
    QFile device(file); // of a file that cannot be read, the library says nothing
    if (!device.open(QIODevice::ReadOnly))
        throw Error(file + QStringLiteral(": ") + device.errorString());
    device.close();
    CustomDyes dyes;
    Lumetra::LoadCustomDyeType(dyes, file);
    if (dyes.isEmpty())
        throw Error(file + QStringLiteral(": holds no custom dyes"));
    for (auto dye = dyes.cbegin(); dye != dyes.cend(); ++dye)
        if (dye.key().isEmpty() || !dye->isValid())
            throw Error(QStringLiteral("%1: the colour of the dye \"%2\" cannot be understood")
                            .arg(file, dye.key()));
    return dyes;
}

void writeCustomDyes(const CustomDyes& dyes, const QString& file) {
    const QTemporaryDir folder; // the library does not tell whether it could write
    QFile draft(folder.filePath(QStringLiteral("dyes.ini")));
    CustomDyes written = dyes, read;
    Lumetra::SaveCustomDyeType(written, draft.fileName());
    Lumetra::LoadCustomDyeType(read, draft.fileName());
    if (read != dyes || !draft.open(QIODevice::ReadOnly))
        throw Error(QStringLiteral("%1: the dyes cannot be written").arg(file));
    writeBytes(file, draft.readAll(), Existing::replace);
}

std::vector<Dye> asDyes(const CustomDyes& custom) {
    std::vector<Dye> dyes;
    for (auto dye = custom.cbegin(); dye != custom.cend(); ++dye)
        dyes.push_back({toUtf8(dye.key()), toColour(*dye)});
    return dyes;
}

} // namespace lumetra
