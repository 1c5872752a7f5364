// Colouring spelt out pixel by pixel.
#pragma once

#include "support.h"

#include <lumetra>

#include <array>
#include <functional>

struct Tint {
    int red, green, blue;
};

inline std::ostream& operator<<(std::ostream& out, Tint tint) {
    return out << "(" << tint.red << ", " << tint.green << ", " << tint.blue << ")";
}

struct Options {
    bool autoLevels, dominantChannel;
};

/// Colours that tell their slot: slot i is i, 255 - i and i × 7 mod 256 in red, green and blue.
inline QVector<QColor> rampOf(int count) {
    QVector<QColor> colours;
    for (int i = 0; i < count; ++i)
        colours.append(QColor(i % 256, 255 - i % 256, i * 7 % 256));
    return colours;
}

/// Whatever colours an image.
using Operation = std::function<void(cv::Mat& src, cv::Mat& dst)>;

inline std::vector<Operation> allOperations() {
    std::vector<Operation> operations;
    for (bool autoLevels : {false, true})
        for (bool dominantChannel : {false, true})
            operations.emplace_back([=](cv::Mat& src, cv::Mat& dst) {
                Lumetra::Dye(src, dst, 200, 255, 31, autoLevels, dominantChannel);
            });
    operations.emplace_back(
        [ramp = rampOf(255)](cv::Mat& src, cv::Mat& dst) { Lumetra::Pseudo(src, dst, ramp); });
    return operations;
}

inline std::vector<uchar> channelOf(const cv::Mat& image, int channel) {
    std::vector<uchar> samples;
    for (int y = 0; y < image.rows; ++y)
        for (int x = 0; x < image.cols; ++x)
            samples.push_back(static_cast<uchar>(sampleAt(image, y, x, channel)));
    return samples;
}

inline void plainAutoLevels(cv::Mat& image, Tint tint) {
    Levels levels[3];
    for (int c = 0; c < 3; ++c) {
        auto& [black, white] = levels[c] = plainLevels(channelOf(image, c));
        black = std::min(white - 1, black + (tint.red == 255 ? (c == 0 ? 2 : 3) : 0));
        black = std::min(white - 1, black + (tint.green == 255 ? (c == 1 ? 2 : 3) : 0));
        black = std::min(white - 1, black + (tint.blue == 255 ? (c == 2 ? 2 : 3) : 0));
    }
    fillSamples(image, [&](int y, int x, int c) {
        return plainStretch(sampleAt(image, y, x, c), levels[c]);
    });
}

inline void plainDominantChannel(cv::Mat& image) {
    uint64_t total[3] = {};
    for (int c = 0; c < 3; ++c)
        for (uchar sample : channelOf(image, c))
            total[c] += sample;
    int dominant = total[1] > total[0] ? 1 : 0;
    if (total[2] > total[0] && total[2] > total[1])
        dominant = 2;
    const cv::Mat before = image.clone();
    fillSamples(image, [&](int y, int x, int) { return sampleAt(before, y, x, dominant); });
}

inline cv::Mat plainDyed(const cv::Mat& source, Tint tint, Options options) {
    const cv::Mat in = reducedForColouring(source);
    const int last = in.channels() - 1;
    const int component[] = {tint.blue, tint.green, tint.red};
    cv::Mat out(in.size(), CV_MAKETYPE(in.depth(), 3));
    if (in.depth() == CV_16U) {
        fillSamples(out, [&](int y, int x, int c) {
            const int v = std::max(
                {sampleAt(in, y, x, 0), sampleAt(in, y, x, last / 2), sampleAt(in, y, x, last)});
            return static_cast<uint32_t>(v) * static_cast<uint32_t>(component[c]) >> 8;
        });
        return out;
    }
    fillSamples(out, [&](int y, int x, int c) { return sampleAt(in, y, x, std::min(c, last)); });
    if (options.autoLevels)
        plainAutoLevels(out, tint);
    if (options.dominantChannel)
        plainDominantChannel(out);
    fillSamples(out, [&](int y, int x, int c) {
        const auto product =
            static_cast<uint32_t>(sampleAt(out, y, x, c)) * static_cast<uint32_t>(component[c]);
        return static_cast<int32_t>(product) / 255;
    });
    return out;
}

/// A sum of weighted samples. No compiler can join a product with the sum, which would round less.
inline int plainLuma(int blue, int green, int red) {
    const volatile double products[] = {blue * 0.3, green * 0.59, red * 0.11};
    return static_cast<int>((products[0] + products[1]) + products[2]);
}

inline cv::Mat plainColoured(const cv::Mat& source, const QVector<QColor>& colours) {
    const cv::Mat in = reducedForColouring(source);
    double min = 0, max = 0;
    cv::minMaxLoc(in.reshape(1), &min, &max);
    const int n = static_cast<int>(max - min + 1.0);
    const double q = 255.0 / n;
    const bool deep = in.depth() == CV_16U;
    cv::Mat out(in.size(), CV_MAKETYPE(in.depth(), 3));
    fillSamples(out, [&](int y, int x, int c) {
        const auto b = [&](int channel) {
            return sampleAt(in, y, x, std::min(channel, in.channels() - 1));
        };
        const int luma =
            deep ? (38 * b(0) + 75 * b(1) + 15 * b(2)) >> 7 : plainLuma(b(0), b(1), b(2));
        const int k = std::max(static_cast<int>(luma - min), 0);
        const int slot = static_cast<int>(k * q);
        const QColor colour = slot < colours.size() ? colours[slot] : QColor(0, 0, 0);
        const int component[] = {colour.blue(), colour.green(), colour.red()};
        return deep ? component[c] * 256 : component[c];
    });
    return out;
}
