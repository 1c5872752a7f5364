#include "rivals.h"

#include "render/colormaps.h"
#include "render/renderer.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <string>

namespace {

using lumetra::Blend;
using lumetra::Channel;
using lumetra::Colour;
using lumetra::ContrastLimits;
using lumetra::InstructionSet;
using lumetra::PixelFormat;
using lumetra::Renderer;

const std::vector<int> sides{16, 64, 512, 2048};

/// Channels with contrast limits for planes of a bit depth, in the colours of common dyes.
std::vector<Channel> channelsFor(int type, int count) {
    const Colour colours[] = {{0, 107, 255}, {29, 255, 0}, {255, 40, 9}, {200, 130, 150}};
    std::vector<Channel> channels;
    for (int i = 0; i < count; ++i) {
        Channel channel;
        channel.colour = colours[i];
        channel.levels = type == CV_8UC1 ? ContrastLimits{10, 180} : ContrastLimits{300, 9000 + i};
        channels.push_back(channel);
    }
    return channels;
}

std::vector<Channel> with(std::vector<Channel> channels, void (*change)(Channel&)) {
    std::for_each(channels.begin(), channels.end(), change);
    return channels;
}

std::vector<cv::Mat> planesOf(int type, int side, std::size_t count) {
    std::vector<cv::Mat> planes;
    for (std::size_t i = 0; i < count; ++i)
        planes.push_back(noise(type, side, static_cast<int>(i)));
    return planes;
}

Preparation render(int type, const std::vector<Channel>& channels, PixelFormat format,
                   InstructionSet set) {
    return [=](int side) {
        return [=, planes = planesOf(type, side, channels.size()), renderer = Renderer(set),
                image = cv::Mat()]() mutable { renderer.render(planes, channels, image, format); };
    };
}

cv::Mat throughLimits(const cv::Mat& plane, ContrastLimits limits) {
    cv::Mat displayed;
    const double slope = 255.0 / (limits.high - limits.low);
    plane.convertTo(displayed, CV_8U, slope, -slope * limits.low);
    return displayed;
}

cv::Mat inItsColour(const cv::Mat& gray, Colour colour) {
    cv::Mat tinted;
    std::vector<cv::Mat> components(3);
    gray.convertTo(components[0], -1, colour.blue / 255.0);
    gray.convertTo(components[1], -1, colour.green / 255.0);
    gray.convertTo(components[2], -1, colour.red / 255.0);
    cv::merge(components, tinted);
    return tinted;
}

void convertMergeAndAdd(const std::vector<cv::Mat>& planes, const std::vector<Channel>& channels,
                        PixelFormat format, cv::Mat& image) {
    cv::Mat sum;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        const auto& limits = channels[i].levels;
        const cv::Mat gray = limits ? throughLimits(planes[i], *limits) : planes[i];
        const cv::Mat tinted = inItsColour(gray, channels[i].colour);
        if (i == 0)
            sum = tinted;
        else
            cv::add(sum, tinted, sum);
    }
    if (format == PixelFormat::bgr)
        image = sum;
    else
        cv::cvtColor(sum, image,
                     format == PixelFormat::rgb ? cv::COLOR_BGR2RGB : cv::COLOR_BGR2BGRA);
}

Preparation openCvWay(int type, const std::vector<Channel>& channels, PixelFormat format) {
    return [=](int side) {
        return [=, planes = planesOf(type, side, channels.size()), image = cv::Mat()]() mutable {
            convertMergeAndAdd(planes, channels, format, image);
        };
    };
}

Preparation convertAndMap(int type, const Channel& channel) {
    return [=](int side) {
        return [=, plane = noise(type, side), image = cv::Mat()]() mutable {
            cv::applyColorMap(throughLimits(plane, *channel.levels), image, cv::COLORMAP_VIRIDIS);
            cv::cvtColor(image, image, cv::COLOR_BGR2BGRA);
        };
    };
}

void compareRender(const std::string& name, int type, const std::vector<Channel>& channels,
                   PixelFormat format, const Preparation& openCv, InstructionSet set) {
    const bool isDeep = type == CV_16UC1 && !channels.front().levels;
    const double pixel = format == PixelFormat::bgra ? 4 : isDeep ? 6 : 3;
    const auto planes = static_cast<double>(channels.size() * CV_ELEM_SIZE(type));
    compare({name, planes + pixel, {0, 1}, render(type, channels, format, set), openCv, sides});
}

} // namespace

void registerRender() {
    const InstructionSet fastest = lumetra::instructionSets().back();
    const auto add = [&](const char* name, int type, const std::vector<Channel>& channels,
                         PixelFormat format) {
        compareRender(name, type, channels, format, openCvWay(type, channels, format), fastest);
    };
    const auto three8 = channelsFor(CV_8UC1, 3), three16 = channelsFor(CV_16UC1, 3);
    add("Render 1 x 16 bits, BGRA", CV_16UC1, channelsFor(CV_16UC1, 1), PixelFormat::bgra);
    add("Render 3 x 16 bits, BGRA", CV_16UC1, three16, PixelFormat::bgra);
    add("Render 4 x 16 bits, BGRA", CV_16UC1, channelsFor(CV_16UC1, 4), PixelFormat::bgra);
    add("Render 3 x 16 bits, BGR", CV_16UC1, three16, PixelFormat::bgr);
    add("Render 3 x 16 bits, RGB", CV_16UC1, three16, PixelFormat::rgb);
    add("Render 1 x 8 bits, BGR", CV_8UC1, channelsFor(CV_8UC1, 1), PixelFormat::bgr);
    add("Render 3 x 8 bits, BGRA", CV_8UC1, three8, PixelFormat::bgra);
    add("Render 3 x 16 bits kept, BGR", CV_16UC1, with(three16, [](Channel& c) { c.levels = {}; }),
        PixelFormat::bgr);

    const auto addAlone = [&](const char* name, const std::vector<Channel>& channels) {
        compareRender(name, CV_16UC1, channels, PixelFormat::bgra, {}, fastest);
    };
    addAlone("Render 3 x 16 bits, gamma, BGRA", with(three16, [](Channel& c) { c.gamma = 0.7; }));
    addAlone("Render 3 x 16 bits, screen, BGRA",
             with(three16, [](Channel& c) { c.blend = Blend::screen; }));

    const auto mapped = with(channelsFor(CV_16UC1, 1),
                             [](Channel& c) { c.colormap = lumetra::findColormap("viridis"); });
    compareRender("Render 1 x 16 bits, LUT, BGRA", CV_16UC1, mapped, PixelFormat::bgra,
                  convertAndMap(CV_16UC1, mapped.front()), fastest);

    for (const InstructionSet set : lumetra::instructionSets()) {
        const char* const names[] = {"baseline", "AVX2", "AVX-512"};
        compareRender(std::string("Render 3 x 16 bits, BGRA, ") + names[static_cast<int>(set)],
                      CV_16UC1, three16, PixelFormat::bgra, {}, set);
    }
}
