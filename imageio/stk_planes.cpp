#include "imageio/stk_planes.h"

#include "imageio/length_unit.h"
#include "imageio/reason.h"

namespace lumetra {
namespace {

/// The side of a pixel at a place of the file: a fraction, in a unit.
std::optional<double> pixelSide(TiffDirectory& directory, std::uint32_t offset,
                                const QString& unit) {
    const auto fraction = directory.numbers(offset, 2);
    if (fraction.size() != 2 || fraction[1] == 0)
        return {};
    return micrometres(static_cast<double>(fraction[0]) / fraction[1], unit);
}

/// A text at a place of the file: its length, then its letters.
QString textAt(TiffDirectory& directory, std::uint32_t offset) {
    constexpr std::uint32_t longest = 80;
    const auto length = directory.numbers(offset, 1);
    if (length.empty() || length[0] > longest)
        return {};
    const QByteArray text = directory.bytes(std::uint64_t{offset} + 4, length[0]);
    return QString::fromLatin1(text.constData()).trimmed(); // up to a NUL, if there is one
}

/// Tag 33628 is a list of pairs: what a number is, and the number or where it is.
void readPixelSize(TiffDirectory& directory, StkPlanes& planes) {
    constexpr std::uint16_t tag = 33628;
    constexpr std::uint64_t mostPairs = 1000;
    constexpr std::uint32_t isCalibrated = 3, xSide = 4, ySide = 5, unitOfSides = 6;
    const auto entry = directory.find(tag);
    if (!entry || entry->count > mostPairs)
        return;
    const auto pairs = directory.numbers(entry->offset, entry->count * 2);
    const auto find = [&](std::uint32_t what) -> std::optional<std::uint32_t> {
        for (std::size_t i = 0; i < pairs.size(); i += 2)
            if (pairs[i] == what)
                return pairs[i + 1];
        return {};
    };
    const auto unit = find(unitOfSides), x = find(xSide), y = find(ySide);
    if (!unit || find(isCalibrated).value_or(1) == 0)
        return;
    const QString name = textAt(directory, *unit);
    if (x)
        planes.pixelSizeX = pixelSide(directory, *x, name);
    if (y)
        planes.pixelSizeY = pixelSide(directory, *y, name);
}

} // namespace

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
    readPixelSize(directory, planes);
    return planes;
}

FileDescription describeStk(const StkPlanes& planes) {
    FileDescription description;
    (planes.areSlices ? description.axes.slices : description.axes.frames) = planes.count;
    description.metadata.axesKnown = true;
    description.metadata.source = QStringLiteral("STK");
    description.metadata.pixelSizeX = planes.pixelSizeX;
    description.metadata.pixelSizeY = planes.pixelSizeY;
    for (int page = 0; page < planes.count; ++page)
        description.planes.push_back({page, PlaneAddress::whole, 0});
    return description;
}

} // namespace lumetra
