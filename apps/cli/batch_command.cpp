// lumetra batch: an image of each field of a data set.

#include "apps/cli/commands.h"
#include "apps/cli/data_set_levels.h"
#include "apps/cli/fonts.h"
#include "apps/cli/instrument_folder.h"
#include "apps/cli/merge_line.h"
#include "apps/cli/print.h"
#include "apps/cli/render_field.h"
#include "apps/cli/signals.h"
#include "apps/cli/workers.h"
#include "apps/common/annotation.h"
#include "apps/common/error.h"
#include "apps/common/messages.h"
#include "imageio/output_conflicts.h"
#include "platform/platform.h"

#include <QFileInfo>

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
    if (options.levelsOver == QLatin1String("field") || !hasMeasuredLevels(channels))
        return;
    say(options, QStringLiteral("measuring shared contrast limits over all fields, so that images "
                                "can be compared (--levels-over dataset)"));
    DataSetLevels levels;
    {
        Progress progress = progressOf(options, QStringLiteral("measuring"), batch, false);
        levels = measureLevels(batch.fields, batch.rendering.pages, options.dataSet.jobs, progress);
    }
    if (levels.files == 0)
        return;
    std::vector<Channel> shared;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        channels[i].levels = settledLevels(channels[i].levels, levels.channels[i]);
        shared.push_back(channels[i].channel);
        setLimits(shared.back(), channels[i].levels, levels.channels[i]);
    }
    reportLevels(options.image.output, shared);
}

/// The channels that files tell: "channels DAPI, FITC".
QString channelList(const std::vector<ChannelSpec>& channels) {
    QStringList names;
    for (const auto& [channel, levels] : channels)
        names << channelLabel(channel);
    return QStringLiteral("channels ") + names.join(QStringLiteral(", "));
}

/// Looks at the outputs before there is any work, so that no field is logged as failed that was not
/// tried.
void requireFreeOutputs(const std::vector<Field>& fields) {
    QStringList existing;
    for (const Field& field : fields)
        if (QFileInfo(field.job.output).isFile())
            existing << field.job.output;
    if (!existing.isEmpty())
        throw Error(QStringLiteral("%1 of %2 already exist, the first of them %3: run again with "
                                   "--resume and the --log of the earlier run to skip what is "
                                   "done, or with --overwrite to render all again")
                        .arg(QString::number(existing.size()),
                             plural(fields.size(), QStringLiteral("output")), existing.front()));
}

Batch prepare(const BatchOptions& options) {
    Batch batch;
    const DyeList dyes = dyesWith(options.channel.customDyes);
    std::vector<Channel> channels =
        namedChannels(options.dataSet.channels, settingsOf(options.channel, dyes), dyes);
    const bool areNamed = !channels.empty();
    if (areNamed) // what is wrong with the options is told before there is any work
        batch.rendering = renderSpec(channels, options.image, options.channel);
    const bool isProjected = options.image.pages.project.has_value();
    batch.fields = requestedFields(options.dataSet, isProjected, dyes, channels);
    if (!areNamed && !batch.fields.empty()) {
        batch.rendering = renderSpec(channels, options.image, options.channel);
        say(options, channelList(batch.rendering.channels));
    }
    if (options.resume)
        batch.rendering.existing = Existing::replace;
    nameOutputs(batch.fields, options.image.output.file);
    for (const Field& field : batch.fields)
        checkImageOutput(field.job.output, options.image.output.compression);
    if (batch.fields.empty())
        return batch;

    QStringList written{options.log, options.dataSet.progress};
    for (const Field& field : batch.fields)
        written << field.job.output;
    checkOutputConflicts(written, inputNames(batch.fields)
                                      << options.channel.settings << options.channel.customDyes
                                      << options.dataSet.filesFrom);
    if (batch.rendering.existing == Existing::keep && !options.dryRun)
        requireFreeOutputs(shardOf(batch.fields, options.shard));
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

/// Thrown where no other field could be written either.
struct DiskFull : Error {
    using Error::Error;
};

/// Whether an error's text ends in the system's words for a disk, or a quota, that is used up.
bool tellsOfFullDisk(const QString& reason) {
    const QStringList texts = fullDiskReasons();
    return std::any_of(texts.begin(), texts.end(),
                       [&](const QString& text) { return reason.endsWith(text); });
}

/// Renders a field, unless an earlier run has done it; false if so. Notes what is wrong with it.
/// @throws Interrupted, DiskFull.
bool makeField(Field& field, const RenderSpec& rendering, FileRenderer& renderer, BatchLog& log) {
    const QJsonObject work = workOf(field, rendering);
    if (field.problem.isEmpty() && log.isDone(work))
        return false;
    try {
        renderField(field, work, renderer, log);
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        const QString reason = currentErrorText();
        if (tellsOfFullDisk(reason))
            throw DiskFull(reason);
        field.problem = reason;
    }
    return true;
}

/// How far the rendering of a batch has come.
struct Outcome {
    int skipped = 0;  ///< Fields that earlier runs have done.
    QString reached;  ///< "12 of 60 fields".
    QString diskFull; ///< Why it was stopped; empty if there was room for all.
};

Outcome makeFields(Batch& batch, const BatchOptions& options) {
    Outcome outcome;
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
    try {
        runWorkers(options.dataSet.jobs, batch.fields.size(), makeWorker, [&] { progress.tick(); });
    } catch (const DiskFull& full) {
        outcome.diskFull = full.text();
    }
    outcome.skipped = skipped;
    outcome.reached = progress.reached();
    return outcome;
}

/// How far a run came that was stopped, and how to go on.
QString stoppedText(const QString& reached, const BatchOptions& options) {
    return QStringLiteral("stopped after %1; ").arg(reached) +
           (options.log.isEmpty()
                ? QStringLiteral("run again with --overwrite (a --log lets --resume go on)")
                : QStringLiteral("run again with --resume to go on"));
}

/// As `runBatch`, for a pattern and options that fit each other.
int renderFields(const BatchOptions& options) {
    Batch batch = prepare(options);
    if (batch.fields.empty())
        return options.shard.isEmpty() ? nothingMatched : done;
    Outcome outcome;
    if (options.dryRun) {
        printLines(batch, options);
    } else {
        const auto fonts = fontsFor(batch.rendering);
        outcome = makeFields(batch, options);
    }
    printProblems(batch.fields);
    if (caughtSignal() != 0)
        throw Interrupted(stoppedText(outcome.reached, options));
    if (!outcome.diskFull.isEmpty())
        throw Error(outcome.diskFull + QStringLiteral("; ") +
                    stoppedText(outcome.reached, options));
    const bool isWhole = !hasProblems(batch.fields);
    if (isWhole && !options.dryRun) {
        const QString note = QStringLiteral(" (%1 skipped, already done by earlier runs)");
        say(options, plural(batch.fields.size(), QStringLiteral("field")) +
                         QStringLiteral(" done") +
                         (outcome.skipped > 0 ? note.arg(outcome.skipped) : QString()));
    }
    return isWhole ? done : failed;
}

} // namespace

int runBatch(const BatchOptions& options) {
    if (options.resume && options.log.isEmpty())
        throw UsageError(QStringLiteral("--resume needs the --log of the earlier run"));
    static_cast<void>(shardOf({}, options.shard)); // before any work
    BatchOptions withPattern = options;
    usePatternOfFolder(withPattern.dataSet, options.image.output.quiet);
    return renderFields(withPattern);
}

} // namespace lumetra
