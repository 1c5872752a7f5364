#include "imageio/atomic_file.h"

#include "imageio/output_format.h"
#include "imageio/reason.h"
#include "platform/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cstdio>
#include <filesystem>
#include <system_error>

namespace lumetra {
namespace {

namespace fs = std::filesystem;

/// Where a name leads, through links.
QString linkTarget(const QString& file) {
    const QFileInfo info(file);
    if (!info.isSymLink())
        return file;
    return info.exists() ? info.canonicalFilePath() : info.symLinkTarget();
}

/// A name in the same folder, of a length that does not depend on the file's.
QString uniqueNameBeside(const QString& file) {
    const QString unique = QUuid::createUuid().toString(QUuid::Id128);
    return QFileInfo(file).dir().filePath(QStringLiteral(".lumetra-%1.part").arg(unique));
}

/// Gives a file a name that nobody has, in one step: renaming would replace.
std::error_code moveToFreeName(const fs::path& part, const QString& target) {
    std::error_code error;
    fs::create_hard_link(part, toPath(target), error);
    if (!error || error == std::errc::file_exists) {
        std::error_code ignored;
        fs::remove(part, ignored);
        return error;
    }
    // A file system without hard links: whoever creates the empty file owns the name.
    QFile reserved(target);
    if (!reserved.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return QFileInfo::exists(target) ? std::make_error_code(std::errc::file_exists) : error;
    reserved.close();
    error = replaceFile(part, toPath(target));
    if (error)
        reserved.remove();
    return error;
}

/// Why a device took no more. Of a write that a full disk cut short only the next one tells why,
/// unless there is room again by then.
QString whyFull(QFileDevice& device) {
    const bool hasRoomNow = device.flush();
    const QString unknown = QFile().errorString();
    return hasRoomNow && device.errorString() == unknown ? fullDiskReasons().front()
                                                         : device.errorString();
}

/// Writes to an open device. What the device says of a failure tells more than what the writer
/// saw of it.
void writeTo(QFileDevice& device, const std::function<void(QIODevice&)>& write) {
    const auto fail = [&] {
        throw Reason(QStringLiteral("cannot be written: %1").arg(whyFull(device)));
    };
    try {
        write(device);
    } catch (const Reason&) {
        if (device.error() != QFileDevice::NoError)
            fail();
        throw;
    }
    if (!device.flush())
        fail();
}

void writeStandardOutput(const std::function<void(QIODevice&)>& write) {
    writeBinary(stdout);
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly))
        throw Reason(output.errorString());
    writeTo(output, write);
}

} // namespace

AtomicFile::AtomicFile(const QString& file, Existing existing)
    : file_(file), target_(linkTarget(file)), existing_(existing),
      device_(uniqueNameBeside(target_)) {
    const QFileInfo info(target_);
    if (info.exists() && !info.isFile()) // another one in its place would be the end of a device
        throw FileError(file_, QStringLiteral("is not a regular file"));
    if (info.exists() && existing == Existing::keep)
        throw FileExistsError(file_);
    if (!device_.open(QIODevice::WriteOnly))
        fail(device_.errorString());
}

void AtomicFile::fail(const QString& reason) const {
    throw FileError(file_, QStringLiteral("cannot be written: %1").arg(reason));
}

void AtomicFile::commit() {
    if (!device_.flush())
        fail(whyFull(device_));
    if (!device_.commit())
        fail(device_.errorString());
    const fs::path part = toPath(device_.fileName());
    std::error_code error;
    if (existing_ == Existing::replace)
        error = replaceFile(part, toPath(target_));
    else
        error = moveToFreeName(part, target_);
    if (!error)
        return;
    std::error_code ignored;
    fs::remove(part, ignored);
    if (error == std::errc::file_exists)
        throw FileExistsError(file_);
    fail(QString::fromLocal8Bit(error.message().c_str()));
}

void writeFile(const QString& file, Existing existing,
               const std::function<void(QIODevice&)>& write) {
    if (isStandardOutput(file))
        return withFileName(QStringLiteral("the standard output"),
                            [&] { writeStandardOutput(write); });
    withFileName(file, [&] {
        AtomicFile output(file, existing);
        writeTo(output.device(), write);
        output.commit();
    });
}

void writeBytes(const QString& file, const QByteArray& bytes, Existing existing) {
    writeFile(file, existing, [&](QIODevice& device) {
        if (!writeAll(device, bytes.constData(), bytes.size()))
            throw Reason("cannot be written");
    });
}

bool writeAll(QIODevice& device, const char* bytes, qint64 count) {
    while (count > 0) { // what a disk has no more room for is told by the write after it only
        const qint64 written = device.write(bytes, count);
        if (written <= 0)
            return false;
        bytes += written;
        count -= written;
    }
    return true;
}

} // namespace lumetra
