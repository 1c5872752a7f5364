// lumetra info: what image files hold.

#include "apps/cli/commands.h"
#include "apps/cli/options.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/messages.h"
#include "imageio/image_file.h"
#include "render/histogram.h"
#include "render/render_error.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace lumetra {
namespace {

constexpr double percents[] = {0.1, 1, 50, 99, 99.9};

/// What a file holds, over all its pages.
struct FileInfo {
    QString file;
    int pages = 0;
    cv::Mat lastPage;
    bool sizesDiffer = false;
    Histogram histogram;
};

FileInfo measure(const QString& text) {
    const ChannelFile named = parseFile(text);
    const ImageFile stack(named.file);
    FileInfo info{text, stack.pages(), {}, false, {}};
    const int first = named.page > 0 ? named.page : 1;
    const int last = named.page > 0 ? named.page : stack.pages();
    for (int number = first; number <= last; ++number) {
        throwIfInterrupted();
        const cv::Mat page = stack.page(number);
        info.sizesDiffer |= number > first && page.size() != info.lastPage.size();
        try {
            info.histogram.add(page.reshape(1));
        } catch (const RenderError&) {
            throw Error(
                QStringLiteral("%1: page %2 has a different bit depth than the pages before it")
                    .arg(text)
                    .arg(number));
        }
        info.lastPage = page;
    }
    return info;
}

QString line(const FileInfo& info) {
    const ContrastLimits range = info.histogram.range();
    QString text =
        QStringLiteral("%1: %2 page%3 of %4%5 pixels, %6 bits, %7, pixel values %8 to %9")
            .arg(escaped(info.file))
            .arg(info.pages)
            .arg(info.pages == 1 ? QString() : QStringLiteral("s"))
            .arg(info.sizesDiffer ? QStringLiteral("various sizes, the last ") : QString())
            .arg(sizeText(info.lastPage))
            .arg(info.histogram.bitDepth())
            .arg(info.lastPage.channels() == 1 ? QStringLiteral("gray") : QStringLiteral("RGB"))
            .arg(range.low)
            .arg(range.high);
    for (const double percent : percents)
        text +=
            QStringLiteral(", %1 % up to %2").arg(percent).arg(info.histogram.percentile(percent));
    return text + QLatin1Char('\n');
}

QJsonObject toJson(const FileInfo& info) {
    const ContrastLimits range = info.histogram.range();
    QJsonObject percentiles;
    for (const double percent : percents)
        percentiles[QString::number(percent)] = info.histogram.percentile(percent);
    return {{"file", info.file},
            {"pages", info.pages},
            {"width", info.lastPage.cols},
            {"height", info.lastPage.rows},
            {"bits", info.histogram.bitDepth()},
            {"channels", info.lastPage.channels()},
            {"range", QJsonArray{range.low, range.high}},
            {"percentiles", percentiles}};
}

} // namespace

int runInfo(const InfoOptions& options) {
    QJsonArray list;
    int status = done;
    for (const QString& file : options.files) {
        try {
            const FileInfo info = measure(file);
            if (options.json)
                list << toJson(info);
            else
                print(line(info));
        } catch (const Interrupted&) {
            throw;
        } catch (...) {
            printError(currentExceptionText());
            status = failed;
        }
    }
    if (options.json)
        print(QString::fromUtf8(QJsonDocument(list).toJson()));
    return status;
}

} // namespace lumetra
