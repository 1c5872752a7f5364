// Automatic levels of gray and of 24-bit buffers, against a histogram and a table spelt out.

#include "support.h"

#include <lumetra>

namespace {

/// A row of bytes, none of which is right before or behind the last ones in memory.
using Bytes = cv::Mat_<uchar>;

/// The levels of each channel: one of a gray buffer, or three.
using Channels = std::vector<Levels>;

Channels channelsOf(const TS_LEVELS& l) {
    return {{l.wLowB, l.wHighB}, {l.wLowG, l.wHighG}, {l.wLowR, l.wHighR}};
}

Channels measured(const Bytes& bytes, int w, int h, int channels) {
    unsigned short low = 7777, high = 8888;
    TS_LEVELS levels = {1, 2, 3, 4, 5, 6};
    if (channels == 3) {
        EXPECT_TRUE(Lumetra::AutoCountHistoRGB24(bytes.data, w, h, levels));
        return channelsOf(levels);
    }
    EXPECT_TRUE(Lumetra::AutoCountHistoGray(bytes.data, w, h, &low, &high));
    return {{low, high}};
}

Channels plainChannels(const Bytes& bytes, int channels) {
    std::vector<std::vector<uchar>> samples(static_cast<std::size_t>(channels));
    for (int i = 0; i < bytes.cols; ++i)
        samples[static_cast<std::size_t>(i % channels)].push_back(bytes(i));
    Channels levels;
    std::transform(samples.begin(), samples.end(), std::back_inserter(levels), plainLevels);
    return levels;
}

void stretch(const Channels& levels, const Bytes& bytes, int w, int h) {
    const auto black = [&](std::size_t c) { return static_cast<ushort>(levels[c].first); };
    const auto white = [&](std::size_t c) { return static_cast<ushort>(levels[c].second); };
    if (levels.size() == 1)
        EXPECT_TRUE(Lumetra::StretchLevelsGray(black(0), white(0), bytes.data, w, h));
    else
        EXPECT_TRUE(Lumetra::StretchLevelsRGB24(
            {black(0), black(1), black(2), white(0), white(1), white(2)}, bytes.data, w, h));
}

Bytes noise(int length, int low, int high) {
    Bytes bytes(1, length);
    cv::RNG(static_cast<uint64_t>(length)).fill(bytes, cv::RNG::UNIFORM, low, high);
    return bytes;
}

TEST(Levels, NullBufferIsReportedAndNothingIsWritten) {
    unsigned short low = 7777, high = 8888;
    EXPECT_FALSE(Lumetra::AutoCountHistoGray(nullptr, 4, 4, &low, &high));
    EXPECT_EQ(Levels(low, high), Levels(7777, 8888));
    EXPECT_FALSE(Lumetra::AutoCountHistoGray(nullptr, 4, 4, nullptr, nullptr));
    EXPECT_FALSE(Lumetra::StretchLevelsGray(0, 255, nullptr, 4, 4));
    TS_LEVELS levels = {1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(Lumetra::AutoCountHistoRGB24(nullptr, 4, 4, levels));
    EXPECT_EQ(channelsOf(levels), (Channels{{1, 4}, {2, 5}, {3, 6}}));
    EXPECT_FALSE(Lumetra::StretchLevelsRGB24(levels, nullptr, 4, 4));
}

TEST(Levels, SizesBelowOneAreEmptyBuffers) {
    for (auto [w, h] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -3}, {-2, -3}, {INT_MIN, INT_MIN}})
        for (std::size_t channels : {1U, 3U}) {
            const Bytes before = noise(60, 50, 90), bytes = before.clone();
            EXPECT_EQ(measured(bytes, w, h, static_cast<int>(channels)),
                      Channels(channels, {0, 255}));
            stretch(Channels(channels, {60, 70}), bytes, w, h);
            EXPECT_TRUE(sameImage(bytes, before)) << w << " x " << h;
        }
}

TEST(Levels, OneOrTwoValuesFixThem) {
    Bytes two(1, 2);
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            fillSamples(two, [=](int, int x, int) { return x == 0 ? a : b; });
            ASSERT_EQ(measured(two, 1, 2, 1), plainChannels(two, 1));
        }
}

TEST(Levels, OnePixelFixesALevelWhereverItLies) {
    for (int length : {3, 45, 300, 4107})
        for (int at = 0; at < length; at += 1 + length / 97)
            for (int channels : {1, 3}) {
                Bytes bytes(1, length, 128);
                bytes(at) = 3;
                bytes(length - 1 - at) = 250;
                ASSERT_EQ(measured(bytes, 1, length / channels, channels),
                          plainChannels(bytes, channels))
                    << at;
            }
}

TEST(Levels, EveryPairStretchesEveryValue) {
    Bytes bytes(1, 256);
    for (int black = 0; black <= 301; ++black)
        for (int white = 0; white <= 301; ++white) {
            const Levels levels = {black == 301 ? 65535 : black, white == 301 ? 65535 : white};
            fillSamples(bytes, [](int, int x, int) { return x; });
            stretch({levels}, bytes, 16, 16);
            for (int v = 0; v < 256; ++v)
                ASSERT_EQ(bytes(v), plainStretch(v, levels))
                    << v << " between " << levels.first << " and " << levels.second;
        }
}

TEST(Levels, BuffersOfEveryLengthAreMeasuredAndStretchedToTheirEnds) {
    for (int length = 1; length <= 130; ++length)
        for (const Channels& levels :
             {Channels{{60, 190}}, Channels{{60, 190}, {20, 100}, {130, 200}}})
            for (auto [w, h] : {std::pair{length, 1}, {1, length}}) {
                const int channels = static_cast<int>(levels.size());
                const Bytes before = noise(channels * length, 30, 220), bytes = before.clone();
                ASSERT_EQ(measured(bytes, w, h, channels), plainChannels(before, channels));
                ASSERT_TRUE(sameImage(bytes, before)) << w << " x " << h;
                stretch(levels, bytes, w, h);
                for (int i = 0; i < bytes.cols; ++i)
                    ASSERT_EQ(
                        bytes(i),
                        plainStretch(before(i), levels[static_cast<std::size_t>(i % channels)]))
                        << i << " of " << w << " x " << h;
            }
}

} // namespace
