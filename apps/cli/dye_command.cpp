// lumetra dye: one image in the colour of a dye.

#include "apps/cli/commands.h"
#include "apps/cli/figure.h"
#include "apps/cli/file_renderer.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
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
    cv::Mat tinted;
    writeImages(output, rendering, files.images(), [&](int i) -> const cv::Mat& {
        throwIfInterrupted();
        const auto& [channel, levels] = rendering.channels[0];
        const cv::Mat image = stretched(files.any(0, i), levels, channel.gamma);
        tintImage(image, channel.colour, options.dominant, tinted);
        finish(tinted, {channel}, rendering);
        return tinted;
    });
    reportImage(options.image.output, sizeText(tinted));
    return done;
}

} // namespace

int runDye(const DyeOptions& options) {
    const ChannelFile input = parseChannelFile(options.file, dyesWith(options.channel.customDyes));
    checkImageOutput(options.image.output.file, options.image.output.compression);
    ChannelFiles files({input}, options.image.pages);
    if (files.any(0, 0).channels() > 1)
        return dyeRgb(options, input, files);
    return runMerge({{options.file}, options.image, options.channel, {}, {}});
}

} // namespace lumetra
