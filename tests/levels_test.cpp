// Automatic levels of gray and of 24-bit buffers, against a histogram and a table spelt out.

#include "support.h"

#include <lumetra>

#include <array>

namespace {

using Bytes = std::vector<uchar>;
using Record = std::array<int, 6>;

Record values(const TS_LEVELS& l) {
    return {l.wLowB, l.wLowG, l.wLowR, l.wHighB, l.wHighG, l.wHighR};
}

Levels measureGray(uchar* buf, int w, int h) {
    unsigned short low = 7777, high = 8888;
    EXPECT_TRUE(Lumetra::AutoCountHistoGray(buf, w, h, &low, &high));
    return {low, high};
}

Record measureColour(uchar* buf, int w, int h) {
    TS_LEVELS levels = {1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(Lumetra::AutoCountHistoRGB24(buf, w, h, levels));
    return values(levels);
}

Record plainColourLevels(const Bytes& bytes) {
    Bytes channels[3];
    for (std::size_t i = 0; i < bytes.size(); ++i)
        channels[i % 3].push_back(bytes[i]);
    const auto [b, g, r] =
        std::array{plainLevels(channels[0]), plainLevels(channels[1]), plainLevels(channels[2])};
    return {b.first, g.first, r.first, b.second, g.second, r.second};
}

void stretch(Levels levels, uchar* buf, int w, int h) {
    EXPECT_TRUE(Lumetra::StretchLevelsGray(static_cast<ushort>(levels.first),
                                           static_cast<ushort>(levels.second), buf, w, h));
}

void stretch(const std::array<Levels, 3>& levels, uchar* buf, int w, int h) {
    const auto u16 = [](int level) { return static_cast<ushort>(level); };
    const auto [b, g, r] = levels;
    EXPECT_TRUE(Lumetra::StretchLevelsRGB24(
        {u16(b.first), u16(g.first), u16(r.first), u16(b.second), u16(g.second), u16(r.second)},
        buf, w, h));
}

Bytes noise(int length, int low = 0, int high = 256) {
    cv::Mat bytes(1, length, CV_8U);
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
    EXPECT_EQ(values(levels), (Record{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(Lumetra::StretchLevelsRGB24(levels, nullptr, 4, 4));
}

TEST(Levels, SizesBelowOneAreEmptyBuffers) {
    for (auto [w, h] : {std::pair{0, 5}, {5, 0}, {-1, 5}, {5, -3}, {-2, -3}, {INT_MIN, INT_MIN}}) {
        const Bytes before = noise(60, 50, 90);
        Bytes bytes = before;
        EXPECT_EQ(measureGray(bytes.data(), w, h), Levels(0, 255));
        EXPECT_EQ(measureColour(bytes.data(), w, h), (Record{0, 0, 0, 255, 255, 255}));
        stretch({60, 70}, bytes.data(), w, h);
        stretch({{{60, 70}, {60, 70}, {60, 70}}}, bytes.data(), w, h);
        EXPECT_EQ(bytes, before) << w << " x " << h;
    }
}

TEST(Levels, OneOrTwoValuesFixThem) {
    struct Case {
        Bytes samples;
        Levels levels;
        Bytes stretched;
    };
    for (const auto& [samples, levels, stretched] :
         {Case{{10, 200, 105}, {10, 200}, {0, 255, 128}}, Case{{100}, {99, 101}, {128}},
          Case{{0}, {0, 1}, {0}}, Case{{255}, {254, 255}, {255}},
          Case{{51, 50}, {49, 52}, {170, 85}}, Case{{1, 0}, {0, 2}, {128, 0}}}) {
        Bytes bytes = samples;
        EXPECT_EQ(measureGray(bytes.data(), static_cast<int>(bytes.size()), 1), levels);
        stretch(levels, bytes.data(), 1, static_cast<int>(bytes.size()));
        EXPECT_EQ(bytes, stretched);
    }
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            Bytes samples = {static_cast<uchar>(a), static_cast<uchar>(b)};
            ASSERT_EQ(measureGray(samples.data(), 1, 2), plainLevels(samples));
        }
}

TEST(Levels, OnePixelFixesALevelWhereverItLies) {
    for (std::size_t length : {3U, 45U, 300U, 4107U})
        for (std::size_t at = 0; at < length; at += 1 + length / 97) {
            Bytes bytes(length, 128);
            bytes[at] = 3;
            bytes[length - 1 - at] = 250;
            const int n = static_cast<int>(length);
            ASSERT_EQ(measureGray(bytes.data(), n, 1), plainLevels(bytes)) << at;
            ASSERT_EQ(measureColour(bytes.data(), 1, n / 3), plainColourLevels(bytes)) << at;
        }
}

TEST(Levels, EveryPairStretchesEveryValue) {
    std::array<uchar, 256> all = {};
    for (int black = 0; black <= 301; ++black)
        for (int white = 0; white <= 301; ++white) {
            const Levels levels = {black == 301 ? 65535 : black, white == 301 ? 65535 : white};
            for (int v = 0; v < 256; ++v)
                all[static_cast<std::size_t>(v)] = static_cast<uchar>(v);
            stretch(levels, all.data(), 16, 16);
            for (int v = 0; v < 256; ++v)
                ASSERT_EQ(all[static_cast<std::size_t>(v)], plainStretch(v, levels))
                    << v << " between " << levels.first << " and " << levels.second;
        }
}

/// Buffers of every length, at odd addresses and between other bytes, which stay as they are.
TEST(Levels, BuffersAreMeasuredAndStretchedToTheirEndsAndNoFurther) {
    const std::array<Levels, 3> trio = {{{60, 190}, {20, 100}, {130, 200}}};
    for (int length = 1; length <= 130; ++length)
        for (int samples : {1, 3})
            for (auto [w, h] : {std::pair{length, 1}, {1, length}}) {
                SCOPED_TRACE(testing::Message() << w << " x " << h << " x " << samples);
                Bytes whole = noise(samples * length + 66, 30, 220);
                whole[32] = whole[33 + static_cast<std::size_t>(samples * length)] = 1;
                Bytes before = whole;
                const Bytes inner(whole.begin() + 33, whole.end() - 33);
                uchar* const buf = whole.data() + 33;
                if (samples == 1)
                    EXPECT_TRUE(measureGray(buf, w, h) == plainLevels(inner));
                else
                    EXPECT_TRUE(measureColour(buf, w, h) == plainColourLevels(inner));
                EXPECT_EQ(whole, before);
                if (samples == 1)
                    stretch(trio[0], buf, w, h);
                else
                    stretch(trio, buf, w, h);
                for (std::size_t i = 0; i < inner.size(); ++i)
                    before[33 + i] =
                        static_cast<uchar>(plainStretch(inner[i], trio[samples == 1 ? 0 : i % 3]));
                EXPECT_EQ(whole, before);
            }
}

TEST(Levels, EachChannelIsStretchedByItsOwnPair) {
    const Levels pairs[] = {{0, 255}, {20, 220}, {200, 100}, {65535, 65535},
                            {0, 0},   {99, 101}, {254, 3}};
    for (Levels blue : pairs)
        for (Levels green : pairs)
            for (Levels red : pairs) {
                const std::array levels = {blue, green, red};
                Bytes bytes = noise(3 * 43 * 3), expected = bytes;
                stretch(levels, bytes.data(), 43, 3);
                for (std::size_t i = 0; i < expected.size(); ++i)
                    expected[i] = static_cast<uchar>(plainStretch(expected[i], levels[i % 3]));
                ASSERT_EQ(bytes, expected) << testing::PrintToString(levels);
            }
    Bytes ramps(3 * 300, 255);
    for (std::size_t i = 0; i < 300; ++i) {
        ramps[3 * i] = static_cast<uchar>(20 + i % 201);
        ramps[3 * i + 1] = static_cast<uchar>(i % 256);
    }
    EXPECT_EQ(measureColour(ramps.data(), 20, 15), (Record{20, 0, 254, 220, 255, 255}));
}

} // namespace
