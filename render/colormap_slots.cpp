#include "render/colormap_slots.h"

namespace lumetra {

Colour colourOfSlot(const Colormap& colormap, std::size_t slot) {
    constexpr std::size_t last = std::tuple_size_v<Colormap> - 1, lastSlot = slotCount - 1;
    return colormap[(slot * last + lastSlot / 2) / lastSlot]; // the nearest; there are no halves
}

} // namespace lumetra
