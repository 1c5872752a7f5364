// lumetra info: what picture files hold.

#include "apps/common/failure.h"
#include "apps/common/histogram.h"
#include "apps/common/messages.h"
#include "apps/common/stack.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/options.h"
#include "apps/lumetra/signals.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace apps {
namespace {

struct InfoOptions {
    std::vector<std::string> files;
    bool json = false;
};

constexpr double percents[] = {0.1, 1, 50, 99, 99.9};

/// What a file holds, over all its pages.
struct FileInfo {
    QString file;
    int pages = 0;
    cv::Mat lastPage;
    bool sizesDiffer = false;
    Histogram histogram;
};

FileInfo measure(const QString& words) {
    const ChannelFile named = parseFile(words);
    const Stack stack(named.file);
    FileInfo info{words, stack.pages(), {}, false, {}};
    const int first = named.page > 0 ? named.page : 1;
    const int last = named.page > 0 ? named.page : stack.pages();
    for (int number = first; number <= last; ++number) {
        throwIfInterrupted();
        const cv::Mat page = stack.page(number);
        info.sizesDiffer |= number > first && page.size() != info.lastPage.size();
        try {
            info.histogram.add(page.reshape(1));
        } catch (const Failure&) {
            throw Failure(QStringLiteral("%1: page %2 has another depth than the pages before it")
                              .arg(shown(words))
                              .arg(number));
        }
        info.lastPage = page;
    }
    return info;
}

QString line(const FileInfo& info) {
    const LevelRange range = info.histogram.range();
    QString text =
        QStringLiteral("%1: %2 page%3 of %4%5 pixels, %6 bits, %7, samples %8 to %9")
            .arg(shown(info.file))
            .arg(info.pages)
            .arg(info.pages == 1 ? QString() : QStringLiteral("s"))
            .arg(info.sizesDiffer ? QStringLiteral("various sizes, the last ") : QString())
            .arg(sizeText(info.lastPage))
            .arg(info.histogram.bits())
            .arg(info.lastPage.channels() == 1 ? QStringLiteral("gray") : QStringLiteral("colour"))
            .arg(range.low)
            .arg(range.high);
    for (const double percent : percents)
        text +=
            QStringLiteral(", %1 % up to %2").arg(percent).arg(info.histogram.percentile(percent));
    return text + QLatin1Char('\n');
}

QJsonObject toJson(const FileInfo& info) {
    const LevelRange range = info.histogram.range();
    QJsonObject percentiles;
    for (const double percent : percents)
        percentiles[QString::number(percent)] = info.histogram.percentile(percent);
    return {{"file", info.file},
            {"pages", info.pages},
            {"width", info.lastPage.cols},
            {"height", info.lastPage.rows},
            {"bits", info.histogram.bits()},
            {"channels", info.lastPage.channels()},
            {"range", QJsonArray{range.low, range.high}},
            {"percentiles", percentiles}};
}

int showInfo(const InfoOptions& options) {
    QJsonArray list;
    int status = done;
    for (const std::string& file : options.files) {
        try {
            const FileInfo info = measure(text(file));
            if (options.json)
                list << toJson(info);
            else
                print(line(info));
        } catch (const Interrupted&) {
            throw;
        } catch (...) {
            tell(QStringLiteral("lumetra: %1\n").arg(currentReason()));
            status = failed;
        }
    }
    if (options.json)
        print(QString::fromUtf8(QJsonDocument(list).toJson()));
    return status;
}

} // namespace

void addInfoCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<InfoOptions>();
    CLI::App& command = *program.add_subcommand(
        "info", "Says what picture files hold: pages, size, depth, range and percentiles");
    command.add_option("FILE", options->files, "Picture files, or FILE[PAGE] for one page of many")
        ->type_name("...")
        ->required();
    command.add_flag("--json", options->json, "Writes JSON");
    command.footer("example: lumetra info nuclei.tif actin.tif");
    command.callback([&action, options] { action = [options] { return showInfo(*options); }; });
}

} // namespace apps
