#include "imageio/stored_values.h"

#include <opencv2/core/hal/interface.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include <tiff.h>

namespace lumetra {
namespace {

template<class Stored, class Value>
void copy(const ValueRow& in, Value* out, std::size_t outStep, std::size_t count) {
    const auto* from = reinterpret_cast<const Stored*>(in.bytes) + in.first;
    if constexpr (std::is_same_v<Stored, Value>)
        if (in.step == 1 && outStep == 1) {
            std::copy_n(from, count, out);
            return;
        }
    for (std::size_t i = 0; i < count; ++i)
        out[i * outStep] = static_cast<Value>(from[i * in.step]);
}

template<class Value>
void copyPacked(int bits, const ValueRow& in, Value* out, std::size_t outStep, std::size_t count) {
    const auto width = static_cast<std::size_t>(bits);
    const std::uint32_t mask = (1U << width) - 1;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t bit = (in.first + i * in.step) * width;
        const std::size_t last = (bit + width - 1) / 8; // two or three bytes may hold the value
        std::uint32_t word = 0;
        for (std::size_t byte = bit / 8; byte <= last; ++byte)
            word = word << 8 | in.bytes[byte];
        out[i * outStep] = static_cast<Value>(word >> ((last + 1) * 8 - bit - width) & mask);
    }
}

/// IEEE 754: a sign, 5 bits of exponent, 10 of fraction.
float fromHalf(std::uint16_t half) {
    const int exponent = half >> 10 & 31, fraction = half & 1023;
    float value = 0;
    if (exponent == 31)
        value = fraction ? std::numeric_limits<float>::quiet_NaN()
                         : std::numeric_limits<float>::infinity();
    else if (exponent == 0)
        value = std::ldexp(static_cast<float>(fraction), -24);
    else
        value = std::ldexp(static_cast<float>(fraction + 1024), exponent - 25);
    return half >> 15 ? -value : value;
}

void copyHalves(const ValueRow& in, float* out, std::size_t outStep, std::size_t count) {
    const auto* from = reinterpret_cast<const std::uint16_t*>(in.bytes) + in.first;
    for (std::size_t i = 0; i < count; ++i)
        out[i * outStep] = fromHalf(from[i * in.step]);
}

} // namespace

std::optional<StoredType> storedType(int bits, int format) {
    if (format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID) {
        if (bits == 8)
            return StoredType::uint8;
        if (bits == 16)
            return StoredType::uint16;
        if (bits == 32)
            return StoredType::uint32;
        if (bits >= 1 && bits < 16)
            return StoredType::packed;
    } else if (format == SAMPLEFORMAT_INT) {
        if (bits == 8)
            return StoredType::int8;
        if (bits == 16)
            return StoredType::int16;
        if (bits == 32)
            return StoredType::int32;
    } else if (format == SAMPLEFORMAT_IEEEFP) {
        if (bits == 16)
            return StoredType::float16;
        if (bits == 32)
            return StoredType::float32;
        if (bits == 64)
            return StoredType::float64;
    }
    return {};
}

int depthOf(StoredType type, int bits) {
    switch (type) {
    case StoredType::packed:
        return bits <= 8 ? CV_8U : CV_16U;
    case StoredType::uint8:
        return CV_8U;
    case StoredType::uint16:
        return CV_16U;
    case StoredType::int8:
    case StoredType::int16:
    case StoredType::float16:
    case StoredType::float32:
        return CV_32F;
    default: // a float does not hold every integer of 32 bits
        return CV_64F;
    }
}

void unpack(StoredType type, int bits, const ValueRow& in, void* out, std::size_t outStep,
            std::size_t count) {
    auto* bytes = static_cast<std::uint8_t*>(out);
    auto* words = static_cast<std::uint16_t*>(out);
    auto* floats = static_cast<float*>(out);
    auto* doubles = static_cast<double*>(out);
    switch (type) {
    case StoredType::packed:
        return bits <= 8 ? copyPacked(bits, in, bytes, outStep, count)
                         : copyPacked(bits, in, words, outStep, count);
    case StoredType::uint8:
        return copy<std::uint8_t>(in, bytes, outStep, count);
    case StoredType::uint16:
        return copy<std::uint16_t>(in, words, outStep, count);
    case StoredType::uint32:
        return copy<std::uint32_t>(in, doubles, outStep, count);
    case StoredType::int8:
        return copy<std::int8_t>(in, floats, outStep, count);
    case StoredType::int16:
        return copy<std::int16_t>(in, floats, outStep, count);
    case StoredType::int32:
        return copy<std::int32_t>(in, doubles, outStep, count);
    case StoredType::float16:
        return copyHalves(in, floats, outStep, count);
    case StoredType::float32:
        return copy<float>(in, floats, outStep, count);
    case StoredType::float64:
        return copy<double>(in, doubles, outStep, count);
    }
}

} // namespace lumetra
