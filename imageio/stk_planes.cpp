#include "imageio/stk_planes.h"

#include "imageio/reason.h"

namespace lumetra {

std::optional<StkPlanes> stkPlanes(TiffDirectory& directory) {
    constexpr std::uint16_t tag = 33629, rational = 5;
    const auto entry = directory.find(tag);
    if (!entry)
        return {};
    // For each plane: the z distance as a fraction, date and time of its making, those of changes.
    constexpr std::uint64_t numbersPerPlane = 6;
    if (entry->type != rational || entry->count == 0 ||
        entry->count > static_cast<std::uint64_t>(mostPlanes))
        throw Reason("is an STK file whose number of planes (tag 33629) is not understood");
    const auto numbers = directory.numbers(entry->offset, entry->count * numbersPerPlane);
    if (numbers.empty())
        throw Reason("is an STK file that is damaged or cut short");
    StkPlanes planes;
    planes.count = static_cast<int>(entry->count);
    bool hasDistance = false, hasTimes = false;
    for (std::size_t i = 0; i < numbers.size(); i += numbersPerPlane) {
        hasDistance |= numbers[i] != 0;
        hasTimes |= numbers[i + 2] != numbers[2] || numbers[i + 3] != numbers[3];
    }
    planes.areSlices = hasDistance || !hasTimes;
    return planes;
}

FileDescription describeStk(const StkPlanes& planes) {
    FileDescription description;
    (planes.areSlices ? description.axes.slices : description.axes.frames) = planes.count;
    description.metadata.axesKnown = true;
    description.metadata.source = QStringLiteral("STK");
    for (int page = 0; page < planes.count; ++page)
        description.planes.push_back({page, PlaneAddress::whole, 0});
    return description;
}

} // namespace lumetra
