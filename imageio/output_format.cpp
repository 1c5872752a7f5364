#include "imageio/output_format.h"

#include "imageio/file_error.h"

#include <QFileInfo>

#include <array>

namespace lumetra {
namespace {

/// In the order of TiffCompression.
constexpr std::array<const char*, 4> compressionNames{"none", "lzw", "deflate", "zstd"};

} // namespace

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

QString tiffCompressionName(TiffCompression compression) {
    return QLatin1String(compressionNames.at(static_cast<std::size_t>(compression)));
}

std::optional<TiffCompression> tiffCompressionNamed(const QString& name) {
    for (std::size_t i = 0; i < compressionNames.size(); ++i)
        if (name == QLatin1String(compressionNames[i]))
            return static_cast<TiffCompression>(i);
    return std::nullopt;
}

} // namespace lumetra
