#include "apps/cli/command_line.h"

#include "apps/cli/commands.h"
#include "apps/cli/help_formatter.h"
#include "apps/cli/nearest_name.h"
#include "apps/cli/options.h"
#include "apps/cli/print.h"
#include "apps/cli/workers.h"
#include "apps/common/error.h"
#include "apps/common/lut_file.h"
#include "imageio/output_format.h"
#include "render/channel.h"

#include <limits>
#include <memory>

namespace lumetra {
namespace {

using Action = std::function<int()>;

QString text(const std::string& argument) { return QString::fromStdString(argument); }

/// @param wanted  What has to be true of a value, in words.
template<class Test>
CLI::Validator require(const Test& test, const std::string& wanted) {
    return {[=](const std::string& value) {
                return test(value) ? std::string() : "'" + value + "' is not " + wanted;
            },
            ""};
}

CLI::Validator wholeNumber(int least, int most = std::numeric_limits<int>::max()) {
    const bool isOpen = most == std::numeric_limits<int>::max();
    return require(
        [=](const std::string& value) {
            bool isNumber = false;
            const int number = text(value).toInt(&isNumber);
            return isNumber && number >= least && number <= most;
        },
        "a whole number from " + std::to_string(least) +
            (isOpen ? "" : " to " + std::to_string(most)));
}

CLI::Validator number(double least, double most, const std::string& range) {
    return require(
        [=](const std::string& value) {
            bool isNumber = false;
            const double number = text(value).toDouble(&isNumber);
            return isNumber && number >= least && number <= most;
        },
        "a number " + range);
}

/// Options of a command that stand together in its help. An argument without dashes is positional.
struct Section {
    CLI::App& command;
    std::string heading = "Options";

    CLI::Option* addText(const std::string& name, const std::string& form, QString& target,
                         const std::string& meaning) const {
        const auto store = [&target](const std::string& value) { target = text(value); };
        return command.add_option_function<std::string>(name, store, meaning)
            ->type_name(form)
            ->group(heading);
    }

    /// As `addText`, given once for each text.
    CLI::Option* addTexts(const std::string& name, const std::string& form, QStringList& target,
                          const std::string& meaning) const {
        const auto store = [&target](const std::vector<std::string>& values) {
            for (const std::string& value : values)
                target << text(value);
        };
        return command.add_option_function<std::vector<std::string>>(name, store, meaning)
            ->type_name(form)
            ->allow_extra_args(name.front() != '-')
            ->group(heading);
    }

    /// One number, or several, each given on its own.
    template<class Numbers>
    CLI::Option* addNumber(const std::string& name, const std::string& form, Numbers& target,
                           const CLI::Validator& validator, const std::string& meaning) const {
        return command.add_option(name, target, meaning)
            ->type_name(form)
            ->allow_extra_args(false)
            ->check(validator)
            ->group(heading);
    }

    CLI::Option* addFlag(const std::string& name, bool& target, const std::string& meaning) const {
        return command.add_flag(name, target, meaning)->group(heading);
    }
};

/// @param repetition  What it means to give the options again; may be empty.
/// @param levels      The name of the option for contrast limits, and others that help leaves out.
void addContrast(CLI::App& command, ContrastOptions& options, const std::string& repetition,
                 const std::string& levels = "--levels") {
    const Section section{command, "Contrast"};
    section.addTexts(
        levels, "LIMITS", options.levels,
        "Contrast limits, the pixel values shown as black and as white: auto (the minimum and the "
        "maximum), clip:PERCENT (saturate PERCENT % of the pixels at each end), LOW:HIGH (with "
        "decimals for floating-point images), or none (keep pixel values and bit depth). The "
        "default is clip:0.1" +
            repetition);
    section.addNumber("--gamma", "NUMBER", options.gammas,
                      number(smallestGamma, largestGamma, "from 0.01 to 100"),
                      "Gamma, from 0.01 to 100: below 1 brightens mid-tones" + repetition);
}

void addContrastOfEach(CLI::App& command, ContrastOptions& options) {
    addContrast(command, options,
                ". Give it once for all channels, or once for each in their order");
}

CLI::Option* addProject(const Section& section, PageSelection& pages) {
    const auto isMethod = [](const std::string& text) {
        return text == "max" || text == "mean" || text == "sum";
    };
    const auto store = [&pages](const std::string& text) { pages.project = parseProjection(text); };
    return section.command
        .add_option_function<std::string>(
            "--project", store,
            "Project the z-slices of each file, or its pages, to one plane: max (the largest pixel "
            "value), mean, or sum (in 16 bits, clamped). With --all-pages, each time point. A page "
            "that FILE[PAGE] names is taken as it is. z-slices in files of their own are named "
            "with {z}, as cells_z{z}.tif")
        ->type_name("METHOD")
        ->check(require(isMethod, "max, mean or sum"))
        ->group(section.heading);
}

void addPages(CLI::App& command, PageSelection& pages) {
    const Section section{command, "Pages"};
    auto* page = section.addNumber("--page", "N", pages.number, wholeNumber(1),
                                   "Page of multi-page files, from 1");
    section
        .addFlag("--all-pages", pages.all,
                 "Render every page, with one set of contrast limits, to a multi-page TIFF file")
        ->excludes(page);
    addProject(section, pages)->excludes(page);
}

void addFraming(CLI::App& command, FramingOptions& options) {
    const Section section{command, "Size"};
    section.addText("--crop", "X,Y,W,H", options.crop,
                    "Cut the image to W x H pixels, X from the left and Y from the top. Contrast "
                    "limits are measured over all of it");
    section.addText("--resize", "SIZE", options.resize,
                    "Shrink the image, each pixel the mean of its area: W (its width), WxH, or "
                    "PERCENT%. It is not enlarged");
}

void addLegend(CLI::App& command, AnnotationOptions& options) {
    Section{command, "Overlay"}.addFlag("--legend", options.legend,
                                        "Draw the names of the dyes in their colours");
}

void addScaleBar(CLI::App& command, AnnotationOptions& options) {
    const Section section{command, "Overlay"};
    const CLI::Validator length = number(1e-9, 1e9, "above 0");
    section.addNumber("--scale-bar", "UM", options.scaleBar, length,
                      "Draw a scale bar of this length in µm");
    section.addNumber("--pixel-size", "UM", options.pixelSize, length,
                      "Pixel size in µm (default: what the file says)");
}

void addCustomDyes(const Section& section, QString& file) {
    section.addText("--custom", "FILE", file, "INI file of custom dyes");
}

void addChannelFiles(CLI::App& command, ChannelOptions& options) {
    const Section section{command, "Channels"};
    section.addText("--settings", "FILE", options.settings,
                    "Channels and contrast limits from a file that 'lumetra levels' wrote");
    addCustomDyes(section, options.customDyes);
}

void addHidden(CLI::App& command, std::vector<int>& hidden) {
    Section{command, "Channels"}.addNumber(
        "--hide", "N", hidden, wholeNumber(1),
        "Hide channel N, from 1; its offset still affects the crop. Repeat it for more");
}

void addPalette(CLI::App& command, bool& isSafe) {
    command
        .add_option_function<std::string>(
            "--palette", [&isSafe](const std::string& /*name*/) { isSafe = true; },
            "Colours of the channels, in their order: safe (that everybody can tell apart)")
        ->type_name("NAME")
        ->check(require([](const std::string& name) { return name == "safe"; }, "safe"))
        ->group("Channels");
}

void addBlend(CLI::App& command, QStringList& blends) {
    Section{command, "Channels"}.addTexts(
        "--blend", "MODE", blends,
        "How a channel is laid over those before it: add (clamped), screen (never saturates), or "
        "darkest (the smaller value, for transmitted light). The default is add. Give it once for "
        "all channels, or once for each in their order");
}

void addPanels(CLI::App& command, std::string& panels) {
    command
        .add_flag("--panels{gray}", panels,
                  "Show each channel, with its name, beside the merged image; --panels=colour "
                  "shows them in their colours instead of gray")
        ->group("Panels");
}

void addQuiet(CLI::App& command, bool& quiet) {
    Section{command, "Output"}.addFlag("--quiet", quiet, "Print errors only");
}

void addOutput(CLI::App& command, OutputOptions& options, const std::string& meaning,
               const std::string& overwriting = "Overwrite existing output") {
    const Section section{command, "Output"};
    section.addText("-o,--output", "OUT", options.file, meaning)->required();
    section.addFlag("--overwrite", options.overwrite, overwriting);
    addQuiet(command, options.quiet);
}

void addCompression(CLI::App& command, QString& compression) {
    Section{command, "Output"}
        .addText("--compression", "METHOD", compression,
                 "Compression of TIFF files: lzw, which nearly all programs read (default), none, "
                 "deflate or zstd, for programs that you know to read them")
        ->check(require(
            [](const std::string& name) { return tiffCompressionNamed(text(name)).has_value(); },
            "none, lzw, deflate or zstd"));
}

void addImageOutput(CLI::App& command, OutputOptions& options) {
    addOutput(command, options,
              "Image to write: .png, .tif or .jpg; - writes PNG to standard output");
    addCompression(command, options.compression);
}

void addLog(CLI::App& command, QString& log, const std::string& meaning) {
    Section{command, "Output"}.addText("--log", "FILE", log, meaning);
}

/// @param more  What jobs are.
void addJobs(CLI::App& command, int& jobs, const std::string& more = "") {
    jobs = defaultJobs();
    Section{command, "Processing"}.addNumber("--jobs", "N", jobs, wholeNumber(1, 1024),
                                             "Parallel jobs" + more +
                                                 " (default: number of cores)");
}

/// @param unit  What is worked on.
void addJobs(CLI::App& command, int& jobs, QString& progress, const std::string& unit) {
    addJobs(command, jobs);
    Section{command, "Processing"}.addText("--progress", "FILE", progress,
                                           "Append key=value lines to FILE after each " + unit);
}

void addImageJobs(CLI::App& command, int& jobs) {
    addJobs(command, jobs, " for an image of more than 32 million pixels");
}

void addDataSet(CLI::App& command, DataSetOptions& options) {
    Section{command}
        .addText(
            "PATTERN", "", options.pattern,
            "File names with placeholders, quoted for the shell: "
            "'plate/{field}_{channel}.tif'. {channel} stands for the names given by --channel, "
            "{*} for anything without a slash, {**}/ for any folders. Or a folder whose images "
            "an instrument named: 'lumetra info FOLDER' prints its pattern")
        ->required();
    Section{command, "Channels"}.addTexts(
        "--channel", "NAME=DYE[+X+Y]", options.channels,
        "Name of a channel in the pattern, and its dye and offset as for 'lumetra merge'. Repeat "
        "it for each channel. Not needed where each file holds its channels and names their dyes "
        "or colours");
    Section{command, "Processing"}.addText(
        "--files-from", "FILE", options.filesFrom,
        "Read file names from FILE (newline- or NUL-separated; - is standard input) instead of "
        "searching");
}

/// A list in the place of the pattern.
void addFieldList(CLI::App& command, DataSetOptions& options) {
    command.get_option("PATTERN")->required(false);
    Section{command, "Processing"}.addText(
        "--fields", "FILE", options.fields,
        "Take fields from a list that 'lumetra list' wrote, in the place of PATTERN. With --shard, "
        "only the lines and files of that part are read");
}

/// Each of these declares the arguments and options of a command.
void declare(CLI::App& command, InfoOptions& options) {
    const Section section{command};
    section
        .addTexts("FILE", "...", options.files,
                  "Image files, or FILE[PAGE] for one page of a multi-page file; or folders whose "
                  "images an instrument named")
        ->required();
    section.addFlag("--json", options.json, "Print JSON");
}

void declare(CLI::App& command, DyesOptions& options) {
    const Section section{command};
    section.addText("TEXT", "", options.text, "Substring of the name (case-insensitive)");
    auto* emission =
        section.addNumber("--emission", "NM", options.emission, wholeNumber(1, 100000),
                          "Sort by the distance from this emission in nm, nearest first");
    section
        .addNumber("--excitation", "NM", options.excitation, wholeNumber(1, 100000),
                   "Sort by the distance from this excitation in nm, nearest first")
        ->excludes(emission);
    addCustomDyes(section, options.customDyes);
    section.addFlag("--json", options.json, "Print JSON");
}

void declare(CLI::App& command, MergeOptions& options) {
    Section{command}
        .addTexts(
            "FILE=DYE", "[+X+Y]...", options.files,
            "Gray image files of equal size, each with its dye as for 'lumetra dye'. FILE[PAGE] "
            "is one page; FILE[c2,z3,t1] one channel, z-slice and time point, FILE[z3-7] a "
            "range. FILE=DYE+X+Y moves it X pixels to the left and Y up (-X and -Y: to the "
            "right and down). FILE alone is enough with --settings, or if the file names the "
            "dyes or colours of its channels")
        ->required();
    addImageOutput(command, options.image.output);
    addLog(command, options.log,
           "Append a line of JSON, as 'lumetra batch' does; runs on one machine can share a file");
    addChannelFiles(command, options.channel);
    addHidden(command, options.channel.hidden);
    addPalette(command, options.channel.safePalette);
    addBlend(command, options.channel.blends);
    addContrastOfEach(command, options.image.contrast);
    addPages(command, options.image.pages);
    addFraming(command, options.image.framing);
    addPanels(command, options.panels);
    addLegend(command, options.image.annotation);
    addScaleBar(command, options.image.annotation);
    addImageJobs(command, options.image.jobs);
}

void declare(CLI::App& command, DyeOptions& options) {
    Section{command}
        .addText("FILE=DYE", "", options.file,
                 "An image file, FILE or FILE[PAGE], and a name that 'lumetra dyes' lists, a "
                 "colour #rrggbb, or NAME#rrggbb. An RGB image is multiplied by the colour, "
                 "channel by channel")
        ->required();
    addImageOutput(command, options.image.output);
    addChannelFiles(command, options.channel);
    Section{command, "Channels"}.addFlag("--dominant", options.dominant,
                                         "For RGB images, use the brightest channel only");
    addContrast(command, options.image.contrast, "");
    addPages(command, options.image.pages);
    addFraming(command, options.image.framing);
    addLegend(command, options.image.annotation);
    addScaleBar(command, options.image.annotation);
    addImageJobs(command, options.image.jobs);
}

void declare(CLI::App& command, PseudoOptions& options) {
    Section{command}.addText("FILE", "", options.file, "An image file, or FILE[PAGE]")->required();
    addImageOutput(command, options.image.output);
    const Section lut{command, "LUT"};
    lut.addText(
        "--lut,--table", "NAME|FILE", options.lut,
        "LUT by name, an ImageJ .lut file, or own for the one in the image file (default: " +
            options.lut.toStdString() +
            "). Names: " + lutNames().join(QStringLiteral(", ")).toStdString());
    lut.addFlag("--reversed", options.reversed, "Reverse the LUT");
    addContrast(command, options.image.contrast, "", "--levels,--range");
    addPages(command, options.image.pages);
    addFraming(command, options.image.framing);
    addScaleBar(command, options.image.annotation);
    addImageJobs(command, options.image.jobs);
}

void declare(CLI::App& command, LevelsOptions& options) {
    addDataSet(command, options.dataSet);
    addJobs(command, options.dataSet.jobs, options.dataSet.progress, "field");
    Section{command, "Output"}.addText(
        "-o,--output", "FILE", options.output.file,
        "Settings file to write; an existing one is overwritten (default: -, standard output)");
    addFieldList(command, options.dataSet);
    addQuiet(command, options.output.quiet);
    addCustomDyes({command, "Channels"}, options.customDyes);
    addContrastOfEach(command, options.contrast);
    addPages(command, options.pages);
    command.get_option("--all-pages")->description("Measure every page");
}

void declare(CLI::App& command, ListOptions& options) {
    addDataSet(command, options.dataSet);
    Section{command, "Output"}
        .addText("--images", "OUT", options.images,
                 "Names of the images to render, with the placeholders of PATTERN: "
                 "'out/{field}.png'")
        ->required();
    addOutput(command, options.output, "List to write: a line of JSON for each field");
    addChannelFiles(command, options.channel);
    addProject(Section{command, "Pages"}, options.pages)
        ->description("Take files that differ in {z} alone as the z-slices of one field, which "
                      "'lumetra batch' then projects: give METHOD to it as well");
}

void declare(CLI::App& command, BatchOptions& options) {
    addDataSet(command, options.dataSet);
    addJobs(command, options.dataSet.jobs, options.dataSet.progress, "field");
    addOutput(command, options.image.output,
              "Output name with the placeholders of PATTERN: 'out/{field}.png'; creates folders. "
              "Needed with PATTERN, and not given with --fields");
    command.get_option("--output")->required(false);
    addFieldList(command, options.dataSet);
    addCompression(command, options.image.output.compression);
    addLog(command, options.log,
           "Append a line of JSON for each field: inputs, output, outcome, milliseconds");
    Section{command, "Output"}.addText(
        "--gallery", "FILE", options.gallery,
        "Make FILE as well, an HTML page as 'lumetra gallery' makes it, with the images at hand. "
        "With --shard, make the thumbnails alone, which 'lumetra gallery' then finds");
    addChannelFiles(command, options.channel);
    addHidden(command, options.channel.hidden);
    addPalette(command, options.channel.safePalette);
    addBlend(command, options.channel.blends);
    addContrastOfEach(command, options.image.contrast);
    Section{command, "Contrast"}
        .addText("--levels-over", "WHAT", options.levelsOver,
                 "Measure contrast limits over the whole 'dataset', in a first pass, so that "
                 "images can be compared, or over each 'field' (default: dataset)")
        ->check(
            require([](const std::string& what) { return what == "dataset" || what == "field"; },
                    "'dataset' or 'field'"));
    addPages(command, options.image.pages);
    addFraming(command, options.image.framing);
    addLegend(command, options.image.annotation);
    addScaleBar(command, options.image.annotation);
    const Section section{command, "Processing"};
    section.addText("--shard", "K/N", options.shard,
                    "Render only part K of N of the fields, in the order of their names; contrast "
                    "limits are still measured over all, or, with --fields, have to be known");
    section.addFlag("--resume", options.resume,
                    "Skip fields logged as done with the same inputs, options and version; redo "
                    "the rest, overwriting output");
    section.addFlag("--dry-run", options.dryRun,
                    "Render nothing; print the equivalent 'lumetra merge' command for each field. "
                    "With --log, fields that cannot be rendered are logged as failed");
}

void declare(CLI::App& command, GalleryOptions& options) {
    Section{command}
        .addText("DIR", "", options.folder,
                 "Folder of images, searched with its subfolders. If names hold wells, such as "
                 "B03, the page shows a plate layout")
        ->required();
    addOutput(command, options.output,
              "HTML page to write; thumbnails go to a folder beside it, for index.html to "
              "index_thumbnails",
              "Overwrite an existing page; thumbnails of unchanged images are kept");
    const Section page{command, "Page"};
    page.addTexts("--log", "FILE", options.logs,
                  "Log of 'lumetra batch' or 'lumetra merge': shows channels and contrast limits, "
                  "and marks failed fields with the reason. Run it in the folder of that run; "
                  "repeat it for more logs");
    page.addText("--settings", "FILE", options.settings,
                 "Show the channels and contrast limits of a file that 'lumetra levels' wrote");
    page.addText("--title", "TEXT", options.title, "Heading (default: name of the folder)");
    page.addFlag("--list", options.list, "Plain list instead of plate layout");
    addJobs(command, options.jobs, options.progress, "image");
}

Action printing(const QString& text) {
    return [text] {
        print(text);
        return done;
    };
}

/// The language: what a program with all of its commands understands.
class CommandLine {
public:
    CommandLine();
    Action parse(int argc, const char* const* argv);

private:
    /// @param example  Arguments; lines after the first are indented.
    template<class Options>
    void add(const std::string& name, const std::string& description, int (*run)(const Options&),
             const std::string& example) {
        auto options = std::make_shared<Options>();
        CLI::App& command = *program_.add_subcommand(name, description);
        declare(command, *options);
        command.footer("Example:\n  lumetra " + name + ' ' + example);
        command.callback(
            [this, run, options] { action_ = [run, options] { return run(*options); }; });
    }
    void addHelp();

    QString helpOf(const QString& command) const;
    QString hint() const;
    [[noreturn]] void refuseUnknown(const QString& kind, const std::string& written,
                                    const QStringList& names) const;
    void refuseUnknownArguments() const;
    QStringList commandNames() const;

    CLI::App program_{"Colour and merge the channels of fluorescence microscopy images", "lumetra"};
    Action action_;
};

CommandLine::CommandLine() {
    program_.footer("Example:\n"
                    "  lumetra merge nuclei.tif=DAPI actin.tif=FITC+3-2 -o cells.png\n\n"
                    "'lumetra help COMMAND' prints the options of a command.");
    program_.formatter(std::make_shared<HelpFormatter>());
    program_.set_version_flag("--version", "lumetra " LUMETRA_VERSION "\n", "Print the version");
    program_.set_help_flag("-h,--help", "Print this help");
    program_.require_subcommand(1);
    add("info", "Print pages, size, bit depth, range and percentiles of images", runInfo,
        "nuclei.tif actin.tif");
    add("dyes", "List dyes (fluorophores) by name or wavelength", runDyes, "alexa --emission 520");
    add("merge", "Merge channels into one image", runMerge,
        "nuclei.tif=DAPI actin.tif=FITC+3-2 -o cells.png");
    add("dye", "Tint one image with the colour of its dye", runDye,
        "nuclei.tif=DAPI -o nuclei.png --levels clip:0.5");
    add("pseudo", "Apply a LUT (colormap) to one image", runPseudo,
        "calcium.tif --lut magma --levels 200:4000 -o heat.png");
    add("levels", "Measure the contrast limits of a data set, for a settings file", runLevels,
        "'plate/{field}_{channel}.tif' --channel dapi=DAPI \\\n"
        "    --channel actin=FITC -o plate.json");
    add("list", "List the fields of a data set, for tasks that share them", runList,
        "'plate/{field}_{channel}.tif' --channel dapi=DAPI \\\n"
        "    --channel actin=FITC --images 'out/{field}.png' -o fields.jsonl");
    add("batch", "Render an image of each field of a data set", runBatch,
        "'plate/{field}_{channel}.tif' --channel dapi=DAPI \\\n"
        "    --channel actin=FITC+3-2 -o 'out/{field}.png'");
    add("gallery", "Make an HTML page of the images of a data set", runGallery,
        "out -o out/index.html --log plate.log");
    addHelp();
}

void CommandLine::addHelp() {
    auto name = std::make_shared<QString>();
    CLI::App& command = *program_.add_subcommand("help", "Print the help of a command");
    Section{command}.addText("COMMAND", "", *name,
                             "Name of a command; without it, the commands are listed");
    command.footer("Example:\n  lumetra help merge");
    command.callback([this, name] { action_ = printing(helpOf(*name)); });
}

QStringList CommandLine::commandNames() const {
    QStringList names;
    for (const CLI::App* command : program_.get_subcommands({}))
        names << text(command->get_name());
    return names;
}

QString CommandLine::helpOf(const QString& command) const {
    // The program's own function would print the help of the command that was called: help.
    if (command.isEmpty())
        return text(
            HelpFormatter().make_help(&program_, program_.get_name(), CLI::AppFormatMode::Normal));
    if (!commandNames().contains(command))
        refuseUnknown(QStringLiteral("command"), command.toStdString(), commandNames());
    return text(program_.get_subcommand(command.toStdString())->help(program_.get_name()));
}

/// Where to read on.
QString CommandLine::hint() const {
    const auto called = program_.get_subcommands();
    const std::string name = called.empty() ? "" : ' ' + called.front()->get_name();
    return QStringLiteral(" (see 'lumetra%1 --help')").arg(text(name));
}

void CommandLine::refuseUnknown(const QString& kind, const std::string& written,
                                const QStringList& names) const {
    const QString nearest = nearestName(text(written), names);
    throw UsageError(
        QStringLiteral("unknown %1 '%2'").arg(kind, text(written)) +
        (nearest.isEmpty() ? hint() : QStringLiteral("; did you mean '%1'?").arg(nearest)));
}

/// @throws UsageError for the first argument that the parser took for nothing.
void CommandLine::refuseUnknownArguments() const {
    std::vector<const CLI::App*> apps{&program_};
    for (const CLI::App* called : program_.get_subcommands())
        apps.push_back(called);
    for (const CLI::App* app : apps) {
        for (const std::string& argument : app->remaining()) {
            if (argument == "--")
                continue;
            if (argument.compare(0, 1, "-") == 0) {
                QStringList names;
                for (const CLI::Option* option : app->get_options())
                    if (!option->get_lnames().empty())
                        names << QStringLiteral("--") + text(option->get_lnames().front());
                refuseUnknown(QStringLiteral("option"), argument.substr(0, argument.find('=')),
                              names);
            }
            if (app == &program_)
                refuseUnknown(QStringLiteral("command"), argument, commandNames());
            throw UsageError(QStringLiteral("unexpected argument '%1'").arg(text(argument)) +
                             hint());
        }
    }
}

/// The parser's reason, in other words where its own are odd.
QString reasonOf(const CLI::ParseError& error) {
    QString reason = QString::fromUtf8(error.what());
    const QString option = reason.section(QStringLiteral(": "), 0, 0);
    if (reason.endsWith(QLatin1String(" missing")))
        return option + QStringLiteral(" needs a value");
    if (reason.contains(QLatin1String(": At Most 1 ")))
        return option + QStringLiteral(" is given more than once");
    if (reason.startsWith(QLatin1String("A subcommand")))
        return QStringLiteral("no command is given");
    return reason.replace(QLatin1String(" excludes "), QLatin1String(" cannot be combined with "));
}

Action CommandLine::parse(int argc, const char* const* argv) {
    try {
        program_.parse(argc, argv);
    } catch (const CLI::CallForVersion& version) {
        return printing(QString::fromUtf8(version.what()));
    } catch (const CLI::Success&) { // help
        return printing(text(program_.help()));
    } catch (const CLI::ParseError& error) {
        refuseUnknownArguments();
        throw UsageError(reasonOf(error) + hint());
    }
    return action_;
}

} // namespace

std::function<int()> parseCommandLine(int argc, const char* const* argv) {
    return CommandLine().parse(argc, argv);
}

} // namespace lumetra
