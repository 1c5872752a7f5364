// Pixel values as TIFF files store them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace lumetra {

/// How one value is stored, in the byte order of this machine unless it is packed.
enum class StoredType {
    packed, ///< Unsigned, of 1 to 7 or 9 to 15 bits, the first value in the highest bits.
    uint8,
    uint16,
    uint32,
    int8,
    int16,
    int32,
    float16,
    float32,
    float64
};

/// The type that tags tell; nothing for what is not read.
/// @param bits    BitsPerSample.
/// @param format  SampleFormat.
std::optional<StoredType> storedType(int bits, int format);

/// The depth of the matrix that holds all values of a type: CV_8U, CV_16U, CV_32F or CV_64F.
int depthOf(StoredType type, int bits);

/// Where values are in memory, and which of them are meant.
struct ValueRow {
    const std::uint8_t* bytes;
    std::size_t first; ///< The value to begin with.
    std::size_t step;  ///< From one to the next, in values.
};

/// Unpacks values into a row of a matrix of their depth.
/// @param out      The first of them.
/// @param outStep  From one to the next, in values.
void unpack(StoredType type, int bits, const ValueRow& in, void* out, std::size_t outStep,
            std::size_t count);

} // namespace lumetra
