#include "apps/lumetra/options.h"

#include "apps/common/failure.h"

#include <CLI/CLI.hpp>

#include <QLocale>

namespace apps {
namespace {

/// The value for channel `i` of values for all channels or for each.
template<class Value>
const Value& valueOf(const std::vector<Value>& values, std::size_t i) {
    return values[values.size() == 1 ? 0 : i];
}

template<class Value>
void requireOneOrEach(const std::vector<Value>& values, std::size_t channels, const char* option) {
    if (values.size() > 1 && values.size() != channels)
        throw BadUsage(QStringLiteral("%1 is given %2 times for %3 channels: give it once for all, "
                                      "or once for each in their order")
                           .arg(QLatin1String(option))
                           .arg(values.size())
                           .arg(channels));
}

} // namespace

void PictureOptions::addLevels(CLI::App& command) {
    command
        .add_option("--levels", levels_,
                    "What becomes black and white: 'auto' (the smallest and the largest sample), "
                    "'clip:PERCENT' (without that share of samples at each end; clip:0.1 by "
                    "default), 'LOW:HIGH' in samples, or 'none' (samples and their depth stay). "
                    "Once for all channels, or once for each in their order")
        ->type_name("LEVELS")
        ->allow_extra_args(false);
    command
        .add_option("--gamma", gammas_,
                    "Exponent of the levels: below 1 brightens. Once for all "
                    "channels, or once for each")
        ->type_name("NUMBER")
        ->allow_extra_args(false)
        ->check(CLI::Range(smallestGamma, largestGamma, "0.01 to 100"));
}

void PictureOptions::addPages(CLI::App& command) {
    auto* page = command.add_option("--page", page_, "The page of files of many, counted from 1")
                     ->type_name("N")
                     ->check(CLI::Range(1, 1000000000, "from 1"));
    command
        .add_flag("--all-pages", allPages_,
                  "All pages: a stack gives a stack (TIFF), under the same levels")
        ->excludes(page);
}

void PictureOptions::addSettings(CLI::App& command) {
    command
        .add_option("--settings", settings_,
                    "Channels and their levels from a file that 'lumetra levels' wrote")
        ->type_name("FILE");
}

void PictureOptions::addHidden(CLI::App& command) {
    command
        .add_option("--hide", hidden_,
                    "Leaves channel N out, counted from 1; its offset counts all the same")
        ->type_name("N")
        ->allow_extra_args(false);
}

void PictureOptions::addLegend(CLI::App& command) {
    command.add_flag("--legend", legend_, "Draws the names of the dyes in their colours");
}

void PictureOptions::addScaleBar(CLI::App& command) {
    auto* bar = command.add_option("--scale-bar", scaleBar_, "Draws a bar of so many micrometres")
                    ->type_name("UM")
                    ->check(CLI::Range(1e-9, 1e9, "above 0"));
    auto* size = command.add_option("--pixel-size", pixelSize_, "Micrometres a pixel")
                     ->type_name("UM")
                     ->check(CLI::Range(1e-9, 1e9, "above 0"));
    bar->needs(size);
    size->needs(bar);
}

void PictureOptions::addCustomDyes(CLI::App& command) {
    command.add_option("--custom", custom_, "A file of your own dyes, as the library keeps them")
        ->type_name("FILE");
}

void PictureOptions::addWriting(CLI::App& command) {
    command
        .add_option("-o,--output", output_,
                    "The picture to write: .png, .tif or .jpg; - is PNG on the standard output")
        ->type_name("OUT")
        ->required();
    command.add_flag("--overwrite", overwrite_, "Replaces an output that is there already");
    command.add_flag("--quiet", quiet_, "Says nothing unless something fails");
}

DyeList PictureOptions::dyes() const {
    DyeList list;
    if (!custom_.empty())
        list.add(readCustomDyes(text(custom_)));
    return list;
}

Pages PictureOptions::pages() const { return {page_, allPages_}; }

Annotation PictureOptions::annotation() const {
    Annotation annotation;
    annotation.legend = legend_;
    if (scaleBar_ > 0)
        annotation.scaleBar = ScaleBar{scaleBar_, pixelSize_};
    return annotation;
}

std::optional<Settings> PictureOptions::settings(const DyeList& dyes) const {
    if (settings_.empty())
        return std::nullopt;
    return readSettings(text(settings_), dyes);
}

std::vector<LevelPolicy> PictureOptions::applyTo(std::vector<Channel>& channels,
                                                 bool fromSettings) const {
    requireOneOrEach(levels_, channels.size(), "--levels");
    requireOneOrEach(gammas_, channels.size(), "--gamma");
    for (const int number : hidden_) {
        if (number < 1 || static_cast<std::size_t>(number) > channels.size())
            throw BadUsage(QStringLiteral("--hide %1: there are %2 channels")
                               .arg(number)
                               .arg(channels.size()));
        channels[static_cast<std::size_t>(number - 1)].visible = false;
    }
    std::vector<LevelPolicy> policies(channels.size());
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (!gammas_.empty())
            channels[i].gamma = valueOf(gammas_, i);
        if (!levels_.empty())
            policies[i] = parseLevelPolicy(text(valueOf(levels_, i)));
        else if (fromSettings)
            policies[i] = channels[i].levels
                              ? LevelPolicy{LevelPolicy::Method::given, 0, *channels[i].levels}
                              : LevelPolicy{LevelPolicy::Method::none, 0, {}};
        if (policies[i].method == LevelPolicy::Method::none && channels[i].gamma != 1)
            throw BadUsage(QStringLiteral("a gamma needs levels, and there are none"));
    }
    return policies;
}

QStringList PictureOptions::words() const {
    QStringList words;
    if (page_ > 0)
        words << QStringLiteral("--page") << QString::number(page_);
    if (allPages_)
        words << QStringLiteral("--all-pages");
    if (legend_)
        words << QStringLiteral("--legend");
    if (scaleBar_ > 0)
        words << QStringLiteral("--scale-bar")
              << QString::number(scaleBar_, 'g', QLocale::FloatingPointShortest)
              << QStringLiteral("--pixel-size")
              << QString::number(pixelSize_, 'g', QLocale::FloatingPointShortest);
    if (overwrite_)
        words << QStringLiteral("--overwrite");
    if (quiet_)
        words << QStringLiteral("--quiet");
    return words;
}

QString PictureOptions::outputFile() const { return text(output_); }

QStringList PictureOptions::filesRead() const { return {text(settings_), text(custom_)}; }

QStringList texts(const std::vector<std::string>& arguments) {
    QStringList list;
    for (const std::string& argument : arguments)
        list << text(argument);
    return list;
}

} // namespace apps
