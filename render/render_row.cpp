#include "render/render_row.h"

#include "lumetra/colourise/paint.h"
#include "render/compiler.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace lumetra {
namespace {

/// An intensity or a component, of 8 bits as well, so that vectors of both have the same length.
using Value16 = std::uint16_t;

/// Pixels whose intensities and components stay in the first-level cache.
constexpr std::size_t stripSize = 1024;
template<class Value>
using PixelStrip = std::array<Value, stripSize>;
using ComponentPlanes = std::array<PixelStrip<Value16>, 3>;

// What becomes of an intensity, or of a colour: one component.

struct Unchanged {
    LUMETRA_INLINE Value16 operator()(Value16 intensity) const { return intensity; }
};

struct Tinted {
    Value16 factor;
    LUMETRA_INLINE Value16 operator()(Value16 intensity) const {
        return static_cast<Value16>(std::uint32_t{intensity} * factor >> 16);
    }
};

struct ByteOfColour {
    unsigned shift;
    LUMETRA_INLINE Value16 operator()(std::uint32_t colour) const {
        return static_cast<Value16>(colour >> shift & 255);
    }
};

/// A component of 8 bits, with the same share of full scale in 16.
template<class Component>
struct Deepened {
    Component component;
    template<class Intensity>
    LUMETRA_INLINE Value16 operator()(Intensity intensity) const {
        return static_cast<Value16>(component(intensity) * 257);
    }
};

LUMETRA_INLINE Value16 clampedSum(Value16 a, Value16 b, Value16 largest) {
    const auto room = static_cast<Value16>(largest - a);
    return static_cast<Value16>(a + (b < room ? b : room));
}

/// A product p of two components divided by the largest one, rounded, is (q + q / n) / n for
/// n = largest + 1 and q = p + n / 2. All of it fits twice the bits of a component.
template<class Product>
LUMETRA_INLINE Value16 screened(Value16 a, Value16 b) {
    constexpr int bits = std::numeric_limits<Product>::digits / 2;
    constexpr Value16 largest = (1U << bits) - 1;
    const auto product =
        static_cast<Product>(Product(largest - a) * Product(largest - b) + (1U << (bits - 1)));
    const auto scaled = static_cast<Product>(product + (product >> bits));
    return static_cast<Value16>(largest - (scaled >> bits));
}

/// Lays a component, which is made of each intensity, over those before it.
/// @param blend  None over black.
template<class Intensity, class Component>
LUMETRA_INLINE void layOver(std::optional<Blend> blend, bool isDeep,
                            const Intensity* __restrict intensities, Component component,
                            Value16* __restrict under, std::size_t count) {
    if (!blend) {
        for (std::size_t i = 0; i < count; ++i)
            under[i] = component(intensities[i]);
    } else if (*blend == Blend::add) {
        const Value16 largest = isDeep ? 65535 : 255;
        for (std::size_t i = 0; i < count; ++i)
            under[i] = clampedSum(under[i], component(intensities[i]), largest);
    } else if (*blend == Blend::darkest) {
        for (std::size_t i = 0; i < count; ++i) {
            const Value16 over = component(intensities[i]);
            under[i] = over < under[i] ? over : under[i];
        }
    } else if (isDeep) {
        for (std::size_t i = 0; i < count; ++i)
            under[i] = screened<std::uint32_t>(under[i], component(intensities[i]));
    } else {
        for (std::size_t i = 0; i < count; ++i)
            under[i] = screened<std::uint16_t>(under[i], component(intensities[i]));
    }
}

/// The same with a component of 8 bits, in an image of 8 bits or of 16.
template<class Intensity, class Component>
LUMETRA_INLINE void layByteOver(std::optional<Blend> blend, bool isDeep,
                                const Intensity* intensities, Component component, Value16* under,
                                std::size_t count) {
    if (isDeep)
        layOver(blend, isDeep, intensities, Deepened<Component>{component}, under, count);
    else
        layOver(blend, isDeep, intensities, component, under, count);
}

// Where tables are looked up, functions are not inlined: a compiler that sees that nothing writes
// into the table collects its entries into vectors, which takes longer.

template<class Value, class Entry, class Result>
LUMETRA_NOT_INLINED void lookUp(const Value* values, const Entry* table, Result* results,
                                std::size_t count) {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count; ++i)
        results[i] = table[values[i]];
}

template<class Value>
LUMETRA_INLINE void toIntensities(const Value* __restrict values, const IntensityLut* lut,
                                  Value16* __restrict intensities, std::size_t count) {
    if (!lut) {
        for (std::size_t i = 0; i < count; ++i)
            intensities[i] = values[i];
    } else if (lut->ramp()) {
        const LinearRamp ramp = *lut->ramp();
        for (std::size_t i = 0; i < count; ++i)
            intensities[i] = ramp(values[i]);
    } else {
        lookUp(values, lut->entries().data(), intensities, count);
    }
}

/// The intensities of a channel, collected in `strip` unless its values are such.
LUMETRA_INLINE const Value16* intensitiesOf(const RowChannel& channel, std::size_t first,
                                            std::size_t count, PixelStrip<Value16>& strip) {
    const auto* const bytes = static_cast<const unsigned char*>(channel.values);
    const auto* const values = static_cast<const std::uint16_t*>(channel.values);
    if (channel.bitDepth == 8)
        toIntensities(bytes + first, channel.lut, strip.data(), count);
    else if (channel.lut)
        toIntensities(values + first, channel.lut, strip.data(), count);
    else
        return values + first;
    return strip.data();
}

/// @param blend  None for the first channel, over black.
LUMETRA_INLINE void layChannelOver(std::optional<Blend> blend, const RowChannel& channel,
                                   bool isDeep, std::size_t first, std::size_t count,
                                   ComponentPlanes& under) {
    PixelStrip<Value16> strip;
    const Value16* const intensities = intensitiesOf(channel, first, count, strip);
    if (channel.colours) {
        PixelStrip<std::uint32_t> colours;
        lookUp(intensities, channel.colours, colours.data(), count);
        for (unsigned k = 0; k < 3; ++k)
            layByteOver(blend, isDeep, colours.data(), ByteOfColour{8 * k}, under[k].data(), count);
        return;
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const auto [factor, isWhole] = channel.factors[k];
        Value16* const plane = under[k].data();
        const bool isNothing = factor == 0 && !isWhole;
        if (isNothing && (blend == Blend::add || blend == Blend::screen))
            continue;
        if (channel.is16Bit())
            layOver(blend, isDeep, intensities, Tinted{factor}, plane, count);
        else if (isWhole)
            layByteOver(blend, isDeep, intensities, Unchanged{}, plane, count);
        else
            layByteOver(blend, isDeep, intensities, Tinted{factor}, plane, count);
    }
}

template<class Component>
LUMETRA_INLINE void storeThree(const ComponentPlanes& planes, Component* __restrict pixels,
                               std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = static_cast<Component>(planes[0][i]);
        pixels[3 * i + 1] = static_cast<Component>(planes[1][i]);
        pixels[3 * i + 2] = static_cast<Component>(planes[2][i]);
    }
}

LUMETRA_INLINE void storeFour(const ComponentPlanes& planes, unsigned char* __restrict pixels,
                              std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = planes[0][i] | std::uint32_t{planes[1][i]} << 8 |
                                    std::uint32_t{planes[2][i]} << 16 | 0xFF000000;
        std::memcpy(pixels + 4 * i, &pixel, sizeof pixel);
    }
}

LUMETRA_INLINE void composeStrip(const Row& row, std::size_t first, std::size_t count) {
    ComponentPlanes planes;
    layChannelOver({}, row.channels.front(), row.is16Bit, first, count, planes);
    for (std::size_t i = 1; i < row.channels.size(); ++i)
        layChannelOver(row.channels[i].blend, row.channels[i], row.is16Bit, first, count, planes);

    if (row.components == 4)
        storeFour(planes, static_cast<unsigned char*>(row.pixels) + 4 * first, count);
    else if (row.is16Bit)
        storeThree(planes, static_cast<std::uint16_t*>(row.pixels) + 3 * first, count);
    else
        storeThree(planes, static_cast<unsigned char*>(row.pixels) + 3 * first, count);
}

/// Stores the colours of intensities, two pixels at a time: three bytes of each, or all four.
template<class Intensity>
LUMETRA_NOT_INLINED void storeColours(const Intensity* intensities, const std::uint32_t* colours,
                                      int components, unsigned char* pixels, std::size_t count) {
    const auto pair = [&](std::size_t i, unsigned shift) {
        return colours[intensities[2 * i]] | std::uint64_t{colours[intensities[2 * i + 1]]}
                                                 << shift;
    };
    if (components == 3) {
        writePixelWords(pixels, count / 2, [&](std::size_t i) { return pair(i, 24); });
    } else {
        for (std::size_t i = 0; i < count / 2; ++i) {
            const std::uint64_t bytes = pair(i, 32);
            std::memcpy(pixels + 8 * i, &bytes, sizeof bytes);
        }
    }
    const auto pixelBytes = static_cast<std::size_t>(components);
    if (count % 2 != 0)
        std::memcpy(pixels + pixelBytes * (count - 1), colours + intensities[count - 1],
                    pixelBytes);
}

/// One channel with a colormap, whose colours need not be taken apart.
LUMETRA_INLINE void paintStrip(const Row& row, std::size_t first, std::size_t count) {
    const RowChannel& channel = row.channels.front();
    auto* const pixels =
        static_cast<unsigned char*>(row.pixels) + static_cast<std::size_t>(row.components) * first;
    const auto* const bytes = static_cast<const unsigned char*>(channel.values);
    if (channel.bitDepth == 8 && !channel.lut)
        return storeColours(bytes + first, channel.colours, row.components, pixels, count);
    PixelStrip<Value16> strip;
    storeColours(intensitiesOf(channel, first, count, strip), channel.colours, row.components,
                 pixels, count);
}

LUMETRA_INLINE void renderStrips(const Row& row) {
    const bool isPainted = row.channels.size() == 1 && row.channels.front().colours;
    for (std::size_t first = 0; first < row.count; first += stripSize) {
        const std::size_t count = std::min(stripSize, row.count - first);
        if (isPainted)
            paintStrip(row, first, count);
        else
            composeStrip(row, first, count);
    }
}

void renderRowByBaseline(const Row& row) { renderStrips(row); }

#ifdef LUMETRA_WIDER_VECTORS
__attribute__((target("avx2"))) void renderRowByAvx2(const Row& row) { renderStrips(row); }

__attribute__((target("avx512bw,avx512dq,avx512vl"))) void renderRowByAvx512(const Row& row) {
    renderStrips(row);
}
#endif

} // namespace

// The share of 8 bits is rounded up: any intensity makes less than 1 / 255 of that.
TintFactor::TintFactor(std::uint8_t component, bool is16Bit)
    : factor(
          static_cast<std::uint16_t>(is16Bit ? component * 256 : (component * 65536 + 254) / 255)),
      isWhole(!is16Bit && component == 255) {}

RenderRow renderRowFor(InstructionSet set) {
    switch (set) {
#ifdef LUMETRA_WIDER_VECTORS
    case InstructionSet::avx2:
        return renderRowByAvx2;
    case InstructionSet::avx512:
        return renderRowByAvx512;
#endif
    default:
        return renderRowByBaseline;
    }
}

} // namespace lumetra
