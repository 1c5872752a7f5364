// Files written whole or not at all.
#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>

#include <functional>

namespace lumetra {

/// What becomes of a file that has an output's name already.
enum class Existing { keep, replace };

/// A file that is seen under its name only when it is complete.
///
/// While it is written it has no name at all where the file system can do so (Linux, most local
/// ones), so that nothing is left of it if the program is killed; elsewhere, and for the moment in
/// which it gets its name, it is called `.lumetra-UNIQUE.part` in the same folder. Any number of
/// programs may write one file at a time: with Existing::replace the last one wins, with
/// Existing::keep the first one. A symbolic link is followed.
///
/// All members throw FileError with the file's name.
class AtomicFile {
public:
    /// @throws FileExistsError if the file is there and is to be kept; FileError if its name is
    ///         that of a folder, a device or a pipe, or it cannot be created.
    AtomicFile(const QString& file, Existing existing);

    /// The file while it is written, open for writing. Nothing is kept of it unless `commit` is
    /// called.
    QSaveFile& device() { return device_; }

    /// Gives the file its name.
    /// @throws FileExistsError if somebody else took the name meanwhile, and is to be kept.
    void commit();

    [[noreturn]] void fail(const QString& reason) const;

private:
    QString file_, target_;
    Existing existing_;
    QSaveFile device_;
};

/// Writes a whole file, or the standard output for `-`.
/// @param write  Writes the content to the device and throws what it will; then no file is left.
/// @throws FileError with the file's name.
void writeFile(const QString& file, Existing existing,
               const std::function<void(QIODevice&)>& write);

/// Writes bytes to a file, or to the standard output for `-`.
/// @throws FileError with the file's name.
void writeBytes(const QString& file, const QByteArray& bytes, Existing existing);

/// Writes all bytes to a device; false if it does not take them, and its errorString says why.
bool writeAll(QIODevice& device, const char* bytes, qint64 count);

} // namespace lumetra
