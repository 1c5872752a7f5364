// lumetra dye, pseudo and merge: one picture.

#include "apps/common/colour_table.h"
#include "apps/common/display_table.h"
#include "apps/common/failure.h"
#include "apps/common/messages.h"
#include "apps/common/writing.h"
#include "apps/lumetra/batch_log.h"
#include "apps/lumetra/commands.h"
#include "apps/lumetra/options.h"
#include "apps/lumetra/picture_maker.h"
#include "apps/lumetra/signals.h"

#include <opencv2/core.hpp>

#include <lumetra>

#include <CLI/CLI.hpp>

#include <QElapsedTimer>
#include <QFileInfo>

namespace apps {
namespace {

struct CommandOptions {
    PictureOptions picture;
    std::vector<std::string> channels;
    std::string file, table, range, log;
    bool reversed = false, dominant = false;
};

void report(const PictureOptions& options, const QString& picture) {
    if (!options.isQuiet() && options.outputFile() != QLatin1String("-"))
        tell(QStringLiteral("lumetra: %1: %2\n").arg(shown(options.outputFile()), picture));
}

/// What the words of a command line give once settings are there, too: the nth file is the nth
/// channel of the settings, in the dye that is written beside it, if there is one.
std::vector<ChannelFile> channelFiles(const QStringList& words,
                                      const std::optional<Settings>& settings,
                                      const DyeList& dyes) {
    std::vector<ChannelFile> files;
    if (!settings) {
        for (const QString& word : words)
            files.push_back(parseChannelFile(word, dyes));
        return files;
    }
    if (settings->channels.size() != static_cast<std::size_t>(words.size()))
        throw BadUsage(QStringLiteral("there are %1 files for the %2 channels of the settings")
                           .arg(words.size())
                           .arg(settings->channels.size()));
    for (const QString& word : words) {
        const bool hasDye = word.contains(QLatin1Char('=')) && !QFileInfo::exists(word);
        ChannelFile file = hasDye ? parseChannelFile(word, dyes) : parseFile(word);
        Channel channel = settings->channels[files.size()];
        if (hasDye) {
            channel.dye = file.channel.dye;
            channel.colour = file.channel.colour;
            channel.offset = file.channel.offset;
        }
        file.channel = channel;
        files.push_back(file);
    }
    return files;
}

/// Makes a picture, and keeps what became of it if there is a log.
QString makeLogged(const PictureFiles& files, const Recipe& recipe, BatchLog& log) {
    const QJsonObject work =
        workOf({QFileInfo(files.output).completeBaseName(), {}, files, {}}, recipe);
    QElapsedTimer timer;
    timer.start();
    try {
        QString size = PictureMaker(recipe).make(files);
        log.addDone(work, timer.elapsed());
        return size;
    } catch (const Interrupted&) {
        throw;
    } catch (...) {
        log.addFailed(work, timer.elapsed(), currentReason());
        throw;
    }
}

/// Makes one picture of files of gray channels.
int makePicture(const PictureOptions& options, const QStringList& words, const QString& logFile) {
    const DyeList dyes = options.dyes();
    const auto settings = options.settings(dyes);
    PictureFiles files{channelFiles(words, settings, dyes), options.outputFile()};
    static_cast<void>(formatOf(files.output)); // before any work
    std::vector<Channel> channels;
    for (const ChannelFile& input : files.inputs)
        channels.push_back(input.channel);
    const Recipe recipe{options.applyTo(channels, settings.has_value()), options.pages(),
                        options.annotation(), options.overwrites()};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        files.inputs[i].channel = channels[i];
        files.inputs[i].channel.levels = recipe.levels[i].known();
    }
    const auto fonts = fontsFor(!recipe.annotation.isEmpty());
    QStringList read = options.filesRead();
    for (const ChannelFile& input : files.inputs)
        read << input.file;
    keepApart({logFile, files.output}, read);
    removeLeftovers({files.output});
    BatchLog log(logFile, false);
    report(options, makeLogged(files, recipe, log));
    return done;
}

/// A colour picture brought to 8 bits by levels of each of its samples.
cv::Mat levelled(const cv::Mat& picture, const LevelPolicy& policy, double gamma) {
    if (policy.method == LevelPolicy::Method::none)
        return picture;
    std::vector<cv::Mat> planes;
    cv::split(picture, planes);
    for (cv::Mat& plane : planes) {
        Histogram histogram;
        histogram.add(plane);
        DisplayTable table;
        table.set(histogram.bits(), *levelsOf(histogram, policy), gamma);
        cv::Mat eightBits;
        table.apply(plane, eightBits);
        plane = eightBits;
    }
    cv::Mat result;
    cv::merge(planes, result);
    return result;
}

/// One file of colour, tinted as the library does it.
int dyeColours(const CommandOptions& options, const ChannelFile& input,
               const ChannelStacks& stacks) {
    if (options.picture.hasSettings())
        throw Failure(QStringLiteral("%1: has colours; settings are for gray pictures")
                          .arg(shown(input.file)));
    std::vector<Channel> channels{input.channel};
    const LevelPolicy policy = options.picture.applyTo(channels, false).front();
    const Annotation annotation = options.picture.annotation();
    const QString output = options.picture.outputFile();
    const auto fonts = fontsFor(!annotation.isEmpty());
    checkOutput(output, {input.file}, options.picture.overwrites());
    removeLeftovers({output});
    cv::Mat tinted;
    writePictures(output, stacks.pictures(), [&](int i) -> const cv::Mat& {
        throwIfInterrupted();
        cv::Mat picture = levelled(stacks.any(0, i), policy, channels[0].gamma);
        const QColor& colour = channels[0].colour;
        Lumetra::Dye(picture, tinted, colour.red(), colour.green(), colour.blue(), false,
                     options.dominant);
        annotate(tinted, channels, annotation);
        return tinted;
    });
    report(options.picture, sizeText(tinted));
    return done;
}

int dye(const CommandOptions& options) {
    const DyeList dyes = options.picture.dyes();
    const ChannelFile input = parseChannelFile(text(options.file), dyes);
    static_cast<void>(formatOf(options.picture.outputFile()));
    const ChannelStacks stacks({input}, options.picture.pages());
    if (stacks.any(0, 0).channels() > 1)
        return dyeColours(options, input, stacks);
    return makePicture(options.picture, {text(options.file)}, QString());
}

/// The range that a table is spread over: one for all pages; none where it is each picture's own.
std::optional<LevelRange> pseudoRange(const CommandOptions& options, const ChannelStacks& stacks,
                                      const LevelPolicy& policy) {
    if (!options.range.empty())
        return parseRange(text(options.range));
    if (policy.method == LevelPolicy::Method::none)
        return std::nullopt;
    Histogram histogram;
    for (int i = 0; policy.isMeasured() && i < stacks.pictures(); ++i) {
        throwIfInterrupted();
        histogram.add(stacks.gray(0, i));
    }
    return levelsOf(histogram, policy);
}

int pseudo(const CommandOptions& options) {
    const ChannelFile input = parseFile(text(options.file));
    const QString output = options.picture.outputFile();
    static_cast<void>(formatOf(output));
    QVector<QColor> table = colourTable(text(options.table));
    if (options.reversed)
        table = reversedTable(table);
    const QVector<QColor> colours = pseudoSlots(table);
    if (!options.range.empty() && options.picture.hasLevels())
        throw BadUsage(QStringLiteral("--range and --levels exclude each other"));
    std::vector<Channel> channels(1);
    LevelPolicy policy{LevelPolicy::Method::clip, 0, {}}; // the whole range
    if (options.picture.hasLevels())
        policy = options.picture.applyTo(channels, false).front();
    else
        options.picture.applyTo(channels, false);

    const Annotation annotation = options.picture.annotation();
    const auto fonts = fontsFor(!annotation.isEmpty());
    checkOutput(output, {input.file}, options.picture.overwrites());
    removeLeftovers({output});
    const ChannelStacks stacks({input}, options.picture.pages());
    const bool isColour = stacks.any(0, 0).channels() > 1;
    if (isColour &&
        (!options.range.empty() || options.picture.hasLevels() || channels[0].gamma != 1))
        throw Failure(QStringLiteral("%1: has colours; range, levels and gamma are for gray "
                                     "pictures")
                          .arg(shown(input.file)));
    const auto range = isColour ? std::nullopt : pseudoRange(options, stacks, policy);

    Renderer renderer;
    cv::Mat picture;
    writePictures(output, stacks.pictures(), [&](int i) -> const cv::Mat& {
        throwIfInterrupted();
        if (isColour) {
            cv::Mat page = stacks.any(0, i);
            Lumetra::Pseudo(page, picture, colours);
        } else {
            renderer.renderPseudo(stacks.gray(0, i), range, channels[0].gamma, colours, picture);
        }
        annotate(picture, {}, annotation);
        return picture;
    });
    report(options.picture, sizeText(picture));
    return done;
}

void addMakingOptions(PictureOptions& options, CLI::App& command) {
    options.addWriting(command);
    options.addLevels(command);
    options.addPages(command);
    options.addScaleBar(command);
}

} // namespace

void addDyeCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<CommandOptions>();
    CLI::App& command =
        *program.add_subcommand("dye", "Tints one channel with the colour of its dye");
    command
        .add_option(
            "FILE=DYE", options->file,
            "A picture file, FILE or FILE[PAGE], and a name that 'lumetra dyes' lists, a "
            "colour #rrggbb, or NAME#rrggbb. A picture of colour keeps its lights and darks "
            "in each of them")
        ->type_name("")
        ->required();
    addMakingOptions(options->picture, command);
    command.add_flag("--dominant", options->dominant,
                     "Of a picture of colour, takes the brightest of red, green and blue alone");
    options->picture.addSettings(command);
    options->picture.addLegend(command);
    options->picture.addCustomDyes(command);
    command.footer("example: lumetra dye nuclei.tif=DAPI -o nuclei.png --levels clip:0.5");
    command.callback([&action, options] { action = [options] { return dye(*options); }; });
}

void addPseudoCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<CommandOptions>();
    options->table = "viridis";
    CLI::App& command =
        *program.add_subcommand("pseudo", "Colours one picture through a table of colours");
    command.add_option("FILE", options->file, "A picture file, or FILE[PAGE]")
        ->type_name("")
        ->required();
    command
        .add_option("--table", options->table,
                    "A name, or an ImageJ .lut file. Names: " +
                        colourTableNames().join(QStringLiteral(", ")).toStdString())
        ->type_name("NAME|FILE")
        ->capture_default_str();
    command
        .add_option("--range", options->range,
                    "The samples that the first and the last colour stand for; by default the "
                    "smallest and the largest one")
        ->type_name("LOW:HIGH");
    command.add_flag("--reversed", options->reversed, "Takes the table from its end");
    addMakingOptions(options->picture, command);
    command.footer(
        "example: lumetra pseudo calcium.tif --table magma --range 200:4000 -o heat.png");
    command.callback([&action, options] { action = [options] { return pseudo(*options); }; });
}

void addMergeCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<CommandOptions>();
    CLI::App& command = *program.add_subcommand("merge", "Merges channels into one picture");
    command
        .add_option(
            "FILE=DYE", options->channels,
            "Gray picture files of equal size, FILE or FILE[PAGE], each with its dye as for "
            "'lumetra dye'. FILE=DYE+X+Y moves it X pixels to the left and Y up (-X and -Y: "
            "to the right and down). With --settings, FILE will do")
        ->type_name("[+X+Y]...")
        ->required();
    addMakingOptions(options->picture, command);
    options->picture.addSettings(command);
    options->picture.addHidden(command);
    options->picture.addLegend(command);
    options->picture.addCustomDyes(command);
    command
        .add_option("--log", options->log,
                    "Appends a line of JSON as 'lumetra batch' does; several programs may share "
                    "one file on a disk of their own machine")
        ->type_name("FILE");
    command.footer("example: lumetra merge nuclei.tif=DAPI actin.tif=FITC+3-2 -o cells.png");
    command.callback([&action, options] {
        action = [options] {
            return makePicture(options->picture, texts(options->channels), text(options->log));
        };
    });
}

} // namespace apps
