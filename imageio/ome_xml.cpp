#include "imageio/ome_xml.h"

#include "imageio/length_unit.h"
#include "imageio/reason.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <limits>

namespace lumetra {
namespace {

using Attributes = QXmlStreamAttributes;

QString text(const Attributes& from, const char* name) {
    return from.value(QLatin1String(name)).toString();
}

/// @throws Reason unless the attribute is missing or a number from `least` on.
int number(const Attributes& from, const char* name, int least, int missing) {
    const QString value = text(from, name).trimmed();
    if (value.isEmpty())
        return missing;
    bool isNumber = false;
    const int result = value.toInt(&isNumber);
    if (!isNumber || result < least)
        throw Reason(QStringLiteral("%1=\"%2\" is not understood").arg(QLatin1String(name), value));
    return result;
}

std::optional<double> length(const Attributes& from, const char* name, const char* usualUnit) {
    const QString unit = text(from, (std::string(name) + "Unit").c_str());
    bool isNumber = false;
    const double value = text(from, name).toDouble(&isNumber);
    return isNumber ? micrometres(value, unit.isEmpty() ? QString::fromUtf8(usualUnit) : unit)
                    : std::nullopt;
}

std::optional<double> wavelength(const Attributes& from, const char* name) {
    const auto inMicrometres = length(from, name, "nm");
    return inMicrometres ? std::optional(*inMicrometres * 1000) : std::nullopt;
}

struct Channel {
    ChannelMetadata metadata;
    int samples = 0; ///< 0 where it is not told.
};

Channel channelOf(const Attributes& from) {
    Channel channel;
    channel.metadata.name = text(from, "Name");
    bool isNumber = false;
    // Red, green, blue and alpha, as a signed number; some programs write an unsigned one.
    const qlonglong colour = text(from, "Color").toLongLong(&isNumber);
    if (isNumber)
        channel.metadata.colour = static_cast<std::uint32_t>(colour) >> 8;
    channel.metadata.excitation = wavelength(from, "ExcitationWavelength");
    channel.metadata.emission = wavelength(from, "EmissionWavelength");
    channel.samples = number(from, "SamplesPerPixel", 1, 0);
    return channel;
}

/// Planes that follow one another, in the order of the dimensions and in a file.
struct TiffData {
    int page, channel, slice, frame;
    int count; ///< -1 for all that there are.
    QString file, uuid;
};

TiffData tiffDataOf(const Attributes& from) {
    const bool isOne = from.hasAttribute(QLatin1String("IFD"));
    return {number(from, "IFD", 0, 0),
            number(from, "FirstC", 0, 0),
            number(from, "FirstZ", 0, 0),
            number(from, "FirstT", 0, 0),
            number(from, "PlaneCount", 0, isOne ? 1 : -1),
            {},
            {}};
}

/// The parts of a document that matter here.
struct Document {
    QString uuid, order;
    int sizeC = 0, sizeZ = 1, sizeT = 1, images = 0;
    std::optional<double> x, y, z;
    std::vector<Channel> channels;
    std::vector<TiffData> data;
};

void readPixels(const Attributes& from, Document& document) {
    document.order = text(from, "DimensionOrder");
    document.sizeC = number(from, "SizeC", 1, 1);
    document.sizeZ = number(from, "SizeZ", 1, 1);
    document.sizeT = number(from, "SizeT", 1, 1);
    document.x = length(from, "PhysicalSizeX", "\u00B5m");
    document.y = length(from, "PhysicalSizeY", "\u00B5m");
    document.z = length(from, "PhysicalSizeZ", "\u00B5m");
}

Document parsed(const QByteArray& xml) {
    Document document;
    QXmlStreamReader reader(xml);
    bool isInPixels = false;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        const auto is = [&](const char* name) { return reader.name() == QLatin1String(name); };
        if (token == QXmlStreamReader::EndElement && is("Pixels"))
            isInPixels = false;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const Attributes attributes = reader.attributes();
        if (is("OME"))
            document.uuid = text(attributes, "UUID");
        else if (is("BinaryOnly"))
            throw Reason(QStringLiteral("its metadata are in another file, %1")
                             .arg(text(attributes, "MetadataFile")));
        else if (is("Image"))
            ++document.images;
        if (document.images > 1)
            continue;
        if (is("Pixels")) {
            isInPixels = true;
            readPixels(attributes, document);
        } else if (isInPixels && is("Channel")) {
            document.channels.push_back(channelOf(attributes));
        } else if (isInPixels && is("TiffData")) {
            document.data.push_back(tiffDataOf(attributes));
        } else if (isInPixels && is("UUID") && !document.data.empty()) {
            document.data.back().file = text(attributes, "FileName");
            document.data.back().uuid = reader.readElementText().trimmed();
        }
    }
    if (reader.hasError())
        throw Reason(reader.errorString());
    if (document.sizeC == 0)
        throw Reason("it tells of no image");
    return document;
}

/// Which file each part of the planes is in: 0 for this one.
class Files {
public:
    Files(const Document& document, const FileForm& file, std::vector<QString>& others)
        : document_(document), file_(file), others_(others) {
        for (const TiffData& data : document.data)
            if (!data.file.isEmpty() && !names_.contains(data.file))
                names_.append(data.file);
    }

    int numberOf(const TiffData& data) {
        // A file that is alone and was renamed still names itself as it was called.
        const bool isThis = data.file.isEmpty() || data.file == file_.name ||
                            (!document_.uuid.isEmpty() && data.uuid == document_.uuid) ||
                            (names_.size() == 1 && document_.uuid.isEmpty());
        if (isThis)
            return 0;
        if (data.file.contains('/') || data.file.contains('\\') || data.file.startsWith('.'))
            throw Reason(QStringLiteral("it names a file in another folder, %1").arg(data.file));
        const auto found = std::find(others_.begin(), others_.end(), data.file);
        if (found == others_.end() && others_.size() >= std::numeric_limits<std::int16_t>::max())
            throw Reason("it names too many files");
        const auto number = static_cast<int>(found - others_.begin()) + 1;
        if (found == others_.end())
            others_.push_back(data.file);
        return number;
    }

private:
    const Document& document_;
    const FileForm& file_;
    std::vector<QString>& others_;
    QStringList names_;
};

/// Counts through the planes in the order of the dimensions.
class Order {
public:
    /// @param sizes  Of C, Z and T.
    Order(const QString& order, std::array<int, 3> sizes) : sizes_(sizes) {
        const QString axes = QStringLiteral("CZT");
        QString sorted = order.mid(2);
        std::sort(sorted.begin(), sorted.end());
        if (!order.startsWith(QLatin1String("XY")) || sorted != QLatin1String("CTZ"))
            throw Reason(QStringLiteral("DimensionOrder=\"%1\" is not understood").arg(order));
        for (std::size_t i = 0; i < axes_.size(); ++i)
            axes_[i] = static_cast<std::size_t>(axes.indexOf(order[static_cast<int>(i) + 2]));
    }

    std::int64_t position(const std::array<int, 3>& czt) const {
        std::int64_t position = 0;
        for (std::size_t i = axes_.size(); i-- > 0;)
            position = position * sizes_[axes_[i]] + czt[axes_[i]];
        return position;
    }

    std::array<int, 3> czt(std::int64_t position) const {
        std::array<int, 3> result{};
        for (const std::size_t axis : axes_) {
            result[axis] = static_cast<int>(position % sizes_[axis]);
            position /= sizes_[axis];
        }
        return result;
    }

private:
    std::array<int, 3> sizes_;
    std::array<std::size_t, 3> axes_{}; ///< The fastest first.
};

/// How many of C lie together in a page, as its channels tell or else as the page has them.
int samplesPerPage(const Document& document, const FileForm& file) {
    const int stated = document.channels.empty() ? 0 : document.channels[0].samples;
    const int samples = stated > 0                              ? stated
                        : document.sizeC % file.components == 0 ? file.components
                                                                : 1;
    if (document.sizeC % samples != 0 || samples < file.components)
        throw Reason(QStringLiteral("it tells of %1 values for each pixel, and the page has %2")
                         .arg(samples)
                         .arg(file.components));
    return samples;
}

void placePlanes(const Document& document, const FileForm& file, int pageChannels,
                 FileDescription& description) {
    const Order order(document.order, {pageChannels, document.sizeZ, document.sizeT});
    const std::int64_t all = std::int64_t{pageChannels} * document.sizeZ * document.sizeT;
    Files files(document, file, description.others);
    std::vector<TiffData> data = document.data;
    if (data.empty())
        data.push_back({0, 0, 0, 0, -1, {}, {}});
    std::int64_t left = all; // a plane is told once: else small files would take long
    for (const TiffData& part : data) {
        if (part.channel >= pageChannels || part.slice >= document.sizeZ ||
            part.frame >= document.sizeT)
            throw Reason("TiffData begins outside of the image");
        const std::int64_t first = order.position({part.channel, part.slice, part.frame});
        const std::int64_t count = part.count < 0 ? all - first : part.count;
        if (count > all - first || count > left)
            throw Reason("TiffData tells of more planes than there are");
        left -= count;
        if (count > std::numeric_limits<std::int32_t>::max() - part.page)
            throw Reason("TiffData tells of pages out of reach");
        const int number = files.numberOf(part);
        for (std::int64_t i = 0; i < count; ++i) {
            const auto page = static_cast<std::int32_t>(part.page + i);
            if (number == 0 && page >= file.pages)
                break;
            const auto czt = order.czt(first + i);
            for (int c = 0; c < file.components; ++c)
                description
                    .planes[description.indexOf(czt[0] * file.components + c, czt[1], czt[2])] = {
                    page, static_cast<std::int16_t>(file.components > 1 ? c : PlaneAddress::whole),
                    static_cast<std::int16_t>(number)};
        }
    }
}

} // namespace

bool isOmeXml(const QByteArray& text) {
    constexpr int start = 4096; // a comment or two may come first
    const QByteArray first = text.left(start);
    return first.contains("<OME") || first.contains(":OME");
}

FileDescription describeOme(const QByteArray& xml, const FileForm& file) {
    const Document document = parsed(xml);
    const int samples = samplesPerPage(document, file);
    const int pageChannels = document.sizeC / samples;
    FileDescription description;
    Axes& axes = description.axes;
    axes.channels = pageChannels * file.components; // without alpha
    axes.slices = document.sizeZ;
    axes.frames = document.sizeT;
    constexpr int mostChannels = 10000;
    if (axes.channels > mostChannels ||
        std::int64_t{axes.slices} * axes.frames > mostPlanes / axes.channels)
        throw Reason("it tells of too many planes");
    const std::size_t all = description.indexOf(0, 0, axes.frames);
    description.planes.resize(all);
    placePlanes(document, file, pageChannels, description);

    FileMetadata& metadata = description.metadata;
    const auto missing = std::count_if(
        description.planes.begin(), description.planes.end(),
        [](const PlaneAddress& plane) { return plane.page == PlaneAddress::nowhere; });
    if (static_cast<std::size_t>(missing) == all)
        throw Reason("it tells of no plane in the file");
    if (missing > 0)
        metadata.warnings.push_back(
            QStringLiteral("%1 of the %2 planes that its OME-XML tells of are not in the file")
                .arg(missing)
                .arg(all));
    if (document.images > 1)
        metadata.warnings.push_back(
            QStringLiteral("its OME-XML tells of %1 images, of which the first is taken; pages of "
                           "the others can be named by their numbers")
                .arg(document.images));
    metadata.axesKnown = true;
    metadata.source = QStringLiteral("OME-XML");
    metadata.pixelSizeX = document.x;
    metadata.pixelSizeY = document.y;
    metadata.sliceDistance = document.z;
    metadata.channels.resize(static_cast<std::size_t>(axes.channels));
    constexpr std::array<std::uint32_t, 3> rgb{0xFF0000, 0x00FF00, 0x0000FF};
    for (std::size_t i = 0; i < metadata.channels.size(); ++i) {
        const auto components = static_cast<std::size_t>(file.components);
        if (i / components < document.channels.size())
            metadata.channels[i] = document.channels[i / components].metadata;
        if (file.isRgb)
            metadata.channels[i].colour = rgb[i % rgb.size()];
    }
    return description;
}

} // namespace lumetra
