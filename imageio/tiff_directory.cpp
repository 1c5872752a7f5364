#include "imageio/tiff_directory.h"

namespace lumetra {

TiffDirectory::TiffDirectory(QFile& file, std::uint64_t offset) : file_(file), offset_(offset) {
    const QByteArray header = bytes(0, 4);
    if (header.size() < 4)
        return;
    isBigEndian_ = header[0] == 'M';
    isBigTiff_ = number(header, 2, 2) == 43;
}

std::uint64_t TiffDirectory::number(const QByteArray& bytes, int at, int length) const {
    std::uint64_t value = 0;
    for (int i = 0; i < length; ++i) {
        const auto byte =
            static_cast<std::uint8_t>(bytes[at + (isBigEndian_ ? i : length - 1 - i)]);
        value = value << 8 | byte;
    }
    return value;
}

QByteArray TiffDirectory::bytes(std::uint64_t offset, std::uint64_t count) {
    const auto size = static_cast<std::uint64_t>(file_.size());
    constexpr std::uint64_t most = 1 << 30; // as much as a QByteArray of Qt 5 safely holds
    if (offset > size || count > size - offset || count > most ||
        !file_.seek(static_cast<qint64>(offset)))
        return {};
    const QByteArray read = file_.read(static_cast<qint64>(count));
    return static_cast<std::uint64_t>(read.size()) == count ? read : QByteArray();
}

std::vector<std::uint32_t> TiffDirectory::numbers(std::uint64_t offset, std::uint64_t count) {
    std::vector<std::uint32_t> values;
    const auto size = static_cast<std::uint64_t>(file_.size());
    if (count > size / 4)
        return values;
    const QByteArray read = bytes(offset, count * 4);
    for (int at = 0; at + 4 <= read.size(); at += 4)
        values.push_back(static_cast<std::uint32_t>(number(read, at, 4)));
    return values;
}

std::optional<TiffDirectory::Entry> TiffDirectory::find(std::uint16_t tag) {
    const int countBytes = isBigTiff_ ? 8 : 2, fieldBytes = isBigTiff_ ? 8 : 4;
    const int entryBytes = 4 + 2 * fieldBytes;
    const QByteArray head = bytes(offset_, static_cast<std::uint64_t>(countBytes));
    if (head.isEmpty())
        return {};
    constexpr std::uint64_t mostEntries = 65535;
    const std::uint64_t entries = number(head, 0, countBytes);
    if (entries > mostEntries)
        return {};
    const std::uint64_t first = offset_ + static_cast<std::uint64_t>(countBytes);
    const QByteArray all = bytes(first, entries * static_cast<std::uint64_t>(entryBytes));
    for (int at = 0; at + entryBytes <= all.size(); at += entryBytes) {
        if (number(all, at, 2) != tag)
            continue;
        static constexpr int bytesOfType[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4,
                                              8, 4, 8, 4, 0, 0, 8, 8, 8};
        Entry entry;
        entry.type = static_cast<std::uint16_t>(number(all, at + 2, 2));
        entry.count = number(all, at + 4, fieldBytes);
        const std::uint64_t each = entry.type < std::size(bytesOfType)
                                       ? static_cast<std::uint64_t>(bytesOfType[entry.type])
                                       : 0;
        const auto room = static_cast<std::uint64_t>(fieldBytes);
        const bool isInside = entry.count <= room && entry.count * each <= room;
        const int field = at + 4 + fieldBytes;
        entry.offset =
            isInside ? first + static_cast<std::uint64_t>(field) : number(all, field, fieldBytes);
        return entry;
    }
    return {};
}

} // namespace lumetra
