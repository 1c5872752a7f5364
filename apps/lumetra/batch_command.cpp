// lumetra batch: a picture of each field of a data set.

#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/common/shell.h"
#include "apps/common/writing.h"
#include "apps/lumetra/batch_log.h"
#include "apps/lumetra/batch_options.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/measuring.h"
#include "apps/lumetra/signals.h"

#include <CLI/CLI.hpp>

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <atomic>

namespace apps {
namespace {

/// A batch that is ready to run.
struct Batch {
    std::vector<Field> fields;
    Recipe recipe;
    DyeList builtInDyes; ///< What a command line can name without a file.
};

void say(const BatchOptions& options, const QString& line) {
    if (!options.picture.isQuiet())
        tell(QStringLiteral("lumetra: %1\n").arg(line));
}

/// Measures the levels that all fields are to share.
void shareLevels(Batch& batch, const BatchOptions& options) {
    const auto isMeasured = [](const LevelPolicy& policy) { return policy.isMeasured(); };
    auto& policies = batch.recipe.levels;
    if (options.levelsOver == "field" || std::none_of(policies.begin(), policies.end(), isMeasured))
        return;
    say(options, QStringLiteral("measuring one set of levels for the whole data set, so that its "
                                "fields can be compared (--levels-over dataset)"));
    Progress progress(QStringLiteral("measuring"), static_cast<int>(batch.fields.size()),
                      options.picture.isQuiet(), text(options.progress), false);
    const DataSetLevels levels =
        measureLevels(batch.fields, batch.recipe.pages, options.jobs, progress);
    for (std::size_t i = 0; i < policies.size() && levels.files > 0; ++i)
        if (policies[i].isMeasured())
            policies[i] = {LevelPolicy::Method::given, 0,
                           *levelsOf(levels.histograms[i], policies[i])};
}

Batch prepare(const BatchOptions& options) {
    Batch batch;
    const DyeList dyes = options.picture.dyes();
    const auto settings = options.picture.settings(dyes);
    std::vector<Channel> channels = namedChannels(texts(options.channels), settings, dyes);
    batch.recipe = {options.picture.applyTo(channels, settings.has_value()),
                    options.picture.pages(), options.picture.annotation(),
                    options.picture.overwrites() || options.resume};
    batch.fields = requestedFields(options, channels);
    nameOutputs(batch.fields, options.picture.outputFile());
    for (const Field& field : batch.fields)
        static_cast<void>(formatOf(field.files.output));
    if (batch.fields.empty())
        return batch;

    QStringList written{text(options.log), text(options.progress)};
    for (const Field& field : batch.fields)
        written << field.files.output;
    keepApart(written, filesRead(options, batch.fields));
    say(options, fieldList(batch.fields));
    shareLevels(batch, options);
    batch.fields = shardOf(batch.fields, text(options.shard));
    if (!options.shard.empty())
        say(options, QStringLiteral("of these, ") + fieldList(batch.fields));
    for (Field& field : batch.fields)
        for (std::size_t i = 0; i < channels.size(); ++i)
            field.files.inputs[i].channel.levels = batch.recipe.levels[i].known();
    return batch;
}

/// A name of a file that no program takes for an option.
QString noOption(const QString& file) {
    return file.startsWith(QLatin1Char('-')) ? QStringLiteral("./") + file : file;
}

/// The line that does for a field what the batch does.
QString mergeLine(const Field& field, const Batch& batch, const BatchOptions& options) {
    QStringList words{QStringLiteral("lumetra"), QStringLiteral("merge")};
    QStringList more;
    for (std::size_t i = 0; i < field.files.inputs.size(); ++i) {
        const ChannelFile& input = field.files.inputs[i];
        words << noOption(fileWords(input)) + QLatin1Char('=') +
                     channelWords(input.channel, batch.builtInDyes);
        more << QStringLiteral("--levels") << batch.recipe.levels[i].text()
             << QStringLiteral("--gamma")
             << QString::number(input.channel.gamma, 'g', QLocale::FloatingPointShortest);
        if (!input.channel.visible)
            more << QStringLiteral("--hide") << QString::number(i + 1);
    }
    if (!options.log.empty())
        more << QStringLiteral("--log") << noOption(text(options.log));
    if (options.resume && !options.picture.overwrites())
        more << QStringLiteral("--overwrite");
    return shellLine(words + more + options.picture.words() +
                     QStringList{"-o", noOption(field.files.output)});
}

/// Fields that cannot be made have no line that could log it.
void printLines(const Batch& batch, const BatchOptions& options) {
    BatchLog log(text(options.log), options.resume);
    QString lines;
    for (const Field& field : batch.fields) {
        const QJsonObject work = workOf(field, batch.recipe);
        if (!field.problem.isEmpty())
            log.addFailed(work, 0, field.problem);
        else if (!log.isDone(work))
            lines += mergeLine(field, batch, options) + QLatin1Char('\n');
    }
    print(lines);
}

/// False if a former run has done the field.
bool makeField(Field& field, PictureMaker& maker, const Recipe& recipe, BatchLog& log,
               Progress& progress) {
    const QJsonObject work = workOf(field, recipe);
    QElapsedTimer timer;
    timer.start();
    if (field.problem.isEmpty() && log.isDone(work)) {
        progress.fieldDone();
        return false;
    }
    try {
        if (!field.problem.isEmpty())
            throw Failure(field.problem);
        maker.make(field.files);
        log.addDone(work, timer.elapsed());
        progress.fieldDone();
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        field.problem = currentReason();
        log.addFailed(work, timer.elapsed(), field.problem);
        progress.fieldFailed();
    }
    return true;
}

/// Returns how many fields former runs had done.
int makeFields(Batch& batch, const BatchOptions& options) {
    QStringList outputs;
    for (const Field& field : batch.fields)
        outputs << field.files.output;
    removeLeftovers(outputs);

    std::atomic<int> doneBefore{0};
    BatchLog log(text(options.log), options.resume);
    Progress progress(QStringLiteral("making"), static_cast<int>(batch.fields.size()),
                      options.picture.isQuiet(), text(options.progress));
    const auto makeWorker = [&] {
        return [&, maker = std::make_shared<PictureMaker>(batch.recipe)](std::size_t i) {
            if (!makeField(batch.fields[i], *maker, batch.recipe, log, progress))
                ++doneBefore;
        };
    };
    runWorkers(options.jobs, batch.fields.size(), makeWorker, [&] { progress.tick(); });
    return doneBefore;
}

int runBatch(const BatchOptions& options) {
    if (options.resume && options.log.empty())
        throw BadUsage(QStringLiteral("--resume needs the --log of the run before"));
    static_cast<void>(shardOf({}, text(options.shard))); // before any work
    Batch batch = prepare(options);
    if (batch.fields.empty())
        return options.shard.empty() ? nothingMatched : done;
    int doneBefore = 0;
    if (options.dryRun) {
        printLines(batch, options);
    } else {
        const auto fonts = fontsFor(!batch.recipe.annotation.isEmpty());
        doneBefore = makeFields(batch, options);
    }
    tellProblems(batch.fields);
    throwIfInterrupted();
    const auto problems =
        std::count_if(batch.fields.begin(), batch.fields.end(),
                      [](const Field& field) { return !field.problem.isEmpty(); });
    if (problems == 0 && !options.dryRun)
        say(options,
            counted(batch.fields.size(), QStringLiteral("field")) + QStringLiteral(" done") +
                (doneBefore == 0 ? QString()
                                 : QStringLiteral(", %1 of them by former runs").arg(doneBefore)));
    return problems == 0 ? done : failed;
}

} // namespace

void addBatchCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<BatchOptions>();
    CLI::App& command =
        *program.add_subcommand("batch", "Makes a picture of each field of a data set");
    addDataSetOptions(*options, command);
    PictureOptions& picture = options->picture;
    picture.addWriting(command);
    command.get_option("--output")
        ->description("Names of the pictures, with the parts of PATTERN: 'out/{field}.png'. "
                      "Folders are made");
    picture.addLevels(command);
    command
        .add_option("--levels-over", options->levelsOver,
                    "Measures levels over the whole 'dataset', which takes a first pass (only then "
                    "fields can be compared), or over each 'field'")
        ->type_name("WHAT")
        ->check(CLI::IsMember({"dataset", "field"}))
        ->capture_default_str();
    picture.addSettings(command);
    picture.addPages(command);
    picture.addHidden(command);
    picture.addLegend(command);
    picture.addScaleBar(command);
    picture.addCustomDyes(command);
    command
        .add_option("--shard", options->shard,
                    "Makes only part K of N of the fields, in the order of their names; levels are "
                    "measured over all")
        ->type_name("K/N");
    command
        .add_option("--log", options->log,
                    "Appends a line of JSON for each field: inputs, output, outcome, milliseconds")
        ->type_name("FILE");
    command.add_flag("--resume", options->resume,
                     "Passes over fields that the log has as done with the same files, levels, "
                     "options and version; makes the others anew, as --overwrite does");
    command.add_flag(
        "--dry-run", options->dryRun,
        "Makes nothing, and prints a 'lumetra merge' line for each field that does the "
        "same. With --log, fields that cannot be made are logged at once");
    command.footer("example: lumetra batch 'plate/{field}_{channel}.tif' --channel dapi=DAPI "
                   "--channel actin=FITC+3-2 -o 'out/{field}.png'");
    command.callback([&action, options] { action = [options] { return runBatch(*options); }; });
}

} // namespace apps
