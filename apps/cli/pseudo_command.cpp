// lumetra pseudo: one image through a table of colours.

#include "apps/cli/commands.h"
#include "apps/cli/file_renderer.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/lut_file.h"
#include "imageio/output_conflicts.h"
#include "imageio/output_format.h"
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
    return !options.range.isEmpty() || !contrast.levels.isEmpty() ||
           (!contrast.gammas.empty() && contrast.gammas.front() != 1);
}

/// The pixel values that a LUT is spread over: one range for all pages; none where it is each
/// page's own.
std::optional<ContrastLimits> lutRange(const PseudoOptions& options, const LevelPolicy& levels,
                                       const ChannelFiles& files) {
    if (!options.range.isEmpty())
        return limitsOf(options.range);
    // All values unless the user says otherwise: a LUT is for measuring by eye.
    const LevelPolicy policy = options.image.contrast.levels.isEmpty()
                                   ? LevelPolicy{LevelPolicy::Method::clip, 0, {}}
                                   : levels;
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
    static_cast<void>(outputFormat(output)); // before any work
    const Colormap lut = lutOf(options);
    const RenderSpec rendering = renderSpec({Channel()}, options.image, {});
    const auto fonts = fontsFor(rendering.annotation);
    checkOutput(output, {input.file}, rendering.existing);
    const ChannelFiles files({input}, rendering.pages);
    const bool isRgb = files.any(0, 0).channels() > 1;
    if (isRgb && needsGray(options))
        throw Error(QStringLiteral("%1: is an RGB image, and --range, --levels and --gamma are "
                                   "for gray ones")
                        .arg(input.file));
    const auto range =
        isRgb ? std::nullopt : lutRange(options, rendering.channels[0].levels, files);

    Renderer renderer;
    cv::Mat image;
    writeImages(output, rendering.existing, files.images(), [&](int i) -> const cv::Mat& {
        throwIfInterrupted();
        if (isRgb) {
            colourImage(files.any(0, i), lut, image);
        } else {
            renderer.applyColormap(files.gray(0, i), range, rendering.channels[0].channel.gamma,
                                   lut, image);
        }
        annotate(image, {}, rendering.annotation);
        return image;
    });
    reportImage(options.image.output, sizeText(image));
    return done;
}

} // namespace lumetra
