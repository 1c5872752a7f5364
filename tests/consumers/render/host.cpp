#include <lumetra_render.hpp>

/// Ends with 0 if a bright pixel has the colour of its dye.
int main() {
    const lumetra::DyeList dyes;
    lumetra::Channel channel;
    channel.colour = dyes.at("DAPI").colour;
    channel.levels = lumetra::ContrastLimits{100, 4000};
    cv::Mat image;
    lumetra::Renderer().render({cv::Mat(2, 3, CV_16UC1, cv::Scalar(4000))}, {channel}, image,
                               lumetra::PixelFormat::rgb);
    const auto* const pixel = image.ptr(1);
    return pixel[0] == channel.colour.red && pixel[1] == channel.colour.green &&
                   pixel[2] == channel.colour.blue
               ? 0
               : 1;
}
