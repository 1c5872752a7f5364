#include "imageio/output_format.h"

#include "imageio/file_error.h"

#include <QFileInfo>

namespace lumetra {

bool isStandardOutput(const QString& file) { return file == QLatin1String("-"); }

OutputFormat outputFormat(const QString& file) {
    const QString extension = QFileInfo(file).suffix().toLower();
    if (isStandardOutput(file) || extension == QLatin1String("png"))
        return OutputFormat::png;
    if (extension == QLatin1String("tif") || extension == QLatin1String("tiff"))
        return OutputFormat::tiff;
    if (extension == QLatin1String("jpg") || extension == QLatin1String("jpeg"))
        return OutputFormat::jpeg;
    throw FileError(file, QStringLiteral("images are written as .png, .tif, .tiff, .jpg or .jpeg"));
}

} // namespace lumetra
