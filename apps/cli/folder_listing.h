// What a folder holds.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>

namespace lumetra {

/// A regular file or a folder; links are followed.
struct FolderEntry {
    QString name;
    bool isFolder = false;
    bool isLink = false;
};

/// Gives everything in a folder but itself and the one above, in no order; nothing if it cannot be
/// read.
/// @param folder  Empty for the current one.
/// @return How many names are not UTF-8, which are left out.
std::size_t listFolder(const QString& folder, const std::function<void(const FolderEntry&)>& add);

/// Bytes as text, if they are UTF-8.
std::optional<QString> textOf(const QByteArray& bytes);

} // namespace lumetra
