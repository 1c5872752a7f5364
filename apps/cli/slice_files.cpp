#include "apps/cli/slice_files.h"

#include "apps/cli/natural_order.h"
#include "apps/cli/pattern.h"
#include "apps/common/error.h"

#include <QFileInfo>

#include <map>

namespace lumetra {

void findSliceFiles(InputFile& input) {
    const QString begin = QLatin1Char('{') + slicePlaceholder();
    if (!(input.file.contains(begin + QLatin1Char('}')) ||
          input.file.contains(begin + QLatin1Char(':'))) ||
        QFileInfo::exists(input.file))
        return;
    const Pattern pattern(input.file);
    if (pattern.names() != QStringList{slicePlaceholder()})
        throw UsageError(
            QStringLiteral("%1: a file can have the placeholder {z} alone, beside {*}; "
                           "'lumetra batch' has others")
                .arg(input.file));
    std::map<QString, QString, NaturalOrder> fileOfSlice;
    for (const QString& file : pattern.files()) {
        Placeholders placeholders;
        static_cast<void>(pattern.match(file, placeholders));
        QString& known = fileOfSlice[placeholders[slicePlaceholder()]];
        if (!known.isEmpty())
            throw Error(QStringLiteral("%1 and %2 are the same z-slice").arg(known, file));
        known = file;
    }
    if (fileOfSlice.empty())
        throw Error(QStringLiteral("no file matches %1: %2").arg(input.file, pattern.whyNot()));
    for (const auto& [slice, file] : fileOfSlice)
        input.sliceFiles << file;
}

} // namespace lumetra
