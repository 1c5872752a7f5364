// lumetra batch: an image of each field of a data set.

#include "apps/cli/batch_gallery.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_set.h"
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
#include "platform/platform.h"

#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <memory>

namespace lumetra {
namespace {

/// A batch that is ready to run.
struct Batch {
    FieldSet fields; ///< Those of its shard.
    RenderSpec rendering;
    FieldProblems problems;
    DyeList builtInDyes; ///< What a command line can name without a file.
};

void say(const BatchOptions& options, const QString& line) {
    if (!options.image.output.quiet)
        printError(line);
}

Progress progressOf(const BatchOptions& options, const QString& work, const FieldSet& fields,
                    bool isLast) {
    return {work, static_cast<int>(fields.size()), options.image.output.quiet,
            options.dataSet.progress, isLast};
}

/// Measures the contrast limits that all fields are to share.
void shareLevels(const FieldSet& all, Batch& batch, const BatchOptions& options) {
    auto& channels = batch.rendering.channels;
    if (options.levelsOver == QLatin1String("field") || !hasMeasuredLevels(channels))
        return;
    if (!options.dataSet.fields.isEmpty() && !options.shard.isEmpty())
        throw UsageError(QStringLiteral(
            "--fields with --shard reads the files of its part alone, and contrast limits are of "
            "all: measure them once with 'lumetra levels' for --settings, or give --levels "
            "LOW:HIGH or --levels-over field"));
    say(options, QStringLiteral("measuring shared contrast limits over all fields, so that images "
                                "can be compared (--levels-over dataset)"));
    DataSetLevels levels;
    {
        Progress progress = progressOf(options, QStringLiteral("measuring"), all, false);
        levels = measureLevels(all, batch.problems, batch.rendering.pages, options.dataSet.jobs,
                               progress);
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
void requireFreeOutputs(const FieldSet& fields) {
    QString first;
    std::size_t existing = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const QString output = fields[i].job.output;
        if (QFileInfo(output).isFile() && ++existing == 1)
            first = output;
    }
    if (existing > 0)
        throw Error(QStringLiteral("%1 of %2 already exist, the first of them %3: run again with "
                                   "--resume and the --log of the earlier run to skip what is "
                                   "done, or with --overwrite to render all again")
                        .arg(QString::number(existing),
                             plural(fields.size(), QStringLiteral("output")), first));
}

void prepare(Batch& batch, const BatchOptions& options) {
    const DyeList dyes = dyesWith(options.channel.customDyes);
    const DataSetOptions& dataSet = options.dataSet;
    std::vector<Channel> channels =
        namedChannels(dataSet.channels, settingsOf(options.channel, dyes), dyes);
    const bool areNamed = !channels.empty(), isListed = !dataSet.fields.isEmpty();
    if (areNamed) // what is wrong with the options is told before there is any work
        batch.rendering = renderSpec(channels, options.image, options.channel);
    const bool isProjected = options.image.pages.project.has_value();
    const FieldSet all =
        requestedFields(dataSet, options.image.output.file, isProjected, dyes, channels);
    if (!areNamed && !all.empty()) {
        batch.rendering = renderSpec(channels, options.image, options.channel);
        say(options, channelList(batch.rendering.channels));
    }
    if (options.resume)
        batch.rendering.existing = Existing::replace;
    batch.fields = all.part(options.shard);
    if (all.empty())
        return;
    // What has to hold of all fields, a list has been looked at for.
    checkFiles(
        isListed ? batch.fields : all, options.image.output.compression,
        {options.log, dataSet.progress, options.gallery},
        {options.channel.settings, options.channel.customDyes, dataSet.filesFrom, dataSet.fields},
        !isListed);
    if (batch.rendering.existing == Existing::keep && !options.dryRun)
        requireFreeOutputs(batch.fields);
    if (!options.gallery.isEmpty() && !options.dryRun && options.shard.isEmpty())
        checkPage(options.gallery, batch.rendering.existing);
    say(options, fieldList(all));
    shareLevels(all, batch, options);
    if (!options.shard.isEmpty())
        say(options, QStringLiteral("of these, ") + fieldList(batch.fields));
    batch.rendering.jobs = jobsOfEach(dataSet.jobs, batch.fields.size());
}

/// Fields that cannot be rendered have no line that could log it.
void printLines(Batch& batch, const BatchOptions& options) {
    BatchLog log(options.log, options.resume);
    QByteArray lines;
    for (std::size_t i = 0; i < batch.fields.size(); ++i) {
        Field field = batch.fields[i];
        field.problem = batch.problems.of(field);
        if (!field.problem.isEmpty()) {
            batch.problems.add(field);
            log.addFailed(workOf(field, batch.rendering), 0, field.problem);
        } else if (!options.resume || !log.isDone(workOf(field, batch.rendering))) {
            lines += mergeLine(field, batch.rendering, options, batch.builtInDyes).toUtf8() + '\n';
        }
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
/// @param gallery  Receives the image; may be null.
bool makeField(Field& field, const RenderSpec& rendering, FileRenderer& renderer, BatchLog& log,
               const BatchGallery* gallery) {
    const QJsonObject work = workOf(field, rendering);
    if (field.problem.isEmpty() && log.isDone(work))
        return false;
    try {
        const RenderedFile rendered = renderField(field, work, renderer, log);
        if (gallery)
            gallery->add(field.job.output, rendered.thumbnail);
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

Outcome makeFields(Batch& batch, const BatchOptions& options, const BatchGallery* gallery) {
    Outcome outcome;
    std::atomic<int> skipped{0};
    BatchLog log(gallery ? gallery->log() : options.log, options.resume);
    Progress progress = progressOf(options, QStringLiteral("rendering"), batch.fields, true);
    const auto makeWorker = [&] {
        return [&, renderer = std::make_shared<FileRenderer>(batch.rendering, gallery != nullptr)](
                   std::size_t i) {
            Field field = batch.fields[i];
            field.problem = batch.problems.of(field);
            if (!makeField(field, batch.rendering, *renderer, log, gallery))
                ++skipped;
            if (field.problem.isEmpty())
                return progress.fieldDone();
            batch.problems.add(field);
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
    Batch batch;
    prepare(batch, options);
    if (batch.fields.empty())
        return options.shard.isEmpty() ? nothingMatched : done;
    Outcome outcome;
    std::unique_ptr<BatchGallery> gallery;
    if (options.dryRun) {
        printLines(batch, options);
    } else {
        const auto fonts = fontsFor(batch.rendering);
        if (!options.gallery.isEmpty())
            gallery = std::make_unique<BatchGallery>(options);
        outcome = makeFields(batch, options, gallery.get());
    }
    batch.problems.print(batch.fields);
    if (caughtSignal() != 0)
        throw Interrupted(stoppedText(outcome.reached, options));
    if (!outcome.diskFull.isEmpty())
        throw Error(outcome.diskFull + QStringLiteral("; ") +
                    stoppedText(outcome.reached, options));
    const bool isWhole = batch.problems.count(batch.fields) == 0;
    if (isWhole && !options.dryRun) {
        const QString note = QStringLiteral(" (%1 skipped, already done by earlier runs)");
        say(options, plural(batch.fields.size(), QStringLiteral("field")) +
                         QStringLiteral(" done") +
                         (outcome.skipped > 0 ? note.arg(outcome.skipped) : QString()));
    }
    const int shown = gallery ? gallery->finish(batch.fields) : done;
    return isWhole ? shown : failed;
}

} // namespace

int runBatch(const BatchOptions& options) {
    requirePattern(options.dataSet);
    if (options.image.output.file.isEmpty() == options.dataSet.fields.isEmpty())
        throw UsageError(options.dataSet.fields.isEmpty()
                             ? QStringLiteral("give -o, the name of the images")
                             : QStringLiteral("--fields has the outputs: leave out -o"));
    if (options.resume && options.log.isEmpty())
        throw UsageError(QStringLiteral("--resume needs the --log of the earlier run"));
    static_cast<void>(FieldSet().part(options.shard)); // what is wrong with it, before any work
    BatchOptions withPattern = options;
    usePatternOfFolder(withPattern.dataSet, options.image.output.quiet);
    return renderFields(withPattern);
}

} // namespace lumetra
