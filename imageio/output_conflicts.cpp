#include "imageio/output_conflicts.h"

#include "imageio/file_error.h"
#include "imageio/output_format.h"
#include "platform/platform.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <cstring>

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

std::optional<std::size_t> OutputFiles::add(const QString& file, std::size_t number) {
    if (const auto id = identityOf(file)) {
        const auto [known, isNew] = byId_.emplace(*id, number);
        if (!isNew)
            return known->second;
    }
    const auto [known, isNew] = byPlace_.emplace(placeOf(file), number);
    return isNew ? std::nullopt : std::optional(known->second);
}

std::optional<std::size_t> OutputFiles::find(const QString& file) {
    if (const auto id = byId_.empty() ? std::nullopt : identityOf(file)) {
        const auto known = byId_.find(*id);
        return known == byId_.end() ? std::nullopt : std::optional(known->second);
    }
    const auto known = byPlace_.find(placeOf(file));
    return known == byPlace_.end() ? std::nullopt : std::optional(known->second);
}

OutputFiles::Digest OutputFiles::placeOf(const QString& file) {
    const auto slash = file.lastIndexOf(QLatin1Char('/'));
    const QString name = file.mid(slash + 1);
    QString place;
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")) {
        place = resolvedPath(file);
    } else {
        const QString folder = file.left(slash + 1);
        if (folder != folder_ || resolvedFolder_.isNull()) {
            folder_ = folder;
            resolvedFolder_ = resolvedPath(folder + QLatin1Char('-')).chopped(1);
        }
        place = resolvedFolder_ + name;
    }
    const QByteArray bytes =
        QCryptographicHash::hash(comparableName(place).toUtf8(), QCryptographicHash::Md5);
    Digest digest;
    std::memcpy(digest.data(), bytes.constData(), sizeof digest);
    return digest;
}

void checkOutputConflicts(const QStringList& written, const QStringList& read) {
    const auto isFile = [](const QString& name) {
        return !name.isEmpty() && !isStandardOutput(name);
    };
    OutputFiles outputs;
    for (int i = 0; i < static_cast<int>(written.size()); ++i)
        if (isFile(written[i]) && !isOtherThanFile(QFileInfo(written[i])) &&
            outputs.add(written[i], static_cast<std::size_t>(i)))
            throw FileError(written[i], QStringLiteral("would be written twice; give the outputs "
                                                       "different names"));
    for (const QString& file : read)
        if (const auto number = isFile(file) ? outputs.find(file) : std::nullopt)
            throw FileError(written[static_cast<int>(*number)], QStringLiteral("is also an input"));
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
