#include "imageio/tiff_reader.h"

#include "imageio/orientation.h"
#include "imageio/reason.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <array>
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
        : channels(field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL)),
          bits(field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE)),
          format(field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT)) {
        hasPhotometric = TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) != 0;
        std::uint16_t extras = 0;
        const std::uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
        hasLooseAlpha = extras > 0 && kinds && kinds[0] == EXTRASAMPLE_UNASSALPHA;
    }

    bool isGray() const { return photometric == PHOTOMETRIC_MINISBLACK; }
    bool isRgb() const { return photometric == PHOTOMETRIC_RGB; }
    bool isPalette() const { return photometric == PHOTOMETRIC_PALETTE && bits == 8; }

    /// Whether libtiff turns the page into RGB. That multiplies 8-bit colours by an alpha channel
    /// that they have not been multiplied by before.
    bool isConverted() const {
        return bits == 8 && !isGray() && !isPalette() && (!isRgb() || hasLooseAlpha);
    }
    /// What the page is read into before a palette is applied.
    int type() const {
        return CV_MAKETYPE(bits == 8 ? CV_8U : CV_16U, isGray() || isPalette() ? 1 : 3);
    }

    std::uint16_t channels, bits, format, photometric = 0;
    bool hasPhotometric, hasLooseAlpha;
};

/// Why the page cannot be taken as it is; empty if it can.
QString objection(TIFF* tiff) {
    const Layout layout(tiff);
    if (layout.channels == 2)
        return QStringLiteral("has two values per pixel, which is not supported");
    if (layout.bits != 8 && layout.bits != 16)
        return QStringLiteral("has a bit depth of %1; 8 and 16 are supported").arg(layout.bits);
    if (layout.format != SAMPLEFORMAT_UINT && layout.format != SAMPLEFORMAT_VOID)
        return QStringLiteral("has pixel values that are not unsigned integers");
    if (!layout.hasPhotometric)
        return QStringLiteral("does not say what its pixel values mean "
                              "(PhotometricInterpretation)");
    if (layout.photometric == PHOTOMETRIC_MINISWHITE)
        return QStringLiteral("is stored inverted (WhiteIsZero), which is not supported");
    if ((layout.isGray() || layout.isPalette()) && layout.channels > 1)
        return QStringLiteral("is %1 with %2 values per pixel, which is not supported")
            .arg(QLatin1String(layout.isGray() ? "gray" : "a palette image"))
            .arg(layout.channels);
    if (layout.isRgb() && layout.channels < 3)
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

/// The pages that an ImageJ stack says it has; 0 if it says nothing.
int statedPages(TIFF* tiff) {
    const char* description = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &description) || !description)
        return 0;
    const QByteArray text(description), key("images=");
    if (!text.startsWith("ImageJ="))
        return 0;
    for (const QByteArray& line : text.split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).toInt();
    return 0;
}

/// The strips or tiles of a page: strips are tiles as wide as the image.
struct Pieces {
    explicit Pieces(TIFF* open) : tiff(open), isTiled(TIFFIsTiled(open) != 0) {
        const auto imageWidth = field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH);
        const auto imageHeight = field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH);
        width = isTiled ? field<std::uint32_t>(tiff, TIFFTAG_TILEWIDTH) : imageWidth;
        height = isTiled ? field<std::uint32_t>(tiff, TIFFTAG_TILELENGTH)
                         : std::min(field<std::uint32_t>(tiff, TIFFTAG_ROWSPERSTRIP), imageHeight);
        if (width == 0 || height == 0)
            throw Reason("is damaged");
    }

    tmsize_t bytes() const { return isTiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff); }

    /// Decodes the piece that begins at this pixel.
    bool read(std::uint32_t x, std::uint32_t y, std::uint16_t plane, void* out,
              tmsize_t size) const {
        return isTiled
                   ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, plane), out, size) ==
                         size
                   : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), out, size) >= 0;
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
    bool isTiled;
    std::uint32_t width = 0, height = 0;
};

/// Copies one value of each pixel of a row.
template<class Value>
void copyChannel(const Value* in, std::size_t inStep, Value* out, std::size_t outStep,
                 std::size_t pixels) {
    if (inStep == 1 && outStep == 1) {
        std::copy_n(in, pixels, out);
        return;
    }
    for (std::size_t i = 0; i < pixels; ++i)
        out[i * outStep] = in[i * inStep];
}

template<class Value>
void readAs(const Pieces& pieces, std::size_t stored, bool isPlanar, cv::Mat& image) {
    const auto channels = static_cast<std::size_t>(image.channels());
    const std::size_t step = isPlanar ? 1 : stored; // from pixel to pixel, in values
    const std::size_t together = isPlanar ? 1 : channels;
    const auto bytes = static_cast<std::size_t>(pieces.bytes());
    const std::size_t rowValues = pieces.width * step;
    if (pieces.height > bytes / sizeof(Value) / rowValues)
        throw Reason(cut);
    const std::unique_ptr<Value[]> values(new Value[bytes / sizeof(Value)]);
    pieces.forEach(image.size(), [&](cv::Rect part) {
        cv::Mat target = image(part);
        for (std::size_t plane = 0; plane < channels; plane += together) {
            // The last strip may be lower than the others.
            const std::size_t needed =
                pieces.isTiled ? bytes
                               : static_cast<std::size_t>(part.height) * rowValues * sizeof(Value);
            if (!pieces.read(static_cast<std::uint32_t>(part.x), static_cast<std::uint32_t>(part.y),
                             static_cast<std::uint16_t>(plane), values.get(),
                             static_cast<tmsize_t>(needed)))
                throw Reason(cut);
            for (int y = 0; y < part.height; ++y)
                for (std::size_t c = plane; c < plane + together; ++c)
                    copyChannel(values.get() + static_cast<std::size_t>(y) * rowValues +
                                    (isPlanar ? 0 : c),
                                step, target.ptr<Value>(y) + (channels - 1 - c), channels,
                                static_cast<std::size_t>(part.width));
        }
    });
}

/// The colours that indices stand for.
cv::Mat coloured(const cv::Mat& indices, TIFF* tiff) {
    constexpr std::size_t colours = 256;
    std::array<const std::uint16_t*, 3> map{}; // of red, green, blue
    if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, map.data(), &map[1], &map[2]))
        throw Reason("has no palette");
    // Its values have 16 bits, but some programs write 8.
    const bool isNarrow = std::all_of(map.begin(), map.end(), [](const std::uint16_t* values) {
        return std::all_of(values, values + colours, [](std::uint16_t v) { return v < 256; });
    });
    std::array<cv::Vec3b, colours> palette{};
    for (std::size_t i = 0; i < colours; ++i)
        for (int c = 0; c < 3; ++c)
            palette[i][2 - c] = static_cast<std::uint8_t>(map[static_cast<std::size_t>(c)][i] /
                                                          (isNarrow ? 1 : 256));
    cv::Mat image(indices.size(), CV_8UC3);
    for (int y = 0; y < indices.rows; ++y)
        std::transform(indices.ptr(y), indices.ptr(y) + indices.cols, image.ptr<cv::Vec3b>(y),
                       [&](std::uint8_t index) { return palette[index]; });
    return image;
}

} // namespace

bool TiffReader::recognises(const QByteArray& start) {
    const QByteArray mark = start.left(4);
    return mark == QByteArray("II*\0", 4) || mark == QByteArray("MM\0*", 4) ||
           mark == QByteArray("II+\0", 4) || mark == QByteArray("MM\0+", 4);
}

TiffReader::TiffReader(std::unique_ptr<QFile> opened) : PageReader(std::move(opened)) {
    const auto refuse = [&](const QString& reason) {
        throw Reason(QStringLiteral("page %1 %2").arg(directories_.size() + 1).arg(reason));
    };
    const auto fileBytes = file().size();
    tiff_ = openTiff(file(), "r", plausibleBytes(fileBytes));
    if (!tiff_)
        refuse(QString::fromStdString(cut));
    const int stated = statedPages(tiff_.get());
    for (;;) {
        const QString reason = objection(tiff_.get());
        if (!reason.isEmpty())
            refuse(reason);
        if (!isWhole(tiff_.get(), static_cast<std::uint64_t>(fileBytes)))
            refuse(QString::fromStdString(cut));
        directories_.push_back(TIFFCurrentDirOffset(tiff_.get()));
        if (TIFFLastDirectory(tiff_.get()))
            break;
        if (!TIFFReadDirectory(tiff_.get()))
            refuse(QString::fromStdString(cut));
    }
    const int found = static_cast<int>(directories_.size());
    if (stated > 1 && stated != found)
        throw Reason(QStringLiteral("says that it has %1 pages, but only %2 can be reached")
                         .arg(stated)
                         .arg(found));
}

cv::Mat TiffReader::read(int index) {
    TIFF* const tiff = tiff_.get();
    if (!TIFFSetSubDirectory(tiff, directories_.at(static_cast<std::size_t>(index))))
        throw Reason(cut);
    const Layout layout(tiff);
    cv::Mat image = newImage(field<std::uint32_t>(tiff, TIFFTAG_IMAGEWIDTH),
                             field<std::uint32_t>(tiff, TIFFTAG_IMAGELENGTH), layout.type());
    const auto orientation = field<std::uint16_t>(tiff, TIFFTAG_ORIENTATION);
    if (layout.isConverted())
        convertPieces(image);
    else
        readPieces(image);
    if (layout.isPalette())
        image = coloured(image, tiff);
    return oriented(image, orientation);
}

void TiffReader::readPieces(cv::Mat& image) {
    const Pieces pieces(tiff_.get());
    const auto bytes = pieces.bytes();
    if (bytes <= 0 || static_cast<std::uint64_t>(bytes) > plausibleBytes(file().size()))
        throw Reason(cut);
    const std::size_t stored = Layout(tiff_.get()).channels;
    const bool isPlanar =
        field<std::uint16_t>(tiff_.get(), TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    if (image.depth() == CV_8U)
        readAs<std::uint8_t>(pieces, stored, isPlanar, image);
    else
        readAs<std::uint16_t>(pieces, stored, isPlanar, image);
}

void TiffReader::convertPieces(cv::Mat& image) {
    // libtiff would mirror each piece in itself; the image is turned as a whole afterwards.
    TIFFSetField(tiff_.get(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    const Pieces pieces(tiff_.get());
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
