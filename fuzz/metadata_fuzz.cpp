// Any bytes as OME-XML, as ImageJ's description and tags, and as a TIFF file that is read by its
// planes: what is described is bounded and within the file, and nothing else than an error comes of
// damage.

#include "fuzz/input.h"
#include "imageio/file_error.h"
#include "imageio/image_file.h"
#include "imageio/imagej_metadata.h"
#include "imageio/ome_xml.h"
#include "imageio/reason.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace {

using namespace lumetra;

QByteArray textOf(const std::string& bytes) {
    return {bytes.data(), static_cast<int>(bytes.size())};
}

void check(const FileDescription& description, int pages, int components) {
    const Axes& axes = description.axes;
    require(axes.channels > 0 && axes.slices > 0 && axes.frames > 0, "an axis of nothing");
    require(description.planes.size() == description.indexOf(0, 0, axes.frames) &&
                description.planes.size() <= static_cast<std::size_t>(mostPlanes),
            "another number of planes than the axes tell");
    require(description.metadata.channels.size() == static_cast<std::size_t>(axes.channels),
            "another number of channels");
    for (const ChannelMetadata& channel : description.metadata.channels)
        require(channel.lut.empty() || channel.lut.size() == 256, "a LUT of another size");
    for (const PlaneAddress& plane : description.planes) {
        require(plane.page >= PlaneAddress::nowhere && (plane.file > 0 || plane.page < pages),
                "a page that is not there");
        require(plane.component >= PlaneAddress::whole && plane.component < components,
                "a component that is not there");
        require(plane.file >= 0 &&
                    static_cast<std::size_t>(plane.file) <= description.others.size(),
                "a file that is not there");
    }
    for (const QString& name : description.others)
        require(!name.contains('/') && !name.contains('\\') && !name.startsWith('.'),
                "a file in another folder");
}

void checkOmeXml(FuzzedDataProvider& input) {
    const int pages = number(input, 1, 40), components = number(input, 1, 4);
    const bool isRgb = components == 3 && input.ConsumeBool();
    try {
        check(describeOme(textOf(input.ConsumeRemainingBytesAsString()),
                          {"a.ome.tif", pages, components, isRgb}),
              pages, components);
    } catch (const Reason&) { // as it should be
    }
}

void checkImageJ(FuzzedDataProvider& input) {
    const int pages = number(input, 1, 40);
    ImageJTags tags;
    tags.isBigEndian = input.ConsumeBool();
    for (int left = number(input, 0, 12); left > 0; --left)
        tags.byteCounts.push_back(input.ConsumeBool() ? input.ConsumeIntegral<std::uint32_t>()
                                                      : input.ConsumeIntegral<std::uint8_t>());
    tags.bytes = textOf(input.ConsumeRandomLengthString(2000));
    const auto x = input.ConsumeFloatingPoint<double>(), y = input.ConsumeFloatingPoint<double>();
    const QByteArray text = "ImageJ=1\n" + textOf(input.ConsumeRemainingBytesAsString());
    require(isImageJ(text), "not recognised");
    imagesOfImageJ(text);
    try {
        check(describeImageJ(text, pages, x, y, tags), pages, 1);
    } catch (const Reason&) { // as it should be
    }
}

void checkFile(FuzzedDataProvider& input) {
    static const QTemporaryDir folder("/dev/shm/metadata-XXXXXX");
    QFile file(folder.filePath("a.ome.tif"));
    require(file.open(QFile::WriteOnly), "no file");
    file.write(textOf(input.ConsumeRemainingBytesAsString()));
    file.close();
    try {
        const ImageFile image(file.fileName());
        const Axes axes = image.axes();
        constexpr int most = 3; // of each axis, or else large files would take long
        for (int t = 1; t <= std::min(most, axes.frames); ++t)
            for (int z = 1; z <= std::min(most, axes.slices); ++z)
                for (int c = 1; c <= std::min(most, axes.channels); ++c)
                    try {
                        require(image.plane(c, z, t).channels() == 1, "a plane of colours");
                    } catch (const FileError&) { // the others may be whole
                    }
        for (int number = 1; number <= std::min(most, image.pages()); ++number)
            image.page(number);
    } catch (const FileError&) { // as it should be
    }
}

} // namespace

/// Memory that a file only claims is given back as an error.
extern "C" const char*
__asan_default_options() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "allocator_may_return_null=1";
}

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    silenceQt();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    switch (number(input, 0, 2)) { // taken from the end of the input
    case 0:
        checkOmeXml(input);
        break;
    case 1:
        checkImageJ(input);
        break;
    default:
        checkFile(input);
    }
    return 0;
}
