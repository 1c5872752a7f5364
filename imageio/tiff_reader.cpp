#include "imageio/tiff_reader.h"

#include "imageio/imagej_metadata.h"
#include "imageio/length_unit.h"
#include "imageio/ome_xml.h"
#include "imageio/orientation.h"
#include "imageio/reason.h"
#include "imageio/stored_values.h"
#include "imageio/tiff_directory.h"

#include <opencv2/core.hpp>

#include <QByteArray>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace lumetra {
namespace {

const std::string cut = "is damaged or cut short";

template<class Number>
Number field(TIFF* tiff, std::uint32_t tag) {
    Number value{};
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

/// What decides how a page's pixel values are read.
struct Layout {
    explicit Layout(TIFF* tiff)
        : samples(field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          bits(field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE)),
          format(field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT)), type(storedType(bits, format)),
          isPlanar(samples > 1 &&
                   field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE) {
        hasPhotometric = TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) != 0;
        std::uint16_t extras = 0;
        const std::uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
        hasLooseAlpha = extras > 0 && kinds && kinds[0] == EXTRASAMPLE_UNASSALPHA;
        for (std::uint16_t i = 0; kinds && i < extras; ++i)
            alphas += kinds[i] == EXTRASAMPLE_UNASSALPHA || kinds[i] == EXTRASAMPLE_ASSOCALPHA;
    }

    bool hasIntegers() const { return type == StoredType::uint8 || type == StoredType::uint16; }
    bool isInverted() const { return photometric == PHOTOMETRIC_MINISWHITE; }
    /// Red, green and blue that can be shown as they are.
    bool isRgb() const { return photometric == PHOTOMETRIC_RGB && hasIntegers(); }
    bool isPalette() const { return photometric == PHOTOMETRIC_PALETTE; }
    /// One plane or several; RGB of other types is three planes, too.
    bool isGray() const {
        return photometric == PHOTOMETRIC_MINISBLACK || isInverted() ||
               (photometric == PHOTOMETRIC_RGB && !hasIntegers());
    }

    /// How many planes the page holds; colours count as one.
    int components() const { return isGray() ? std::max(1, samples - alphas) : 1; }

    ValueType valueType() const {
        return {format == SAMPLEFORMAT_IEEEFP ? ValueType::floatingPoint
                : format == SAMPLEFORMAT_INT  ? ValueType::signedInteger
                                              : ValueType::unsignedInteger,
                bits};
    }

    /// Whether libtiff turns the page into RGB. That multiplies 8-bit colours by an alpha channel
    /// that they have not been multiplied by before.
    bool isConverted() const {
        return bits == 8 && !isGray() && !isPalette() && (!isRgb() || hasLooseAlpha);
    }
    /// What one plane is read into.
    int depth() const { return type ? depthOf(*type, bits) : CV_8U; }

    std::uint16_t samples, bits, format, photometric = 0;
    std::optional<StoredType> type;
    int alphas = 0;
    bool isPlanar, hasPhotometric = false, hasLooseAlpha = false;
};

/// Why the page cannot be taken as it is; empty if it can.
QString objection(TIFF* tiff) {
    const Layout layout(tiff);
    if (!layout.type)
        return QStringLiteral("has pixel values of %1 bits that are %2, which is not supported")
            .arg(layout.bits)
            .arg(QLatin1String(layout.format == SAMPLEFORMAT_IEEEFP ? "floating-point"
                               : layout.format == SAMPLEFORMAT_INT  ? "signed integers"
                               : layout.format == SAMPLEFORMAT_UINT ||
                                       layout.format == SAMPLEFORMAT_VOID
                                   ? "unsigned integers"
                                   : "complex numbers"));
    if (!layout.hasPhotometric)
        return QStringLiteral("does not say what its pixel values mean "
                              "(PhotometricInterpretation)");
    if (layout.isPalette() && layout.samples > 1)
        return QStringLiteral("is a palette image with %1 values per pixel, which is not supported")
            .arg(layout.samples);
    if (layout.isPalette() && (layout.depth() != CV_8U || layout.format == SAMPLEFORMAT_INT))
        return QStringLiteral("is a palette image of %1 bits, which is not supported")
            .arg(layout.bits);
    if (layout.photometric == PHOTOMETRIC_RGB && layout.samples < 3)
        return QStringLiteral("is RGB with fewer than three values per pixel");
    std::array<char, 1024> unused{}; // libtiff's reason, in its own words
    const bool isReadable = layout.isConverted()
                                ? TIFFRGBAImageOK(tiff, unused.data()) != 0
                                : layout.isGray() || layout.isRgb() || layout.isPalette();
    if (!isReadable)
        return QStringLiteral("has colours of a kind that is not supported "
                              "(PhotometricInterpretation %1, bit depth %2)")
            .arg(layout.photometric)
            .arg(layout.bits);
    return {};
}

/// Whether the file holds all of the page's strips or tiles.
bool isWhole(TIFF* tiff, std::uint64_t fileBytes) {
    const std::uint32_t pieces =
        TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    for (std::uint32_t i = 0; i < pieces; ++i) {
        int failed = 0;
        const std::uint64_t first = TIFFGetStrileOffsetWithErr(tiff, i, &failed);
        const std::uint64_t bytes = TIFFGetStrileByteCountWithErr(tiff, i, &failed);
        if (failed || first == 0 || first > fileBytes || bytes > fileBytes - first)
            return false;
    }
    return pieces > 0;
}

QByteArray descriptionOf(TIFF* tiff) {
    const char* description = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &description) || !description)
        return {};
    return description;
}

/// The bytes from one row to the next, without tiles.
std::uint64_t rowBytesOf(TIFF* tiff) {
    const auto bytes = TIFFScanlineSize(tiff);
    return bytes > 0 ? static_cast<std::uint64_t>(bytes) : 0;
}

/// The bytes of a page whose strips follow one another in the file uncompressed; 0 if they do not.
std::uint64_t bytesInOnePiece(TIFF* tiff) {
    const auto rows = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH);
    const std::uint64_t rowBytes = rowBytesOf(tiff);
    if (TIFFIsTiled(tiff) || Layout(tiff).isPlanar || rowBytes == 0 || rows == 0 ||
        field<std::uint16_t>(tiff, TIFFTAG_COMPRESSION) != COMPRESSION_NONE ||
        field<std::uint16_t>(tiff, TIFFTAG_FILLORDER) != FILLORDER_MSB2LSB)
        return 0;
    // ImageJ may state the bytes of the first strip as those of the whole stack, or too few.
    const std::uint32_t strips = TIFFNumberOfStrips(tiff);
    std::uint64_t next = TIFFGetStrileOffset(tiff, 0);
    for (std::uint32_t i = 0; i < strips; ++i) {
        if (TIFFGetStrileOffset(tiff, i) != next)
            return 0;
        next += TIFFVStripSize64(tiff, 1) *
                std::min(field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), rows);
    }
    return rowBytes > std::numeric_limits<std::uint64_t>::max() / rows ? 0 : rowBytes * rows;
}

/// Sums up the differences of each value to the one before it in its row, modulo 65536.
void sumDifferences(std::uint16_t* values, std::size_t count, std::size_t step) {
    for (std::size_t i = step; i < count; ++i)
        values[i] = static_cast<std::uint16_t>(values[i] + values[i - step]);
}

/// The strips or tiles of a page: strips are tiles as wide as the image. A page behind another's
/// directory is cut into strips that no directory tells of.
struct Pieces {
    /// @param raw  Where in the file the pixels of such a page begin; 0 for libtiff's own.
    Pieces(TIFF* open, QFile& in, std::uint64_t raw)
        : tiff(open), file(in), rawOffset(raw), isTiled(TIFFIsTiled(open) != 0) {
        const auto imageWidth = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH);
        const auto imageHeight = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH);
        width = isTiled ? field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH) : imageWidth;
        height = isTiled ? field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH)
                         : std::min(field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), imageHeight);
        rowBytes = static_cast<std::uint64_t>(
            std::max<tmsize_t>(0, isTiled ? TIFFTileRowSize(tiff) : TIFFScanlineSize(tiff)));
        if (width == 0 || height == 0 || rowBytes == 0)
            throw Reason("is damaged");
        if (rawOffset > 0) { // in bands that a processor's cache holds
            constexpr std::uint64_t band = 1 << 18;
            height = static_cast<std::uint32_t>(
                std::clamp<std::uint64_t>(band / rowBytes, 1, imageHeight));
        }
        undoPredictor();
    }

    /// Differences of 16 bits are undone here: libtiff takes several times as long for it.
    void undoPredictor() {
        const bool isDifferenced =
            rawOffset == 0 && field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE) == 16 &&
            field<std::uint16_t>(tiff, TIFFTAG_PREDICTOR) == PREDICTOR_HORIZONTAL;
        if (!isDifferenced || TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_NONE) != 1)
            return;
        const bool isPlanar =
            field<std::uint16_t>(tiff, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
        differenceStep = isPlanar ? 1 : field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL);
    }

    tmsize_t bytes() const {
        return rawOffset > 0 ? static_cast<tmsize_t>(rowBytes * height)
               : isTiled     ? TIFFTileSize(tiff)
                             : TIFFStripSize(tiff);
    }

    /// Decodes the piece that begins at this pixel.
    bool read(std::uint32_t x, std::uint32_t y, std::uint16_t plane, void* out,
              tmsize_t size) const {
        if (rawOffset > 0)
            return readRaw(y, out, size);
        const bool isRead =
            isTiled ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, plane), out, size) ==
                          size
                    : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), out, size) >= 0;
        if (isRead && differenceStep > 0)
            for (std::uint64_t row = 0; row < static_cast<std::uint64_t>(size) / rowBytes; ++row)
                sumDifferences(reinterpret_cast<std::uint16_t*>(static_cast<std::uint8_t*>(out) +
                                                                row * rowBytes),
                               rowBytes / 2, differenceStep);
        return isRead;
    }

    bool readRaw(std::uint32_t y, void* out, tmsize_t size) const {
        const std::uint64_t first = rawOffset + y * rowBytes;
        if (!file.seek(static_cast<qint64>(first)) ||
            file.read(static_cast<char*>(out), size) != size)
            return false;
        if (!TIFFIsByteSwapped(tiff))
            return true;
        const auto bits = field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE);
        if (bits == 16)
            TIFFSwabArrayOfShort(static_cast<std::uint16_t*>(out), size / 2);
        else if (bits == 32)
            TIFFSwabArrayOfLong(static_cast<std::uint32_t*>(out), size / 4);
        else if (bits == 64)
            TIFFSwabArrayOfDouble(static_cast<double*>(out), size / 8);
        return true;
    }

    /// Decodes it into red, green, blue and alpha, the lowest row first.
    bool convert(std::uint32_t x, std::uint32_t y, std::uint32_t* out) const {
        constexpr int stopOnError = 1;
        return (isTiled ? TIFFReadRGBATileExt(tiff, x, y, out, stopOnError)
                        : TIFFReadRGBAStripExt(tiff, y, out, stopOnError)) != 0;
    }

    /// Calls `act` with the part of the image that each piece covers.
    template<class Act>
    void forEach(cv::Size image, const Act& act) const {
        const cv::Rect whole({}, image);
        const auto right = static_cast<std::uint32_t>(image.width);
        const auto bottom = static_cast<std::uint32_t>(image.height);
        for (std::uint32_t y = 0; y < bottom; y += std::min(height, bottom - y))
            for (std::uint32_t x = 0; x < right; x += std::min(width, right - x))
                act(cv::Rect(static_cast<int>(x), static_cast<int>(y),
                             static_cast<int>(std::min(width, right - x)),
                             static_cast<int>(std::min(height, bottom - y))));
    }

    TIFF* tiff;
    QFile& file;
    std::uint64_t rawOffset;
    bool isTiled;
    std::uint32_t width = 0, height = 0;
    std::uint64_t rowBytes = 0;
    std::size_t differenceStep = 0; ///< Values per pixel, where rows are differences; else 0.
};

/// Reads planes of a page into an image of as many channels, in the reverse order: red, green and
/// blue become blue, green and red.
/// @param top  The row of the page that comes first, where a piece begins.
void readInto(const Pieces& pieces, const Layout& layout, std::size_t component, cv::Mat& image,
              int top = 0) {
    const auto channels = static_cast<std::size_t>(image.channels());
    const std::size_t step = layout.isPlanar ? 1 : layout.samples;
    const std::size_t together = layout.isPlanar ? 1 : channels;
    const auto bytes = static_cast<std::size_t>(pieces.bytes());
    const std::size_t neededBits = std::size_t{pieces.width} * step * layout.bits;
    if (pieces.height > bytes / pieces.rowBytes || neededBits > pieces.rowBytes * 8)
        throw Reason(cut);
    const std::unique_ptr<std::uint8_t[]> values(new std::uint8_t[bytes]);
    pieces.forEach(image.size(), [&](cv::Rect part) {
        for (std::size_t plane = 0; plane < channels; plane += together) {
            // The last strip may be lower than the others.
            const std::size_t needed =
                pieces.isTiled ? bytes : static_cast<std::size_t>(part.height) * pieces.rowBytes;
            if (!pieces.read(static_cast<std::uint32_t>(part.x),
                             static_cast<std::uint32_t>(top + part.y),
                             static_cast<std::uint16_t>(component + plane), values.get(),
                             static_cast<tmsize_t>(needed)))
                throw Reason(cut);
            for (int y = 0; y < part.height; ++y)
                for (std::size_t c = plane; c < plane + together; ++c) {
                    const ValueRow row{values.get() + static_cast<std::size_t>(y) * pieces.rowBytes,
                                       layout.isPlanar ? 0 : component + c, step};
                    std::uint8_t* out =
                        image.ptr(part.y + y, part.x) + (channels - 1 - c) * image.elemSize1();
                    unpack(*layout.type, layout.bits, row, out, channels,
                           static_cast<std::size_t>(part.width));
                }
        }
    });
}

/// Turns values that are stored inverted, so that bright is bright.
void invert(const Layout& layout, cv::Mat& plane) {
    const bool isUnsigned =
        layout.format == SAMPLEFORMAT_UINT || layout.format == SAMPLEFORMAT_VOID;
    const double largest = isUnsigned ? std::ldexp(1, layout.bits) - 1 : 0;
    cv::subtract(cv::Scalar(largest), plane, plane);
}

/// The rows of a plane, through bands that are as high as a strip or tile.
class TiffRows : public PlaneRows {
public:
    TiffRows(cv::Size size, const Pieces& pieces, const Layout& layout, std::size_t component)
        : PlaneRows(size, CV_MAKETYPE(layout.depth(), 1)), pieces_(pieces), layout_(layout),
          component_(component) {}

    void read(cv::Mat& rows) override {
        for (int y = 0; y < rows.rows;) {
            if (next_ == bandEnd())
                readBand();
            const int count = std::min(rows.rows - y, bandEnd() - next_);
            cv::Mat out = rows.rowRange(y, y + count);
            band_.rowRange(next_ - top_, next_ - top_ + count).copyTo(out);
            next_ += count;
            y += count;
        }
    }

private:
    int bandEnd() const { return top_ + band_.rows; }

    void readBand() {
        top_ = next_;
        const auto height = std::min<std::int64_t>(pieces_.height, size().height - top_);
        if (height <= 0)
            throw Reason(cut);
        band_.create(static_cast<int>(height), size().width, type());
        readInto(pieces_, layout_, component_, band_, top_);
        if (layout_.isInverted())
            invert(layout_, band_);
    }

    Pieces pieces_;
    Layout layout_;
    std::size_t component_;
    cv::Mat band_;
    int top_ = 0, next_ = 0; ///< The first row of the band, and the next one to give.
};

using Palette = std::array<cv::Vec3b, 256>; // of blue, green and red

/// The colours that indices stand for; those that the file does not have are black.
Palette paletteOf(TIFF* tiff, int bits) {
    const std::size_t colours = std::size_t{1} << bits;
    std::array<const std::uint16_t*, 3> map{}; // of red, green, blue
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, map.data(), &map[1], &map[2]))
        throw Reason("has no palette");
    // Its values have 16 bits, but some programs write 8.
    const bool isNarrow = std::all_of(map.begin(), map.end(), [&](const std::uint16_t* values) {
        return std::all_of(values, values + colours, [](std::uint16_t v) { return v < 256; });
    });
    Palette palette{};
    for (std::size_t i = 0; i < colours; ++i)
        for (int c = 0; c < 3; ++c)
            palette[i][2 - c] = static_cast<std::uint8_t>(map[static_cast<std::size_t>(c)][i] /
                                                          (isNarrow ? 1 : 256));
    return palette;
}

bool isGray(const Palette& palette) {
    return std::all_of(palette.begin(), palette.end(),
                       [](const cv::Vec3b& c) { return c[0] == c[1] && c[1] == c[2]; });
}

cv::Mat coloured(const cv::Mat& indices, const Palette& palette) {
    cv::Mat image(indices.size(), CV_8UC3);
    for (int y = 0; y < indices.rows; ++y)
        std::transform(indices.ptr(y), indices.ptr(y) + indices.cols, image.ptr<cv::Vec3b>(y),
                       [&](std::uint8_t index) { return palette[index]; });
    return image;
}

/// Pixels per µm, by the plain tags; the side of a pixel in µm.
std::optional<double> plainSize(TIFF* tiff, std::uint32_t tag) {
    float resolution = 0;
    const auto unit = field<std::uint16_t>(tiff, TIFFTAG_RESOLUTIONUNIT);
    if (!TIFFGetField(tiff, tag, &resolution) || !(resolution > 0) ||
        (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER))
        return {};
    return plainPixelSize((unit == RESUNIT_INCH ? 25400 : 10000) / double{resolution});
}

} // namespace

bool TiffReader::recognises(const QByteArray& start) {
    const QByteArray mark = start.left(4);
    return mark == QByteArray("II*\0", 4) || mark == QByteArray("MM\0*", 4) ||
           mark == QByteArray("II+\0", 4) || mark == QByteArray("MM\0+", 4);
}

TiffReader::TiffReader(std::unique_ptr<QFile> opened) : PageReader(std::move(opened)) {
    const auto refuse = [&](const QString& reason) {
        throw Reason(QStringLiteral("page %1 %2").arg(pages_.size() + 1).arg(reason));
    };
    const auto fileBytes = file().size();
    tiff_ = openTiff(file(), "r", plausibleBytes(fileBytes));
    if (!tiff_)
        refuse(QString::fromStdString(cut));
    TIFF* const tiff = tiff_.get();
    for (;;) {
        const QString reason = objection(tiff);
        if (!reason.isEmpty())
            refuse(reason);
        if (!isWhole(tiff, static_cast<std::uint64_t>(fileBytes)))
            refuse(QString::fromStdString(cut));
        pages_.push_back(
            {TIFFCurrentDirOffset(tiff), 0, Layout(tiff).components(), Layout(tiff).valueType()});
        if (TIFFLastDirectory(tiff))
            break;
        if (!TIFFReadDirectory(tiff))
            refuse(QString::fromStdString(cut));
    }
    if (pages_.size() == 1)
        findHiddenPages();
}

void TiffReader::findHiddenPages() {
    TIFF* const tiff = tiff_.get();
    TiffDirectory directory(file(), pages_[0].directory);
    stk_ = stkPlanes(directory);
    const int count = stk_ ? stk_->count : imagesOfImageJ(descriptionOf(tiff));
    if (count <= 1)
        return;
    const std::uint64_t bytes = bytesInOnePiece(tiff);
    const std::uint64_t first = TIFFGetStrileOffset(tiff, 0);
    const std::uint64_t end = pages_[0].directory > first
                                  ? pages_[0].directory // which is no pixels
                                  : static_cast<std::uint64_t>(file().size());
    const bool isHere = bytes > 0 && first > 0 && first <= end && count <= mostPlanes &&
                        (end - first) / bytes >= static_cast<std::uint64_t>(count);
    if (!isHere)
        throw Reason(
            QStringLiteral("says that it has %1 pages, but only 1 can be reached").arg(count));
    const Page page = pages_[0];
    for (int i = 1; i < count; ++i)
        pages_.push_back({page.directory, first + bytes * static_cast<std::uint64_t>(i),
                          page.components, page.type});
}

const TiffReader::Page& TiffReader::open(int index) {
    const Page& page = pages_.at(static_cast<std::size_t>(index));
    if (!TIFFSetSubDirectory(tiff_.get(), page.directory))
        throw Reason(cut);
    return page;
}

cv::Mat TiffReader::newPlane(int type) const {
    return newImage(field<std::uint32_t>(tiff_.get(), TIFFTAG_IMAGEWIDTH),
                    field<std::uint32_t>(tiff_.get(), TIFFTAG_IMAGELENGTH), type);
}

cv::Mat TiffReader::read(int index) {
    const Page page = open(index);
    const Layout layout(tiff_.get());
    if (layout.isGray() || layout.isPalette()) {
        if (page.components > 1)
            throw Reason(QStringLiteral("page %1 has %2 channels; choose one")
                             .arg(index + 1)
                             .arg(page.components));
        cv::Mat plane = readPlane(index, 0);
        if (!layout.isPalette())
            return plane;
        const Palette palette = paletteOf(tiff_.get(), layout.bits);
        return isGray(palette) ? plane : coloured(plane, palette);
    }
    const auto orientation = field<std::uint16_t>(tiff_.get(), TIFFTAG_ORIENTATION);
    cv::Mat image = newPlane(CV_MAKETYPE(layout.depth(), 3));
    if (layout.isConverted())
        convertPieces(image);
    else
        readPieces(image, page, 0);
    return oriented(image, orientation);
}

cv::Mat TiffReader::readPlane(int index, int component) {
    const Page page = open(index);
    const Layout layout(tiff_.get());
    if (!layout.isGray() && !layout.isPalette())
        return PageReader::readPlane(index, component);
    if (component == PlaneAddress::whole && page.components > 1)
        throw Reason(QStringLiteral("page %1 has %2 channels; choose one")
                         .arg(index + 1)
                         .arg(page.components));
    if (component >= page.components)
        throw Reason(QStringLiteral("page %1 has no channel %2; it has %3")
                         .arg(index + 1)
                         .arg(component + 1)
                         .arg(page.components));
    cv::Mat plane = newPlane(CV_MAKETYPE(layout.depth(), 1));
    readPieces(plane, page, static_cast<std::size_t>(std::max(component, 0)));
    if (layout.isInverted())
        invert(layout, plane);
    if (layout.isPalette()) {
        const Palette palette = paletteOf(tiff_.get(), layout.bits);
        if (isGray(palette))
            cv::extractChannel(coloured(plane, palette), plane, 0);
    }
    return oriented(plane, field<std::uint16_t>(tiff_.get(), TIFFTAG_ORIENTATION));
}

std::unique_ptr<PlaneRows> TiffReader::rows(int index, int component) {
    const Page page = open(index);
    TIFF* const tiff = tiff_.get();
    const Layout layout(tiff);
    const bool isPlain = layout.isGray() && layout.hasIntegers() &&
                         field<std::uint16_t>(tiff, TIFFTAG_ORIENTATION) == ORIENTATION_TOPLEFT &&
                         (component != PlaneAddress::whole || page.components == 1) &&
                         component < page.components;
    if (!isPlain)
        return {};
    const cv::Size size = checkedSize(field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH),
                                      field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH),
                                      CV_MAKETYPE(layout.depth(), 1));
    const bool isInOnePiece = page.rawOffset == 0 && bytesInOnePiece(tiff) > 0;
    const Pieces pieces(tiff, file(), isInOnePiece ? TIFFGetStrileOffset(tiff, 0) : page.rawOffset);
    constexpr std::uint64_t littleMemory = 64 << 20;
    if (pieces.bytes() <= 0 || pieces.height > littleMemory / pieces.rowBytes)
        return {};
    return std::make_unique<TiffRows>(size, pieces, layout,
                                      static_cast<std::size_t>(std::max(component, 0)));
}

FileDescription TiffReader::describe() {
    open(0);
    FileDescription description = describeByText();
    TIFF* const tiff = tiff_.get();
    FileMetadata& metadata = description.metadata;
    if (!metadata.pixelSizeX && !metadata.pixelSizeY) {
        metadata.pixelSizeX = plainSize(tiff, TIFFTAG_XRESOLUTION);
        metadata.pixelSizeY = plainSize(tiff, TIFFTAG_YRESOLUTION);
    }
    const Layout layout(tiff);
    if (layout.isPalette() && description.axes.channels == 1 && metadata.channels[0].lut.empty()) {
        const Palette palette = paletteOf(tiff, layout.bits);
        if (!isGray(palette))
            for (const cv::Vec3b& colour : palette)
                metadata.channels[0].lut.push_back(static_cast<std::uint32_t>(colour[2]) << 16 |
                                                   static_cast<std::uint32_t>(colour[1]) << 8 |
                                                   colour[0]);
    }
    return description;
}

FileDescription TiffReader::describeByText() {
    if (stk_)
        return describeStk(*stk_);
    TIFF* const tiff = tiff_.get();
    const QByteArray text = descriptionOf(tiff);
    const char* source = isOmeXml(text) ? "OME-XML" : "ImageJ description";
    try {
        if (isOmeXml(text)) {
            const Layout layout(tiff);
            const bool isColoured = !layout.isGray() && !layout.isPalette();
            return describeOme(text, {QFileInfo(file()).fileName(), pages(),
                                      isColoured ? 3 : layout.components(), isColoured});
        }
        if (isImageJ(text) && components(0) == 1) {
            float x = 0, y = 0;
            TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x);
            TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y);
            return describeImageJ(text, pages(), double{x}, double{y}, imageJTags());
        }
    } catch (const Reason& reason) {
        FileDescription description = pagesAsSlices();
        description.metadata.warnings.push_back(
            QStringLiteral("its %1 is not used, and its pages are taken as they are: %2")
                .arg(QLatin1String(source), QString::fromUtf8(reason.what())));
        return description;
    }
    return pagesAsSlices();
}

ImageJTags TiffReader::imageJTags() {
    constexpr std::uint16_t countsTag = 50838, bytesTag = 50839, longType = 4;
    TiffDirectory directory(file(), pages_[0].directory);
    const auto counts = directory.find(countsTag), bytes = directory.find(bytesTag);
    if (!counts || !bytes || counts->type != longType)
        return {};
    return {directory.numbers(counts->offset, counts->count),
            directory.bytes(bytes->offset, bytes->count), directory.isBigEndian()};
}

void TiffReader::readPieces(cv::Mat& image, const Page& page, std::size_t component) {
    const Pieces pieces(tiff_.get(), file(), page.rawOffset);
    const auto bytes = pieces.bytes();
    if (bytes <= 0 || static_cast<std::uint64_t>(bytes) > plausibleBytes(file().size()))
        throw Reason(cut);
    readInto(pieces, Layout(tiff_.get()), component, image);
}

void TiffReader::convertPieces(cv::Mat& image) {
    // libtiff would mirror each piece in itself; the image is turned as a whole afterwards.
    TIFFSetField(tiff_.get(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    const Pieces pieces(tiff_.get(), file(), 0);
    const std::uint64_t pixels = std::uint64_t{pieces.width} * pieces.height;
    if (pixels > plausibleBytes(file().size()) / sizeof(std::uint32_t))
        throw Reason(cut);
    const std::unique_ptr<std::uint32_t[]> colours(new std::uint32_t[pixels]);
    pieces.forEach(image.size(), [&](cv::Rect part) {
        if (!pieces.convert(static_cast<std::uint32_t>(part.x), static_cast<std::uint32_t>(part.y),
                            colours.get()))
            throw Reason(cut);
        const std::size_t rows =
            pieces.isTiled ? pieces.height : static_cast<std::size_t>(part.height);
        cv::Mat target = image(part);
        for (int y = 0; y < part.height; ++y) {
            const std::uint32_t* in =
                colours.get() + (rows - 1 - static_cast<std::size_t>(y)) * pieces.width;
            std::uint8_t* out = target.ptr(y);
            for (int x = 0; x < part.width; ++x, ++in, out += 3) {
                out[0] = static_cast<std::uint8_t>(TIFFGetB(*in));
                out[1] = static_cast<std::uint8_t>(TIFFGetG(*in));
                out[2] = static_cast<std::uint8_t>(TIFFGetR(*in));
            }
        }
    });
}

} // namespace lumetra
