#include "apps/common/tiff_facts.h"

#include "apps/common/failure.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdint>
#include <memory>

#include <tiffio.h>

namespace apps {
namespace {

struct Closer {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using OpenTiff = std::unique_ptr<TIFF, Closer>;

template<class Number>
Number field(TIFF* tiff, std::uint32_t tag) {
    Number value{};
    TIFFGetFieldDefaulted(tiff, tag, &value);
    return value;
}

/// Why the page cannot be taken as it is; empty if it can.
QString objection(TIFF* tiff) {
    const auto samples = field<std::uint16_t>(tiff, TIFFTAG_SAMPLESPERPIXEL);
    const auto bits = field<std::uint16_t>(tiff, TIFFTAG_BITSPERSAMPLE);
    const auto format = field<std::uint16_t>(tiff, TIFFTAG_SAMPLEFORMAT);
    if (samples == 2)
        return QStringLiteral("has two samples a pixel, of which only one could be read");
    if (bits != 8 && bits != 16)
        return QStringLiteral("has samples of %1 bits; 8 and 16 can be read").arg(bits);
    if (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_VOID)
        return QStringLiteral("has samples that are no unsigned integers");
    if (field<std::uint16_t>(tiff, TIFFTAG_PHOTOMETRIC) == PHOTOMETRIC_MINISWHITE)
        return QStringLiteral("shows zero as white; invert it first");
    return {};
}

/// Whether the file holds all samples of the page.
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
    static const QRegularExpression images(
        QStringLiteral("^ImageJ=[^\\n]*\\n(?:.*\\n)?images=(\\d+)"),
        QRegularExpression::DotMatchesEverythingOption);
    const char* description = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEDESCRIPTION, &description) || !description)
        return 0;
    return images.match(QString::fromLatin1(description)).captured(1).toInt();
}

} // namespace

bool isTiff(const QString& file) {
    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        return false;
    const QByteArray start = device.read(4);
    return start == QByteArray("II*\0", 4) || start == QByteArray("MM\0*", 4) ||
           start == QByteArray("II+\0", 4) || start == QByteArray("MM\0+", 4);
}

int checkedTiffPages(const QString& file) {
    const auto failure = [&](int page, const QString& reason) {
        return Failure(QStringLiteral("%1: page %2 %3").arg(shown(file)).arg(page).arg(reason));
    };
    const QString cut = QStringLiteral("is damaged, or the file was cut short");
    const auto fileBytes = static_cast<std::uint64_t>(QFileInfo(file).size());

    const OpenTiff tiff(TIFFOpen(QFile::encodeName(file).constData(), "rm"));
    if (!tiff)
        throw failure(1, cut);
    const int stated = statedPages(tiff.get());
    for (int page = 1;; ++page) {
        const QString reason = objection(tiff.get());
        if (!reason.isEmpty())
            throw failure(page, reason);
        if (!isWhole(tiff.get(), fileBytes))
            throw failure(page, cut);
        if (TIFFLastDirectory(tiff.get())) {
            if (stated > 1 && stated != page)
                throw Failure(QStringLiteral("%1: says that it has %2 pages, but only %3 can be "
                                             "reached")
                                  .arg(shown(file))
                                  .arg(stated)
                                  .arg(page));
            return page;
        }
        if (!TIFFReadDirectory(tiff.get()))
            throw failure(page + 1, cut);
    }
}

} // namespace apps
