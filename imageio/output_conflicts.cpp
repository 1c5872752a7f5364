#include "imageio/output_conflicts.h"

#include "imageio/file_error.h"
#include "imageio/output_format.h"
#include "platform/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace lumetra {
namespace {

bool isOtherThanFile(const QFileInfo& info) { return info.exists() && !info.isFile(); }

} // namespace

QString resolvedPath(const QString& file) {
    const QFileInfo info(QDir::cleanPath(QFileInfo(file).absoluteFilePath()));
    if (info.isRoot() || info.path() == info.filePath()) // the latter of no name at all
        return info.filePath();
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return QDir(folder.isEmpty() ? resolvedPath(info.path()) : folder).filePath(info.fileName());
}

QString fileId(const QString& file) {
    if (const auto identity = identityOf(file))
        return *identity;
    return comparableName(resolvedPath(file));
}

void checkOutputConflicts(const QStringList& written, const QStringList& read) {
    const auto counts = [](const QString& file) {
        return !file.isEmpty() && !isStandardOutput(file) && !isOtherThanFile(QFileInfo(file));
    };
    QSet<QString> inputs, outputs;
    for (const QString& file : read)
        if (counts(file))
            inputs.insert(fileId(file));
    for (const QString& file : written) {
        if (!counts(file))
            continue;
        const QString id = fileId(file);
        if (inputs.contains(id))
            throw FileError(file, QStringLiteral("is also an input"));
        if (outputs.contains(id))
            throw FileError(
                file, QStringLiteral("would be written twice; give the outputs different names"));
        outputs.insert(id);
    }
}

void checkOutput(const QString& output, const QStringList& inputs, Existing existing) {
    if (isStandardOutput(output))
        return;
    checkOutputConflicts({output}, inputs);
    const QFileInfo info(output);
    if (isOtherThanFile(info))
        throw FileError(output, QStringLiteral("is not a regular file"));
    if (info.exists() && existing == Existing::keep)
        throw FileExistsError(output);
}

} // namespace lumetra
