// lumetra pseudo: one image through a table of colours.

#include "apps/cli/channel_levels.h"
#include "apps/cli/commands.h"
#include "apps/cli/file_renderer.h"
#include "apps/cli/fonts.h"
#include "apps/cli/print.h"
#include "apps/cli/signals.h"
#include "apps/cli/slice_files.h"
#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/image_size.h"
#include "apps/common/lut_file.h"
#include "apps/common/messages.h"
#include "apps/common/text.h"
#include "imageio/output_conflicts.h"
#include "render/colormaps.h"
#include "render/image_colouring.h"

#include <opencv2/core.hpp>

#include <algorithm>

namespace lumetra {
namespace {

const QString ownLut = QStringLiteral("own");

/// The LUT that a file has for a channel.
/// @throws Error if it has none.
Colormap lutOfFile(const ImageFile& file, int channel) {
    const auto& channels = file.metadata().channels;
    const auto index = static_cast<std::size_t>(channel - 1);
    Colormap lut{};
    if (index >= channels.size() || channels[index].lut.size() != lut.size())
        throw Error(QStringLiteral("%1: has no LUT of its own; give --lut NAME").arg(file.file()));
    std::transform(channels[index].lut.begin(), channels[index].lut.end(), lut.begin(),
                   [](std::uint32_t rgb) { return toColour(rgb); });
    return lut;
}

Colormap lutOf(const PseudoOptions& options, const ImageFile& file, const InputFile& input) {
    const Colormap lut = options.lut == ownLut ? lutOfFile(file, std::max(input.channels.first, 1))
                                               : namedLut(options.lut);
    return options.reversed ? reversed(lut) : lut;
}

/// Gives each value of an 8-bit plane its colour.
void applyPalette(const cv::Mat& plane, const Colormap& palette, cv::Mat& image) {
    image.create(plane.size(), CV_8UC3);
    std::transform(plane.begin<uchar>(), plane.end<uchar>(), image.begin<cv::Vec3b>(),
                   [&](uchar value) {
                       const auto [red, green, blue] = palette[value];
                       return cv::Vec3b(blue, green, red);
                   });
}

/// Whether anything is asked for that an RGB image does not have.
bool needsGray(const PseudoOptions& options) {
    const ContrastOptions& contrast = options.image.contrast;
    return !contrast.levels.isEmpty() || (!contrast.gammas.empty() && contrast.gammas.front() != 1);
}

} // namespace

int runPseudo(const PseudoOptions& options) {
    InputFile input = parseFile(options.file);
    findSliceFiles(input);
    const QString& output = options.image.output.file;
    checkImageOutput(output, options.image.output.compression);
    if (options.lut != ownLut)
        static_cast<void>(namedLut(options.lut)); // before any work
    RenderSpec rendering = renderSpec({Channel()}, options.image, {});
    const auto fonts = fontsFor(rendering);
    checkOutput(output, inputNames(input), rendering.existing);
    ChannelFiles files({input}, rendering.pages);
    const Colormap lut = lutOf(options, files.file(0), input);
    rendering = withPixelSize(std::move(rendering), files.file(0));
    cv::Mat first = files.any(0, 0);
    const bool isRgb = first.channels() > 1 && options.lut != ownLut;
    if (isRgb && needsGray(options))
        throw Error(QStringLiteral("%1: is an RGB image, and --levels and --gamma are for "
                                   "gray ones")
                        .arg(input.file));
    // The indices of a palette have the colours that the file gives them.
    const bool isPalette = options.lut == ownLut && !needsGray(options) && first.depth() == CV_8U;
    const ChannelSpec& shown = rendering.channels[0];
    Channel channel;
    if (!isRgb) {
        first = files.gray(0, 0);
        if (!isPalette)
            channel = channelWithLimits(files, 0, shown, first, {});
    }

    Renderer renderer;
    Figure figure;
    writeImages(output, rendering, files.images(), [&](int i) -> const Figure& {
        throwIfInterrupted();
        if (isRgb) {
            colourImage(files.any(0, i), lut, figure.image);
        } else {
            const cv::Mat plane = files.images() == 1 ? first : files.gray(0, i);
            if (isPalette)
                applyPalette(plane, lut, figure.image);
            else
                renderer.applyColormap(plane, channel.levels, channel.gamma, lut, figure.image);
        }
        finish(figure, {}, rendering);
        return figure;
    });
    reportImage(options.image.output, sizeText(figure.image));
    if (!isRgb && !isPalette && shown.levels.isMeasured() && !options.image.output.quiet)
        printError(QStringLiteral("levels: ") + levelsText(channel));
    return done;
}

} // namespace lumetra
