// What a folder holds.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace lumetra {

/// A regular file or a folder; links are followed.
struct FolderEntry {
    QString name;
    bool isFolder = false;
    bool isLink = false;
};

struct FolderListing {
    std::vector<FolderEntry> entries; ///< In no order.
    std::size_t notText = 0;          ///< Names that are not UTF-8, which are left out.
};

/// Everything in a folder but itself and the one above; nothing if it cannot be read.
/// @param folder  Empty for the current one.
FolderListing listFolder(const QString& folder);

/// Bytes as text, if they are UTF-8.
std::optional<QString> textOf(const QByteArray& bytes);

} // namespace lumetra
