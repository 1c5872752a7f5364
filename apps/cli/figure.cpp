#include "apps/cli/figure.h"

#include "render/panels.h"

namespace lumetra {
namespace {

/// As `Framing::apply`, in place.
void frame(cv::Mat& image, const Framing& framing) {
    if (framing.isEmpty())
        return;
    cv::Mat framed;
    framing.apply(image, framed);
    image = framed;
}

cv::Mat panelOf(Renderer& renderer, const std::vector<cv::Mat>& planes,
                const std::vector<Channel>& channels, std::size_t number,
                const RenderSpec& rendering) {
    const std::vector<Channel> alone = channelAlone(channels, number, *rendering.panels);
    cv::Mat panel;
    renderer.render(planes, alone, panel);
    frame(panel, rendering.framing);
    drawName(panel, panelName(alone[number]), alone[number].colour);
    return panel;
}

} // namespace

void finish(cv::Mat& image, const std::vector<Channel>& channels, const RenderSpec& rendering) {
    Annotation annotation = rendering.annotation;
    if (annotation.scaleBar)
        annotation.scaleBar->pixelSize *= rendering.framing.columnsInPixel(image.size());
    frame(image, rendering.framing);
    annotate(image, channels, annotation);
}

void renderFigure(Renderer& renderer, const std::vector<cv::Mat>& planes,
                  const std::vector<Channel>& channels, const RenderSpec& rendering,
                  cv::Mat& image) {
    renderer.render(planes, channels, image);
    finish(image, channels, rendering);
    if (!rendering.panels)
        return;
    std::vector<cv::Mat> panels;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (channels[i].visible)
            panels.push_back(panelOf(renderer, planes, channels, i, rendering));
    if (!rendering.annotation.legend)
        drawName(image, QStringLiteral("Merge"), {255, 255, 255});
    panels.push_back(image);
    cv::Mat row;
    setInRow(panels, panelGap(image.cols), row);
    image = row;
}

} // namespace lumetra
