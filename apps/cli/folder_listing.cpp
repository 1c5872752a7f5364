#include "apps/cli/folder_listing.h"

#include "platform/platform.h"

#include <filesystem>

namespace lumetra {

namespace fs = std::filesystem;

// Qt's own listings leave out names that are no text, and say nothing of them.
std::size_t listFolder(const QString& folder, const std::function<void(const FolderEntry&)>& add) {
    std::size_t notText = 0;
    std::error_code error;
    fs::directory_iterator entry(toPath(folder.isEmpty() ? QStringLiteral(".") : folder), error);
    for (const fs::directory_iterator end; !error && entry != end; entry.increment(error)) {
        const auto name = nameOf(entry->path());
        std::error_code unknown; // a link that leads nowhere is neither
        const bool isFolder = entry->is_directory(unknown);
        if (!name)
            ++notText;
        else if (isFolder || entry->is_regular_file(unknown))
            add({*name, isFolder, entry->is_symlink(unknown)});
    }
    return notText;
}

std::optional<QString> textOf(const QByteArray& bytes) {
    QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() != bytes)
        return std::nullopt;
    return text;
}

} // namespace lumetra
