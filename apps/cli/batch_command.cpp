// lumetra batch: an image of each field of a data set.

#include "apps/cli/commands.h"
#include "apps/cli/data_set_levels.h"
#include "apps/cli/fonts.h"
#include "apps/cli/merge_line.h"
#include "apps/cli/print.h"
#include "apps/cli/render_field.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"

#include <algorithm>
#include <atomic>
#include <memory>

namespace lumetra {
namespace {

/// A batch that is ready to run.
struct Batch {
    std::vector<Field> fields;
    RenderSpec rendering;
    DyeList builtInDyes; ///< What a command line can name without a file.
};

void say(const BatchOptions& options, const QString& line) {
    if (!options.image.output.quiet)
        printError(line);
}

Progress progressOf(const BatchOptions& options, const QString& work, const Batch& batch,
                    bool isLast) {
    return {work, static_cast<int>(batch.fields.size()), options.image.output.quiet,
            options.dataSet.progress, isLast};
}

/// Measures the contrast limits that all fields are to share.
void shareLevels(Batch& batch, const BatchOptions& options) {
    auto& channels = batch.rendering.channels;
    const bool isMeasured =
        std::any_of(channels.begin(), channels.end(),
                    [](const ChannelSpec& channel) { return channel.levels.isMeasured(); });
    if (options.levelsOver == QLatin1String("field") || !isMeasured)
        return;
    say(options, QStringLiteral("measuring shared contrast limits over all fields, so that images "
                                "can be compared (--levels-over dataset)"));
    Progress progress = progressOf(options, QStringLiteral("measuring"), batch, false);
    const DataSetLevels levels =
        measureLevels(batch.fields, batch.rendering.pages, options.dataSet.jobs, progress);
    for (std::size_t i = 0; i < channels.size() && levels.files > 0; ++i)
        if (channels[i].levels.isMeasured())
            channels[i].levels =
                LevelPolicy::fixedTo(*levelsOf(levels.histograms[i], channels[i].levels));
}

Batch prepare(const BatchOptions& options) {
    Batch batch;
    const DyeList dyes = dyesWith(options.channel.customDyes);
    const std::vector<Channel> channels =
        namedChannels(options.dataSet.channels, settingsOf(options.channel, dyes), dyes);
    batch.rendering = renderSpec(channels, options.image, options.channel);
    if (options.resume)
        batch.rendering.existing = Existing::replace;
    batch.fields = requestedFields(options.dataSet, channels);
    nameOutputs(batch.fields, options.image.output.file);
    for (const Field& field : batch.fields)
        static_cast<void>(outputFormat(field.job.output));
    if (batch.fields.empty())
        return batch;

    QStringList written{options.log, options.dataSet.progress};
    for (const Field& field : batch.fields)
        written << field.job.output;
    checkOutputConflicts(written, inputNames(batch.fields)
                                      << options.channel.settings << options.channel.customDyes
                                      << options.dataSet.filesFrom);
    say(options, fieldList(batch.fields));
    shareLevels(batch, options);
    batch.fields = shardOf(batch.fields, options.shard);
    if (!options.shard.isEmpty())
        say(options, QStringLiteral("of these, ") + fieldList(batch.fields));
    return batch;
}

/// Fields that cannot be rendered have no line that could log it.
void printLines(const Batch& batch, const BatchOptions& options) {
    BatchLog log(options.log, options.resume);
    QString lines;
    for (const Field& field : batch.fields) {
        const QJsonObject work = workOf(field, batch.rendering);
        if (!field.problem.isEmpty())
            log.addFailed(work, 0, field.problem);
        else if (!log.isDone(work))
            lines +=
                mergeLine(field, batch.rendering, options, batch.builtInDyes) + QLatin1Char('\n');
    }
    print(lines);
}

/// Renders a field, unless an earlier run has done it; false if so. Notes what is wrong with it.
bool makeField(Field& field, const RenderSpec& rendering, FileRenderer& renderer, BatchLog& log) {
    const QJsonObject work = workOf(field, rendering);
    if (field.problem.isEmpty() && log.isDone(work))
        return false;
    try {
        renderField(field, work, renderer, log);
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        field.problem = currentErrorText();
    }
    return true;
}

/// Returns how many fields were skipped, since earlier runs have done them.
int makeFields(Batch& batch, const BatchOptions& options) {
    std::atomic<int> skipped{0};
    BatchLog log(options.log, options.resume);
    Progress progress = progressOf(options, QStringLiteral("rendering"), batch, true);
    const auto makeWorker = [&] {
        return [&, renderer = std::make_shared<FileRenderer>(batch.rendering)](std::size_t i) {
            Field& field = batch.fields[i];
            if (!makeField(field, batch.rendering, *renderer, log))
                ++skipped;
            if (field.problem.isEmpty())
                progress.fieldDone();
            else
                progress.fieldFailed();
        };
    };
    runWorkers(options.dataSet.jobs, batch.fields.size(), makeWorker, [&] { progress.tick(); });
    return skipped;
}

} // namespace

int runBatch(const BatchOptions& options) {
    if (options.resume && options.log.isEmpty())
        throw UsageError(QStringLiteral("--resume needs the --log of the earlier run"));
    static_cast<void>(shardOf({}, options.shard)); // before any work
    Batch batch = prepare(options);
    if (batch.fields.empty())
        return options.shard.isEmpty() ? nothingMatched : done;
    int skipped = 0;
    if (options.dryRun) {
        printLines(batch, options);
    } else {
        const auto fonts = fontsFor(batch.rendering.annotation);
        skipped = makeFields(batch, options);
    }
    printProblems(batch.fields);
    throwIfInterrupted();
    const bool isWhole = !hasProblems(batch.fields);
    if (isWhole && !options.dryRun) {
        const QString note = QStringLiteral(" (%1 skipped, already done by earlier runs)");
        say(options, plural(batch.fields.size(), QStringLiteral("field")) +
                         QStringLiteral(" done") + (skipped > 0 ? note.arg(skipped) : QString()));
    }
    return isWhole ? done : failed;
}

} // namespace lumetra
