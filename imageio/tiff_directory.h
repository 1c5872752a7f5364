// Private tags of TIFF files, as they lie in the file.
#pragma once

#include <QByteArray>
#include <QFile>

#include <cstdint>
#include <optional>
#include <vector>

namespace lumetra {

/// One directory of a TIFF file, classic or big, of either byte order. libtiff hands out private
/// tags only as far as it knows their type, and not beyond the count that the file states.
class TiffDirectory {
public:
    struct Entry {
        std::uint16_t type = 0;
        std::uint64_t count = 0;
        std::uint64_t offset = 0; ///< Where its values are in the file.
    };

    /// @param file    Open; it has to outlive the directory.
    /// @param offset  Where the directory is in the file.
    TiffDirectory(QFile& file, std::uint64_t offset);

    /// The entry of a tag; none if the directory does not have it, or cannot be read.
    std::optional<Entry> find(std::uint16_t tag);

    /// Bytes of the file; empty if it does not hold all of them.
    QByteArray bytes(std::uint64_t offset, std::uint64_t count);

    /// 32-bit numbers in the file's byte order; empty if it does not hold all of them.
    std::vector<std::uint32_t> numbers(std::uint64_t offset, std::uint64_t count);

    bool isBigEndian() const { return isBigEndian_; }

private:
    std::uint64_t number(const QByteArray& bytes, int at, int length) const;

    QFile& file_;
    std::uint64_t offset_;
    bool isBigEndian_ = false, isBigTiff_ = false;
};

} // namespace lumetra
