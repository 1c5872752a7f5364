#include "apps/cli/render_spec.h"

#include "apps/common/custom_dyes.h"
#include "apps/common/error.h"
#include "apps/common/text.h"
#include "render/palette.h"
#include "render/render_error.h"

#include <algorithm>
#include <utility>

namespace lumetra {
namespace {

/// The value for channel `i` of values for all channels or for each.
template<class Values>
auto valueOf(const Values& values, std::size_t i) {
    return values[static_cast<decltype(values.size())>(values.size() == 1 ? 0 : i)];
}

template<class Values>
void requireOneOrEach(const Values& values, std::size_t channels, const char* option) {
    const auto count = static_cast<std::size_t>(values.size());
    if (count > 1 && count != channels)
        throw UsageError(QStringLiteral("%1 is given %2 times for %3: give it once for all, "
                                        "or once for each in their order")
                             .arg(QLatin1String(option))
                             .arg(count)
                             .arg(plural(channels, QStringLiteral("channel"))));
}

LevelPolicy ownLevels(const Channel& channel) {
    if (channel.valueLimits)
        return LevelPolicy::fixedTo(*channel.valueLimits);
    return channel.levels ? LevelPolicy::fixedTo(*channel.levels)
                          : LevelPolicy{LevelPolicy::Method::none, 0, {}};
}

/// What a text of the user's is; one that cannot be understood is bad usage.
template<class Value>
Value parsed(const QString& text, Value (*parse)(std::string_view)) {
    try {
        return parse(toUtf8(text));
    } catch (const RenderError& error) {
        throw UsageError(toQt(error.what()));
    }
}

} // namespace

Channel ChannelSpec::channelWithKnownLevels() const {
    Channel known = channel;
    known.levels = levels.known();
    return known;
}

bool hasMeasuredLevels(const std::vector<ChannelSpec>& channels) {
    return std::any_of(channels.begin(), channels.end(),
                       [](const ChannelSpec& channel) { return channel.levels.isMeasured(); });
}

Existing existingOf(const OutputOptions& output) {
    return output.overwrite ? Existing::replace : Existing::keep;
}

DyeList dyesWith(const QString& customDyes) {
    DyeList list;
    if (!customDyes.isEmpty())
        list.add(asDyes(readCustomDyes(customDyes)));
    return list;
}

std::optional<Settings> settingsOf(const ChannelOptions& options, const DyeList& dyes) {
    if (options.settings.isEmpty())
        return std::nullopt;
    return readSettings(options.settings, dyes);
}

Annotation annotationOf(const AnnotationOptions& options) {
    Annotation annotation;
    annotation.legend = options.legend;
    if (options.scaleBar > 0)
        annotation.scaleBar = ScaleBar{options.scaleBar, options.pixelSize};
    return annotation;
}

Framing framingOf(const FramingOptions& options) {
    Framing framing;
    if (!options.crop.isEmpty())
        framing.crop = parsed(options.crop, parseCrop);
    if (!options.resize.isEmpty())
        framing.size = parsed(options.resize, parseTargetSize);
    return framing;
}

std::optional<PanelColours> panelsOf(const MergeOptions& options) {
    if (options.panels.empty())
        return std::nullopt;
    return parsed(toQt(options.panels), parsePanelColours);
}

std::vector<ChannelSpec> channelSpecs(const std::vector<Channel>& channels,
                                      const ContrastOptions& contrast,
                                      const std::vector<int>& hidden, bool fromSettings) {
    requireOneOrEach(contrast.levels, channels.size(), "--levels");
    requireOneOrEach(contrast.gammas, channels.size(), "--gamma");
    std::vector<ChannelSpec> all;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        ChannelSpec one{channels[i], {}};
        if (!contrast.gammas.empty())
            one.channel.gamma = valueOf(contrast.gammas, i);
        if (!contrast.levels.isEmpty()) {
            one.levels = parsed(valueOf(contrast.levels, i), parseLevelPolicy);
            one.channel.levelsBits = 0; // the user's limits are for whatever the file holds
            one.channel.valueLimits.reset();
        } else if (fromSettings)
            one.levels = ownLevels(one.channel);
        if (one.levels.method == LevelPolicy::Method::none && one.channel.gamma != 1)
            throw UsageError(
                QStringLiteral("a gamma needs contrast limits (--levels), and there are "
                               "none"));
        all.push_back(one);
    }
    for (const int number : hidden) {
        if (number < 1 || static_cast<std::size_t>(number) > all.size())
            throw UsageError(QStringLiteral("--hide %1: the image has %2")
                                 .arg(number)
                                 .arg(plural(all.size(), QStringLiteral("channel"))));
        all[static_cast<std::size_t>(number - 1)].channel.visible = false;
    }
    return all;
}

RenderSpec renderSpec(const std::vector<Channel>& channels, const ImageOptions& image,
                      const ChannelOptions& options) {
    requireOneOrEach(options.blends, channels.size(), "--blend");
    std::vector<ChannelSpec> all =
        channelSpecs(channels, image.contrast, options.hidden, !options.settings.isEmpty());
    for (std::size_t i = 0; i < all.size() && !options.blends.isEmpty(); ++i)
        all[i].channel.blend = parsed(valueOf(options.blends, i), parseBlend);
    if (options.safePalette) {
        const std::vector<Colour> colours = safePalette(all.size());
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i].channel.colour = colours[i];
    }
    const double given = image.annotation.pixelSize;
    const auto pixelSize = given > 0 ? std::optional(given) : std::nullopt;
    return {std::move(all),
            image.pages,
            framingOf(image.framing),
            annotationOf(image.annotation),
            pixelSize,
            existingOf(image.output),
            std::nullopt,
            options.settings,
            tiffCompressionNamed(image.output.compression).value_or(TiffCompression::lzw),
            image.jobs};
}

} // namespace lumetra
