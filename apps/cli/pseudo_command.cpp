// lumetra pseudo: one image through a table of colours.

#include "apps/cli/commands.h"
#include "apps/cli/figure.h"
#include "apps/cli/file_renderer.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/command_line.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/lut_file.h"
#include "apps/common/messages.h"
#include "imageio/output_conflicts.h"
#include "render/colormaps.h"
#include "render/image_colouring.h"

namespace lumetra {
namespace {

Colormap lutOf(const PseudoOptions& options) {
    const Colormap lut = namedLut(options.lut);
    return options.reversed ? reversed(lut) : lut;
}

/// Whether anything is asked for that an RGB image does not have.
bool needsGray(const PseudoOptions& options) {
    const ContrastOptions& contrast = options.image.contrast;
    return !contrast.levels.isEmpty() || (!contrast.gammas.empty() && contrast.gammas.front() != 1);
}

/// The pixel values that a LUT is spread over: one range for all pages; none where it is each
/// page's own.
std::optional<ContrastLimits> lutRange(const LevelPolicy& policy, ChannelFiles& files) {
    if (policy.method == LevelPolicy::Method::none)
        return std::nullopt;
    Histogram histogram;
    for (int i = 0; policy.isMeasured() && i < files.images(); ++i) {
        throwIfInterrupted();
        histogram.add(files.gray(0, i));
    }
    return levelsOf(histogram, policy);
}

} // namespace

int runPseudo(const PseudoOptions& options) {
    const ChannelFile input = parseFile(options.file);
    const QString& output = options.image.output.file;
    checkImageOutput(output, options.image.output.compression);
    const Colormap lut = lutOf(options);
    RenderSpec rendering = renderSpec({Channel()}, options.image, {});
    const auto fonts = fontsFor(rendering);
    checkOutput(output, {input.file}, rendering.existing);
    ChannelFiles files({input}, rendering.pages);
    rendering = withPixelSize(std::move(rendering), files.file(0));
    const bool isRgb = files.any(0, 0).channels() > 1;
    if (isRgb && needsGray(options))
        throw Error(QStringLiteral("%1: is an RGB image, and --levels and --gamma are for "
                                   "gray ones")
                        .arg(input.file));
    const LevelPolicy& levels = rendering.channels[0].levels;
    const double gamma = rendering.channels[0].channel.gamma;
    const auto range = isRgb ? std::nullopt : lutRange(levels, files);

    Renderer renderer;
    cv::Mat image;
    writeImages(output, rendering, files.images(), [&](int i) -> const cv::Mat& {
        throwIfInterrupted();
        if (isRgb) {
            colourImage(files.any(0, i), lut, image);
        } else {
            renderer.applyColormap(files.gray(0, i), range, gamma, lut, image);
        }
        finish(image, {}, rendering);
        return image;
    });
    reportImage(options.image.output, sizeText(image));
    if (range && levels.isMeasured() && !options.image.output.quiet)
        printError(QStringLiteral("levels: ") + levelsText(*range));
    return done;
}

} // namespace lumetra
