#include "imageio/image_file.h"

#include "imageio/bmp_reader.h"
#include "imageio/file_description.h"
#include "imageio/gray_check.h"
#include "imageio/jpeg_reader.h"
#include "imageio/png_reader.h"
#include "imageio/pnm_reader.h"
#include "imageio/reason.h"
#include "imageio/tiff_reader.h"
#include "imageio/value_conversion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <utility>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace lumetra {
namespace {

struct Format {
    bool (*recognises)(const QByteArray& start);
    std::unique_ptr<PageReader> (*open)(std::unique_ptr<QFile> file);
};

template<class Reader>
constexpr Format formatOf() {
    return {Reader::recognises, [](std::unique_ptr<QFile> file) -> std::unique_ptr<PageReader> {
                return std::make_unique<Reader>(std::move(file));
            }};
}

constexpr std::array formats{formatOf<TiffReader>(), formatOf<PngReader>(), formatOf<JpegReader>(),
                             formatOf<BmpReader>(), formatOf<PnmReader>()};

#ifdef Q_OS_UNIX
/// Looks at the file once, which takes long on a disk that many share: what it is, the open file
/// tells. Without O_NONBLOCK a pipe would wait for somebody to write.
std::unique_ptr<QFile> openFile(const QString& file) {
    auto opened = std::make_unique<QFile>(file);
    const int handle = open(QFile::encodeName(file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0 && (errno == ENOENT || errno == ENOTDIR))
        throw Reason("there is no such file");
    if (handle < 0)
        throw Reason(errno == ENXIO ? QStringLiteral("is not a file") : qt_error_string(errno));
    struct stat status = {};
    const bool isFile = fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
    if (isFile && opened->open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return opened;
    close(handle);
    throw Reason(isFile ? opened->errorString() : QStringLiteral("is not a file"));
}
#else
std::unique_ptr<QFile> openFile(const QString& file) {
    const QFileInfo info(file);
    if (!info.exists())
        throw Reason("there is no such file");
    if (!info.isFile())
        throw Reason("is not a file");
    auto opened = std::make_unique<QFile>(file);
    if (!opened->open(QIODevice::ReadOnly))
        throw Reason(opened->errorString());
    return opened;
}
#endif

std::unique_ptr<PageReader> openReader(const QString& file) {
    auto opened = openFile(file);
    const QByteArray start = opened->peek(8);
    for (const Format& format : formats)
        if (format.recognises(start))
            return format.open(std::move(opened));
    throw Reason(start.isEmpty() ? "is empty" : "is not a TIFF, PNG, JPEG, BMP, PGM or PPM file");
}

/// @throws Reason unless an image has unsigned integers of up to 16 bits.
void requireIntegers(const cv::Mat& image, const std::optional<ValueType>& type) {
    if (needsConversion(image))
        throw Reason(QStringLiteral("is %1, and needs contrast limits")
                         .arg(type ? type->text() : QStringLiteral("of real numbers")));
}

/// Rows whose errors have the name of their file.
class NamedRows : public PlaneRows {
public:
    NamedRows(QString file, std::unique_ptr<PlaneRows> rows)
        : PlaneRows(rows->size(), rows->type()), file_(std::move(file)), rows_(std::move(rows)) {}

    void read(cv::Mat& rows) override {
        withFileName(file_, [&] { rows_->read(rows); });
    }

private:
    QString file_;
    std::unique_ptr<PlaneRows> rows_;
};

} // namespace

ImageFile::ImageFile(QString file) : file_(std::move(file)) {
    withFileName(file_, [this] {
        reader_ = openReader(file_);
        description_ = std::make_unique<FileDescription>(reader_->describe());
    });
}

ImageFile::~ImageFile() = default;
ImageFile::ImageFile(ImageFile&&) noexcept = default;
ImageFile& ImageFile::operator=(ImageFile&&) noexcept = default;

int ImageFile::pages() const { return reader_->pages(); }

const Axes& ImageFile::axes() const { return description_->axes; }

const FileMetadata& ImageFile::metadata() const { return description_->metadata; }

int ImageFile::indexOfPage(int number) const {
    if (number < 1 || number > pages())
        throw Reason(
            QStringLiteral("there is no page %1; the file has %2").arg(number).arg(pages()));
    return number - 1;
}

const PlaneAddress& ImageFile::addressOf(int channel, int slice, int frame) const {
    const auto check = [](const char* what, int number, int count) {
        if (number < 1 || number > count)
            throw Reason(QStringLiteral("there is no %1 %2; the file has %3")
                             .arg(QLatin1String(what))
                             .arg(number)
                             .arg(count));
    };
    check("channel", channel, axes().channels);
    check("z-slice", slice, axes().slices);
    check("time point", frame, axes().frames);
    return description_->planes[description_->indexOf(channel - 1, slice - 1, frame - 1)];
}

int ImageFile::pageOf(int channel, int slice, int frame) const {
    return withFileName(file_, [&] {
        const PlaneAddress& address = addressOf(channel, slice, frame);
        return address.file == 0 ? address.page + 1 : 0;
    });
}

PageReader& ImageFile::readerBeside(int number) const {
    if (otherNumber_ == number)
        return *other_;
    otherNumber_ = 0;
    const QString& name = description_->others[static_cast<std::size_t>(number) - 1];
    const QString path = QFileInfo(file_).dir().filePath(name);
    if (!QFileInfo(path).isFile())
        throw Reason(
            QStringLiteral("this plane is in the file %1, which is not beside it").arg(name));
    try {
        other_ = openReader(path);
    } catch (const Reason& reason) {
        throw Reason(QStringLiteral("this plane is in the file %1, which %2")
                         .arg(name, QString::fromUtf8(reason.what())));
    }
    otherNumber_ = number;
    return *other_;
}

cv::Mat ImageFile::plane(int channel, int slice, int frame) const {
    return withFileName(file_, [&] {
        const PlaneAddress& address = addressOf(channel, slice, frame);
        if (address.page == PlaneAddress::nowhere)
            throw Reason(QStringLiteral("holds no plane for channel %1, z-slice %2, time point %3")
                             .arg(channel)
                             .arg(slice)
                             .arg(frame));
        PageReader& reader = address.file == 0 ? *reader_ : readerBeside(address.file);
        if (address.page >= reader.pages())
            throw Reason(QStringLiteral("this plane is page %1 of a file that has %2")
                             .arg(address.page + 1)
                             .arg(reader.pages()));
        return reader.readPlane(address.page, address.component);
    });
}

/// As readers count it.
int ImageFile::componentOf(int index, int component) const {
    const int count = reader_->components(index);
    if (component < 1 || component > count)
        throw Reason(QStringLiteral("page %1 has no channel %2; it has %3")
                         .arg(index + 1)
                         .arg(component)
                         .arg(count));
    return count > 1 ? component - 1 : PlaneAddress::whole;
}

cv::Mat ImageFile::planeOfPage(int number, int component) const {
    return withFileName(file_, [&] {
        const int index = indexOfPage(number);
        return reader_->readPlane(index, componentOf(index, component));
    });
}

std::unique_ptr<PlaneRows> ImageFile::named(std::unique_ptr<PlaneRows> rows) const {
    if (!rows)
        return {};
    return std::make_unique<NamedRows>(file_, std::move(rows));
}

std::unique_ptr<PlaneRows> ImageFile::rows(int channel, int slice, int frame) const {
    return withFileName(file_, [&]() -> std::unique_ptr<PlaneRows> {
        const PlaneAddress& address = addressOf(channel, slice, frame);
        if (address.file != 0 || address.page < 0 || address.page >= reader_->pages())
            return {};
        return named(reader_->rows(address.page, address.component));
    });
}

std::unique_ptr<PlaneRows> ImageFile::rowsOfPage(int number, int component) const {
    return withFileName(file_, [&] {
        const int index = indexOfPage(number);
        return named(reader_->rows(index, componentOf(index, component)));
    });
}

int ImageFile::components(int number) const {
    return withFileName(file_, [&] { return reader_->components(indexOfPage(number)); });
}

std::optional<ValueType> ImageFile::valueType(int number) const {
    return withFileName(file_, [&] { return reader_->valueType(indexOfPage(number)); });
}

cv::Mat ImageFile::page(int number) const {
    return withFileName(file_, [&] {
        cv::Mat image = grayIfEqual(reader_->read(indexOfPage(number)));
        requireIntegers(image, reader_->valueType(number - 1));
        return image;
    });
}

cv::Mat ImageFile::grayPage(int number) const {
    return withFileName(file_, [&] {
        const int index = indexOfPage(number);
        if (const int count = reader_->components(index); count > 1)
            throw Reason(
                QStringLiteral("page %1 has %2 channels; choose one").arg(number).arg(count));
        cv::Mat plane = reader_->readPlane(index, PlaneAddress::whole);
        requireIntegers(plane, reader_->valueType(index));
        return plane;
    });
}

} // namespace lumetra
