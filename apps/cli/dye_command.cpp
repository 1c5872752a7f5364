// lumetra dye: one image in the colour of a dye.

#include "apps/cli/commands.h"
#include "apps/cli/file_renderer.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/cli/slice_files.h"
#include "apps/common/channel_spec.h"
#include "apps/common/command_line.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/output_conflicts.h"
#include "render/image_colouring.h"

namespace lumetra {
namespace {

/// An RGB file, tinted as the library does it.
int dyeRgb(const DyeOptions& options, const ChannelFile& input, ChannelFiles& files) {
    if (!options.channel.settings.isEmpty())
        throw Error(
            QStringLiteral("%1: is an RGB image, and settings are for gray ones").arg(input.file));
    const RenderSpec rendering =
        withPixelSize(renderSpec({input.channel}, options.image, options.channel), files.file(0));
    const QString& output = options.image.output.file;
    const auto fonts = fontsFor(rendering);
    checkOutput(output, {input.file}, rendering.existing);
    const LevelPolicy& levels = rendering.channels[0].levels;
    if (levels.method == LevelPolicy::Method::fixed && !levels.known())
        throw UsageError(
            QStringLiteral("the contrast limits of an RGB image are whole numbers from "
                           "0 to 65535, not %1")
                .arg(toQt(levels.text())));
    Figure tinted;
    std::vector<ContrastLimits> limits;
    writeImages(output, rendering, files.images(), [&](int i) -> const Figure& {
        throwIfInterrupted();
        const Channel& channel = rendering.channels[0].channel;
        const cv::Mat image = files.any(0, i);
        limits = componentLimits(image, levels);
        tintImage(stretched(image, limits, channel.gamma), channel.colour, options.dominant,
                  tinted.image);
        finish(tinted, {channel}, rendering);
        return tinted;
    });
    reportImage(options.image.output, sizeText(tinted.image));
    if (levels.isMeasured() && files.images() == 1 && !options.image.output.quiet)
        printError(QStringLiteral("levels: red %1, green %2, blue %3")
                       .arg(levelsText(limits[2]), levelsText(limits[1]), levelsText(limits[0])));
    return done;
}

} // namespace

int runDye(const DyeOptions& options) {
    ChannelFile input = parseChannelFile(options.file, dyesWith(options.channel.customDyes));
    findSliceFiles(input);
    checkImageOutput(options.image.output.file, options.image.output.compression);
    ChannelFiles files({input}, options.image.pages);
    const bool isGray = files.rows(0) != nullptr; // which needs no reading
    if (!isGray && files.any(0, 0).channels() > 1)
        return dyeRgb(options, input, files);
    return runMerge({{options.file}, options.image, options.channel, {}, {}});
}

} // namespace lumetra
