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

void finish(Figure& figure, const std::vector<Channel>& channels, const RenderSpec& rendering) {
    const cv::Size size = figure.image.size();
    const double columns = rendering.framing.columnsInPixel(size);
    Annotation annotation = rendering.annotation;
    if (annotation.scaleBar)
        annotation.scaleBar->pixelSize *= columns;
    figure.pixelSize = rendering.pixelSize;
    if (!rendering.framing.keepsShape(size))
        figure.pixelSize.reset();
    else if (figure.pixelSize)
        *figure.pixelSize *= columns;
    frame(figure.image, rendering.framing);
    annotate(figure.image, channels, annotation);
}

void renderFigure(Renderer& renderer, const std::vector<cv::Mat>& planes,
                  const std::vector<Channel>& channels, const RenderSpec& rendering,
                  Figure& figure) {
    renderer.render(planes, channels, figure.image);
    finish(figure, channels, rendering);
    if (!rendering.panels)
        return;
    std::vector<cv::Mat> panels;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (channels[i].visible)
            panels.push_back(panelOf(renderer, planes, channels, i, rendering));
    if (!rendering.annotation.legend)
        drawName(figure.image, QStringLiteral("Merge"), {255, 255, 255});
    panels.push_back(figure.image);
    cv::Mat row;
    setInRow(panels, panelGap(figure.image.cols), row);
    figure.image = row;
}

} // namespace lumetra
