// Which outputs would replace what.
#pragma once

#include "imageio/atomic_file.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>

namespace lumetra {

/// Where a file is: absolute, with the links of its folders followed, though it may not be there.
/// The last name stays as it is.
QString resolvedPath(const QString& file);

/// The files that are to be written, known again by any of their names, whether they are there or
/// not: links are followed, and hard links told. A million of them take little memory, since what
/// is kept of a name is a digest.
class OutputFiles {
public:
    /// The number of the output that was added before and is this very file; if there is none, this
    /// one is known from now on by its number.
    std::optional<std::size_t> add(const QString& file, std::size_t number);

    /// The number of the output that is this file. Looks at the file itself only if some output was
    /// there when it was added: otherwise it can be none of them.
    std::optional<std::size_t> find(const QString& file);

private:
    using Digest = std::array<std::uint64_t, 2>;
    struct HashOfDigest {
        std::size_t operator()(const Digest& digest) const { return digest[0]; }
    };

    Digest placeOf(const QString& file);

    std::unordered_map<Digest, std::size_t, HashOfDigest> byPlace_;
    std::map<QString, std::size_t> byId_; ///< Of those there, by what `identityOf` gives.
    QString folder_, resolvedFolder_;     ///< Of the last name: many are in one folder.
};

/// @throws FileError if a file that is to be written is also one of those that are read, or is to
///         be written twice. Names that are empty, `-`, a folder, a pipe or a device are passed
///         over.
void checkOutputConflicts(const QStringList& written, const QStringList& read);

/// @throws FileError if an output is also an input, or is there and not a regular file;
///         FileExistsError if it is there and existing files are kept. `-` is always well.
void checkOutput(const QString& output, const QStringList& inputs, Existing existing);

} // namespace lumetra
