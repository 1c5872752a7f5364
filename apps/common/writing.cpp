#include "apps/common/writing.h"

#include "apps/common/failure.h"

#include <opencv2/imgcodecs.hpp>

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

namespace apps {
namespace {

const QString standardOutput = QStringLiteral("-");
constexpr auto inputReason = "is an input, too; give the output another name";
const QString noFile = QStringLiteral("is not a file that could be replaced");

/// Where a name leads, through links.
QString target(const QString& file) {
    const QFileInfo info(file);
    if (!info.isSymLink())
        return file;
    return info.exists() ? info.canonicalFilePath() : info.symLinkTarget();
}

QString partFile(const QString& file) {
    const QFileInfo info(target(file));
    return info.dir().filePath(QStringLiteral(".%1.part").arg(info.fileName()));
}

/// Whether the name is taken by a folder, a device or a pipe.
bool isNoFile(const QString& file) {
    const QFileInfo info(file);
    return info.exists() && !info.isFile();
}

void writeToStandardOutput(const char* bytes, std::size_t count) {
    while (count > 0) {
        const auto written = ::write(STDOUT_FILENO, bytes, count);
        if (written < 0 && errno != EINTR)
            throw Failure(QStringLiteral("the standard output: %1")
                              .arg(QString::fromLocal8Bit(std::strerror(errno))));
        const auto step = static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        bytes += step;
        count -= step;
    }
}

void requireFitForTiff(const cv::Mat& page) {
    CV_Assert(page.channels() == 1 || page.channels() == 3);
    CV_Assert(page.depth() == CV_8U || page.depth() == CV_16U);
}

/// A row as TIFF stores it: red before green before blue.
template<class Sample>
void copyRow(const cv::Mat& page, int y, std::vector<unsigned char>& bytes) {
    const auto* in = page.ptr<Sample>(y);
    auto* out = reinterpret_cast<Sample*>(bytes.data());
    if (page.channels() == 1) {
        std::copy_n(in, page.cols, out);
        return;
    }
    for (int x = 0; x < page.cols; ++x) {
        out[3 * x] = in[3 * x + 2];
        out[3 * x + 1] = in[3 * x + 1];
        out[3 * x + 2] = in[3 * x];
    }
}

} // namespace

QString placeOf(const QString& file) {
    const QFileInfo info(QDir::cleanPath(QFileInfo(file).absoluteFilePath()));
    if (info.isRoot() || info.path() == info.filePath()) // the latter of no name at all
        return info.filePath();
    const QString folder = QFileInfo(info.path()).canonicalFilePath();
    return QDir(folder.isEmpty() ? placeOf(info.path()) : folder).filePath(info.fileName());
}

QString identityOf(const QString& file) {
    struct stat status = {};
    if (stat(QFile::encodeName(file).constData(), &status) != 0)
        return placeOf(file);
    return QStringLiteral("%1:%2").arg(status.st_dev).arg(status.st_ino);
}

void keepApart(const QStringList& written, const QStringList& read) {
    const auto refuse = [](const QString& file, const char* reason) {
        throw Failure(QStringLiteral("%1: %2").arg(shown(file), QLatin1String(reason)));
    };
    const auto isMeant = [](const QString& file) {
        return !file.isEmpty() && file != standardOutput && !isNoFile(file);
    };
    QSet<QString> inputs, outputs;
    for (const QString& file : read)
        if (isMeant(file))
            inputs << identityOf(file);
    for (const QString& file : written) {
        if (!isMeant(file))
            continue;
        const QString identity = identityOf(file);
        if (inputs.contains(identity))
            refuse(file, inputReason);
        if (outputs.contains(identity))
            refuse(file, "is to be written twice; give the outputs different names");
        outputs << identity;
    }
}

Format formatOf(const QString& file) {
    const QString extension = QFileInfo(file).suffix().toLower();
    if (file == standardOutput || extension == QLatin1String("png"))
        return Format::png;
    if (extension == QLatin1String("tif") || extension == QLatin1String("tiff"))
        return Format::tiff;
    if (extension == QLatin1String("jpg") || extension == QLatin1String("jpeg"))
        return Format::jpeg;
    throw Failure(QStringLiteral("%1: pictures are written as .png, .tif, .tiff, .jpg or .jpeg")
                      .arg(shown(file)));
}

void checkOutput(const QString& output, const QStringList& inputs, bool overwrite) {
    if (output == standardOutput)
        return;
    const auto refuse = [&](const QString& reason) {
        throw Failure(QStringLiteral("%1: %2").arg(shown(output), reason));
    };
    keepApart({output}, inputs);
    if (isNoFile(output))
        refuse(noFile);
    if (QFileInfo::exists(output) && !overwrite)
        refuse(QStringLiteral("is there already; --overwrite replaces it"));
}

WholeFile::WholeFile(const QString& file) : file_(file), device_(partFile(file)) {
    if (isNoFile(file)) // another one in its place would be the end of a device
        fail(noFile);
    if (!device_.open(QIODevice::WriteOnly))
        fail(device_.errorString());
}

void WholeFile::fail(const QString& reason) const {
    throw Failure(QStringLiteral("%1: cannot be written: %2").arg(shown(file_), reason));
}

void WholeFile::write(const char* bytes, qint64 count) {
    while (count > 0) { // what a disk has no more room for is told by the write after it only
        const qint64 written = device_.write(bytes, count);
        if (written <= 0)
            fail(device_.errorString());
        bytes += written;
        count -= written;
    }
    if (!device_.flush())
        fail(device_.errorString());
}

void WholeFile::commit() {
    if (!device_.commit())
        fail(device_.errorString());
    const QByteArray part = QFile::encodeName(device_.fileName());
    if (std::rename(part.constData(), QFile::encodeName(target(file_)).constData()) != 0) {
        const int reason = errno;
        QFile::remove(device_.fileName());
        fail(QString::fromLocal8Bit(std::strerror(reason)));
    }
}

void removeLeftovers(const QStringList& files) {
    QMap<QString, QSet<QString>> partsOfDirectory; // each directory is listed once
    for (const QString& file : files) {
        const QFileInfo part(partFile(file));
        partsOfDirectory[part.path()] << part.fileName();
    }
    static const QRegularExpression suffix(QStringLiteral("\\.[A-Za-z]{6}$"));
    for (auto entry = partsOfDirectory.begin(); entry != partsOfDirectory.end(); ++entry) {
        QDir directory(entry.key());
        const auto names =
            directory.entryList({QStringLiteral(".*.part*")}, QDir::Files | QDir::Hidden);
        for (const QString& name : names)
            if (entry->contains(name) || entry->contains(QString(name).remove(suffix)))
                directory.remove(name);
    }
}

void writeBytes(const QString& file, const char* bytes, std::size_t count) {
    if (file == standardOutput)
        return writeToStandardOutput(bytes, count);
    WholeFile whole(file);
    whole.write(bytes, static_cast<qint64>(count));
    whole.commit();
}

void writePicture(const QString& file, const cv::Mat& picture) {
    const Format format = formatOf(file);
    if (format == Format::tiff) {
        StackWriter writer(file, picture.total() * picture.elemSize());
        writer.add(picture);
        return writer.commit();
    }
    const auto refuse = [&](const QString& reason) {
        throw Failure(QStringLiteral("%1: %2").arg(shown(file), reason));
    };
    if (format == Format::jpeg && picture.depth() != CV_8U)
        refuse(QStringLiteral("JPEG holds 8 bits only; choose levels, or another format"));
    if (format == Format::jpeg && std::max(picture.rows, picture.cols) > 65500)
        refuse(QStringLiteral("JPEG holds 65500 pixels a side only"));
    std::vector<unsigned char> encoded;
    bool done = false;
    try {
        done = cv::imencode(format == Format::png ? ".png" : ".jpg", picture, encoded);
    } catch (const std::exception&) {
        refuse(QStringLiteral("cannot be encoded: %1").arg(currentReason()));
    }
    if (!done || encoded.empty())
        refuse(QStringLiteral("cannot be encoded: the picture is too large"));
    writeBytes(file, reinterpret_cast<const char*>(encoded.data()), encoded.size());
}

struct StackWriter::Tiff {
    WholeFile file;
    TIFF* tiff = nullptr;
    std::vector<unsigned char> row;

    explicit Tiff(const QString& name) : file(name) {}

    void fail() const {
        file.fail(errno != 0 ? QString::fromLocal8Bit(std::strerror(errno))
                             : QStringLiteral("the pages are too large for a TIFF file"));
    }
    template<class Value>
    void set(std::uint32_t tag, Value value) {
        TIFFSetField(tiff, tag, value);
    }
    void describe(const cv::Mat& page);
};

StackWriter::StackWriter(const QString& file, std::uint64_t expectedBytes)
    : tiff_(std::make_unique<Tiff>(file)) {
    // Beyond four gigabytes the file needs the larger form; compression may not help.
    constexpr std::uint64_t smallForm = 4000000000;
    // It reads back what it has written of a file of many pages, so it works on the file itself.
    const int descriptor = dup(tiff_->file.device().handle());
    errno = 0;
    tiff_->tiff = TIFFFdOpen(descriptor, "picture", expectedBytes > smallForm ? "w8" : "w");
    if (!tiff_->tiff) {
        close(descriptor);
        tiff_->fail();
    }
}

StackWriter::~StackWriter() {
    if (tiff_->tiff)
        TIFFClose(tiff_->tiff);
}

void StackWriter::Tiff::describe(const cv::Mat& page) {
    const bool colour = page.channels() == 3;
    set(TIFFTAG_IMAGEWIDTH, page.cols);
    set(TIFFTAG_IMAGELENGTH, page.rows);
    set(TIFFTAG_SAMPLESPERPIXEL, page.channels());
    set(TIFFTAG_BITSPERSAMPLE, page.depth() == CV_8U ? 8 : 16);
    set(TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    set(TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    constexpr std::size_t pieceBytes = 1 << 18; // so that readers can take it piece by piece
    const auto rows = std::max<std::size_t>(1, pieceBytes / std::max<std::size_t>(1, row.size()));
    set(TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rows));
}

void StackWriter::add(const cv::Mat& page) {
    requireFitForTiff(page);
    errno = 0;
    tiff_->row.resize(static_cast<std::size_t>(page.cols) * page.elemSize());
    tiff_->describe(page);
    for (int y = 0; y < page.rows; ++y) {
        if (page.depth() == CV_8U)
            copyRow<unsigned char>(page, y, tiff_->row);
        else
            copyRow<unsigned short>(page, y, tiff_->row);
        if (TIFFWriteScanline(tiff_->tiff, tiff_->row.data(), static_cast<std::uint32_t>(y)) < 0)
            tiff_->fail();
    }
    if (!TIFFWriteDirectory(tiff_->tiff))
        tiff_->fail();
}

void StackWriter::commit() {
    errno = 0;
    const bool flushed = TIFFFlush(tiff_->tiff) != 0;
    if (!flushed)
        tiff_->fail();
    TIFFClose(std::exchange(tiff_->tiff, nullptr));
    tiff_->file.commit();
}

} // namespace apps
