// lumetra levels: the levels of a whole data set.

#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/common/writing.h"
#include "apps/lumetra/batch_options.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/measuring.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace apps {
namespace {

int measure(const BatchOptions& options) {
    const DyeList dyes = options.picture.dyes();
    Settings settings;
    settings.channels = namedChannels(texts(options.channels), std::nullopt, dyes);
    const std::vector<LevelPolicy> policies = options.picture.applyTo(settings.channels, false);
    const QString output = text(options.output);
    checkOutput(output, {}, true);
    std::vector<Field> fields = requestedFields(options, settings.channels);
    if (fields.empty())
        return nothingMatched;
    keepApart({output, text(options.progress)}, filesRead(options, fields));

    DataSetLevels levels;
    {
        Progress progress(QStringLiteral("measuring"), static_cast<int>(fields.size()),
                          options.quiet, text(options.progress));
        levels = measureLevels(fields, options.picture.pages(), options.jobs, progress);
    }
    tellProblems(fields);
    if (levels.files == 0)
        throw Failure(QStringLiteral("no field could be measured"));
    for (std::size_t i = 0; i < settings.channels.size(); ++i)
        settings.channels[i].levels = levelsOf(levels.histograms[i], policies[i]);
    QStringList methods;
    for (const LevelPolicy& policy : policies)
        methods << policy.text();
    methods.removeDuplicates();
    settings.measured = Measurement{methods.join(QStringLiteral(", ")), levels.files};
    const QByteArray json = settingsJson(settings);
    removeLeftovers({output});
    writeBytes(output, json.constData(), static_cast<std::size_t>(json.size()));
    const bool isWhole = std::all_of(fields.begin(), fields.end(),
                                     [](const Field& field) { return field.problem.isEmpty(); });
    return isWhole ? done : failed;
}

} // namespace

void addDataSetOptions(BatchOptions& options, CLI::App& command) {
    command
        .add_option("PATTERN", options.pattern,
                    "Names of files with named parts, quoted for the shell: "
                    "'plate/{field}_{channel}.tif'. {channel} stands for the names given")
        ->type_name("")
        ->required();
    command
        .add_option("--channel", options.channels,
                    "A channel's name in the pattern and its dye, as for 'lumetra merge': "
                    "NAME=DYE or NAME=DYE+X+Y. Once for each channel")
        ->type_name("NAME=DYE[+X+Y]")
        ->allow_extra_args(false);
    command
        .add_option("--files-from", options.filesFrom,
                    "A list of files to match instead of those that are there, one in a line or "
                    "each ended by NUL; - is the standard input")
        ->type_name("FILE");
    command.add_option("--jobs", options.jobs, "How many fields at once; by default the cores")
        ->type_name("N")
        ->check(CLI::Range(1, 1024, "1 to 1024"));
    command
        .add_option("--progress", options.progress,
                    "Appends key=value lines to FILE, after each field")
        ->type_name("FILE");
}

std::vector<Field> requestedFields(const BatchOptions& options,
                                   const std::vector<Channel>& channels) {
    std::vector<Field> fields =
        findFields({text(options.pattern), channels, text(options.filesFrom)});
    if (fields.empty())
        tell(QStringLiteral("lumetra: no file matches %1\n").arg(shown(text(options.pattern))));
    return fields;
}

QStringList filesRead(const BatchOptions& options, const std::vector<Field>& fields) {
    QStringList files = options.picture.filesRead() << text(options.filesFrom);
    for (const Field& field : fields)
        for (const ChannelFile& input : field.files.inputs)
            files << input.file;
    return files;
}

void tellProblems(const std::vector<Field>& fields) {
    std::size_t problems = 0;
    for (const Field& field : fields) {
        if (field.problem.isEmpty())
            continue;
        ++problems;
        tell(QStringLiteral("lumetra: field %1: %2\n").arg(shown(field.name), field.problem));
    }
    if (problems > 0)
        tell(QStringLiteral("lumetra: %1 of %2 fields failed\n").arg(problems).arg(fields.size()));
}

void addLevelsCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<BatchOptions>();
    options->output = "-";
    CLI::App& command =
        *program.add_subcommand("levels", "Measures the levels of a data set for a settings file");
    addDataSetOptions(*options, command);
    options->picture.addLevels(command);
    options->picture.addPages(command);
    options->picture.addCustomDyes(command);
    command
        .add_option("-o,--output", options->output,
                    "The settings file; one that is there is replaced. - is the standard output")
        ->type_name("FILE")
        ->capture_default_str();
    command.add_flag("--quiet", options->quiet, "Says nothing unless something fails");
    command.footer("example: lumetra levels 'plate/{field}_{channel}.tif' --channel dapi=DAPI "
                   "--channel actin=FITC -o plate.json");
    command.callback([&action, options] { action = [options] { return measure(*options); }; });
}

} // namespace apps
