#include "imageio/file_error.h"

namespace lumetra {

FileError::FileError(const QString& file, const QString& reason)
    : std::runtime_error(QStringLiteral("%1: %2").arg(file, reason).toStdString()) {}

FileExistsError::FileExistsError(const QString& file)
    : FileError(file, QStringLiteral("already exists")) {}

} // namespace lumetra
