#include "render/lumetra_render.h"

#include "render/colormaps.h"
#include "render/dyes.h"
#include "render/histogram.h"
#include "render/projection.h"
#include "render/renderer.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

namespace lumetra {
namespace {

lumetra_plane planeOf(const cv::Mat& plane) {
    return {sizeof(lumetra_plane),
            plane.data,
            static_cast<ptrdiff_t>(plane.step),
            plane.cols,
            plane.rows,
            plane.depth() == CV_8U ? 8 : 16};
}

lumetra_image imageOf(const cv::Mat& image, int format) {
    return {sizeof(lumetra_image),
            image.data,
            static_cast<ptrdiff_t>(image.step),
            image.cols,
            image.rows,
            image.depth() == CV_8U ? 8 : 16,
            format};
}

lumetra_channel channelOf(const Channel& channel) {
    lumetra_channel c{};
    c.struct_size = sizeof c;
    c.red = channel.colour.red;
    c.green = channel.colour.green;
    c.blue = channel.colour.blue;
    c.offset_x = channel.offset.x;
    c.offset_y = channel.offset.y;
    c.has_limits = channel.levels.has_value();
    c.low = channel.levels ? channel.levels->low : 0;
    c.high = channel.levels ? channel.levels->high : 0;
    c.hidden = !channel.visible;
    c.gamma = channel.gamma;
    c.blend = static_cast<int32_t>(channel.blend);
    return c;
}

/// The reason that a call gives; none where it succeeds.
template<class... Parameters, class... Arguments>
std::string answer(int (*call)(Parameters...), Arguments... arguments) {
    char reason[200] = "";
    const int result = call(arguments..., reason, sizeof reason);
    EXPECT_EQ(result == LUMETRA_OK, reason[0] == '\0') << reason;
    return reason;
}

std::size_t rowBytes(const cv::Mat& plane) {
    return static_cast<std::size_t>(plane.cols) * plane.elemSize();
}

/// The rows of a matrix from the last to the first, in memory that begins at an odd address.
struct UpsideDown {
    explicit UpsideDown(const cv::Mat& plane)
        : step(static_cast<ptrdiff_t>(rowBytes(plane)) + 3),
          bytes(static_cast<std::size_t>(step * plane.rows) + 1) {
        for (int y = 0; y < plane.rows; ++y)
            std::memcpy(row(plane.rows, y), plane.ptr(y), rowBytes(plane));
    }
    unsigned char* row(int rows, int y) { return bytes.data() + 1 + (rows - 1 - y) * step; }

    ptrdiff_t step;
    std::vector<unsigned char> bytes;
};

const Channel plainRed{"", "", {255, 0, 0}, {}, ContrastLimits{5, 200}, 1, true};

TEST(CInterface, RendersTheSameBytes) {
    const std::vector<cv::Mat> planes{noisePlane({61, 47}, CV_16UC1, 1),
                                      noisePlane({61, 47}, CV_8UC1, 2)};
    Channel first{"", "", {0, 107, 255}, {3, -2}, ContrastLimits{99, 60000}, 0.5, true};
    Channel second{"", "", {255, 40, 9}, {0, 0}, {}, 1, true};
    struct Case {
        int format;
        Blend blend;
        bool keeps16;
    };
    for (const Case& c :
         {Case{LUMETRA_BGR, Blend::screen, false}, Case{LUMETRA_RGB, Blend::darkest, false},
          Case{LUMETRA_BGRA, Blend::add, false}, Case{LUMETRA_BGR, Blend::screen, true},
          Case{LUMETRA_RGB, Blend::darkest, true}}) {
        if (c.keeps16)
            first.levels.reset(), first.gamma = 1;
        second.blend = c.blend;
        std::vector<lumetra_plane> given{planeOf(planes[0]), planeOf(planes[1])};
        const std::vector<lumetra_channel> settings{channelOf(first), channelOf(second)};
        lumetra_image image{sizeof image, nullptr, 0, 0, 0, 0, c.format};
        ASSERT_EQ(answer(lumetra_image_size, given.data(), settings.data(), 2U, &image), "");
        EXPECT_EQ(image.bit_depth, c.keeps16 ? 16 : 8);
        cv::Mat expected;
        Renderer().render(planes, {first, second}, expected, static_cast<PixelFormat>(c.format));
        ASSERT_EQ(cv::Size(image.width, image.height), expected.size());

        cv::Mat rows(expected.size(), expected.type());
        image.pixels = rows.data;
        image.row_step = static_cast<ptrdiff_t>(rows.step);
        ASSERT_EQ(answer(lumetra_render, given.data(), settings.data(), 2U, &image), "");
        EXPECT_TRUE(areEqual(rows, expected));

        // Planes and image with negative steps.
        UpsideDown plane(planes[0]), out(cv::Mat::zeros(expected.size(), expected.type()));
        given[0].pixels = plane.row(planes[0].rows, 0);
        given[0].row_step = -plane.step;
        image.pixels = out.row(rows.rows, 0);
        image.row_step = -out.step;
        ASSERT_EQ(answer(lumetra_render, given.data(), settings.data(), 2U, &image), "");
        for (int y = 0; y < rows.rows; ++y)
            ASSERT_EQ(std::memcmp(out.row(rows.rows, y), expected.ptr(y), rowBytes(expected)), 0);
    }
}

TEST(CInterface, TakesStructuresOfOtherVersions) {
    const cv::Mat plane = noisePlane({20, 10}, CV_8UC1, 1);
    struct Larger {
        lumetra_channel known;
        double later = 7;
    };
    std::vector<Larger> channels(2);
    for (Larger& channel : channels) {
        channel.known = channelOf(plainRed);
        channel.known.struct_size = sizeof(Larger);
    }
    const std::vector<lumetra_plane> planes(2, planeOf(plane));
    cv::Mat rows(plane.size(), CV_8UC3), expected;
    const lumetra_image image = imageOf(rows, LUMETRA_RGB);
    ASSERT_EQ(answer(lumetra_render, planes.data(), &channels[0].known, 2U, &image), "");
    Renderer().render({plane, plane}, {plainRed, plainRed}, expected, PixelFormat::rgb);
    EXPECT_TRUE(areEqual(rows, expected));
    // Without a gamma, which an older caller would not have.
    lumetra_channel shorter = channels[0].known;
    shorter.struct_size = offsetof(lumetra_channel, gamma);
    shorter.gamma = -9;
    EXPECT_EQ(answer(lumetra_render, planes.data(), &shorter, 1U, &image), "");
}

TEST(CInterface, RefusesWithAReason) {
    const cv::Mat plane = noisePlane({20, 10}, CV_16UC1, 1);
    cv::Mat rows(plane.size(), CV_8UC3);
    struct Case {
        const char* reason;
        void (*spoil)(lumetra_plane&, lumetra_channel&, lumetra_image&);
    };
    const Case cases[] = {
        {"has no pixels", [](auto& p, auto&, auto&) { p.pixels = nullptr; }},
        {"has no pixels", [](auto& p, auto&, auto&) { p.width = 0; }},
        {"8 nor 16", [](auto& p, auto&, auto&) { p.bit_depth = 12; }},
        {"its size", [](auto& p, auto&, auto&) { p.struct_size = 0; }},
        {"0 to 255", [](auto&, auto& c, auto&) { c.green = 256; }},
        {"0 to 255", [](auto&, auto& c, auto&) { c.red = -1; }},
        {"gamma", [](auto&, auto& c, auto&) { c.gamma = -1; }},
        {"blend", [](auto&, auto& c, auto&) { c.blend = 3; }},
        {"low < high", [](auto&, auto& c, auto&) { c.high = 5; }},
        {"another size", [](auto&, auto&, auto& i) { i.width = 19; }},
        {"another size", [](auto&, auto& c, auto&) { c.has_limits = 0; }}, // 16 bits then
        {"pixel format", [](auto&, auto&, auto& i) { i.format = 3; }},
        {"no memory", [](auto&, auto&, auto& i) { i.pixels = nullptr; }},
    };
    for (const Case& c : cases) {
        lumetra_plane p = planeOf(plane);
        lumetra_channel channel = channelOf(plainRed);
        lumetra_image image = imageOf(rows, LUMETRA_BGR);
        c.spoil(p, channel, image);
        const std::string reason = answer(lumetra_render, &p, &channel, 1U, &image);
        EXPECT_NE(reason.find(c.reason), std::string::npos) << c.reason << ": " << reason;
        char cut[5] = "";
        lumetra_render(&p, &channel, 1, &image, cut, sizeof cut);
        EXPECT_EQ(std::string(cut), reason.substr(0, 4));
    }
    EXPECT_EQ(lumetra_render(nullptr, nullptr, 0, nullptr, nullptr, 0), LUMETRA_FAILED);

    // A list whose elements say different sizes, the second one more than there is.
    const lumetra_channel channels[2] = {channelOf(plainRed), channelOf(plainRed)};
    lumetra_plane planes[2] = {planeOf(plane), planeOf(plane)};
    planes[1].struct_size += 8;
    lumetra_image image = imageOf(rows, LUMETRA_BGR);
    EXPECT_NE(answer(lumetra_image_size, planes, channels, 2U, &image), "");

    // Between the characters, wherever the memory ends.
    char whole[200] = "";
    std::vector<std::uint8_t> colours(768);
    EXPECT_EQ(lumetra_find_colormap("äöü", colours.data(), whole, 200), LUMETRA_FAILED);
    const std::size_t first = std::strcspn(whole, "\xC3");
    for (std::size_t bytes = 1; bytes < first + 10; ++bytes) {
        std::vector<char> cut(bytes);
        lumetra_find_colormap("äöü", colours.data(), cut.data(), bytes);
        const std::size_t room = bytes - 1;
        const std::size_t inside = room > first && room < first + 6 ? (room - first) % 2 : 0;
        EXPECT_EQ(std::string(cut.data()), std::string(whole).substr(0, room - inside));
    }
}

TEST(CInterface, KnowsDyesAndColormaps) {
    lumetra_dye dye{};
    dye.struct_size = sizeof dye;
    ASSERT_EQ(answer(lumetra_find_dye, "dapi", &dye), "");
    EXPECT_STREQ(dye.name, "DAPI");
    EXPECT_EQ(dye.emission, 461);
    EXPECT_STREQ(dye.source, "catalogue");
    EXPECT_NE(answer(lumetra_find_dye, "DAPY", &dye).find("\"DAPI\""), std::string::npos);
    const DyeList list;
    ASSERT_EQ(answer(lumetra_nearest_dye, 520, &dye), "");
    EXPECT_EQ(dye.name, list.nearestByEmission(520).name);
    for (const double emission : {0.0, std::nan(""), HUGE_VAL})
        EXPECT_NE(answer(lumetra_nearest_dye, emission, &dye), "");
    std::size_t dyes = 0;
    for (; lumetra_dye_at(dyes, &dye) == LUMETRA_OK; ++dyes)
        ASSERT_EQ(dye.name, list.all().at(dyes).name);
    EXPECT_EQ(dyes, list.all().size());

    std::size_t maps = 0;
    for (; const char* name = lumetra_colormap_name(maps); ++maps) {
        std::vector<std::uint8_t> colours(768);
        ASSERT_EQ(answer(lumetra_find_colormap, name, colours.data()), "");
        EXPECT_EQ(colours[3 * 99 + 1], findColormap(name).value()[99].green);
    }
    EXPECT_EQ(maps, colormapNames().size());
}

TEST(CInterface, CountsValuesAndMeasuresLimits) {
    const cv::Mat plane = noisePlane({300, 200}, CV_16UC1, 1);
    const lumetra_plane given = planeOf(plane);
    std::vector<std::uint64_t> counts(65536);
    Histogram histogram;
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(answer(lumetra_count_values, &given, counts.data()), "");
        histogram.add(plane);
    }
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}), 2 * plane.total());
    std::int32_t low = 0, high = 0;
    ASSERT_EQ(answer(lumetra_contrast_limits, counts.data(), 16, 2.5, &low, &high), "");
    EXPECT_EQ((ContrastLimits{low, high}), histogram.clipped(2.5));
    EXPECT_NE(answer(lumetra_contrast_limits, counts.data(), 16, 50, &low, &high), "");
    for (int i = 0; i < 3; ++i) { // nothing is left of the last
        const cv::Mat other = noisePlane({50, 40}, i < 2 ? CV_16UC1 : CV_8UC1, 3 + i) / (i + 1);
        const lumetra_plane measured = planeOf(other);
        ASSERT_EQ(answer(lumetra_measure_limits, &measured, 2.5, &low, &high), "");
        Histogram alone;
        alone.add(other);
        EXPECT_EQ((ContrastLimits{low, high}), alone.clipped(2.5));
    }
}

TEST(CInterface, AppliesColormaps) {
    const cv::Mat plane = noisePlane({33, 21}, CV_16UC1, 4);
    std::vector<std::uint8_t> colours(768);
    ASSERT_EQ(answer(lumetra_find_colormap, "magma", colours.data()), "");
    const lumetra_plane given = planeOf(plane);
    cv::Mat rows(plane.size(), CV_8UC3), expected;
    const lumetra_image image = imageOf(rows, LUMETRA_RGB);
    const lumetra_channel settings =
        channelOf({"", "", {255, 255, 255}, {}, ContrastLimits{300, 9000}, 0.7, true});
    ASSERT_EQ(answer(lumetra_apply_colormap, &given, &settings, colours.data(), &image), "");
    Renderer().applyColormap(plane, ContrastLimits{300, 9000}, 0.7, *findColormap("magma"),
                             expected, PixelFormat::rgb);
    EXPECT_TRUE(areEqual(rows, expected));
}

/// What the renderer makes of planes is what a composite makes of the tinted planes.
TEST(CInterface, CompositesColouredImages) {
    std::vector<Channel> channels{{"", "", {0, 107, 255}, {3, -2}, {}, 1, true},
                                  {"", "", {255, 40, 9}, {-1, 5}, {}, 1, true},
                                  {"", "", {90, 255, 0}, {0, 9}, {}, 1, false},
                                  {"", "", {255, 255, 255}, {}, {}, 1, true}};
    for (const Blend blend : {Blend::add, Blend::screen, Blend::darkest})
        for (const int type : {CV_8UC1, CV_16UC1}) {
            channels[1].blend = blend;
            std::vector<cv::Mat> planes, tinted(channels.size());
            std::vector<lumetra_image> images;
            std::vector<lumetra_channel> settings;
            for (std::size_t i = 0; i < channels.size(); ++i) {
                planes.push_back(noisePlane({40, 30}, type, static_cast<int>(i)));
                Channel alone = channels[i];
                alone.visible = true;
                Renderer().render({planes[i]}, {alone}, tinted[i], PixelFormat::rgb);
                images.push_back(imageOf(tinted[i], LUMETRA_RGB));
                settings.push_back(channelOf(channels[i]));
            }
            cv::Mat expected;
            Renderer().render(planes, channels, expected, PixelFormat::rgb);
            cv::Mat result(expected.size(), expected.type());
            const lumetra_image image = imageOf(result, LUMETRA_RGB);
            ASSERT_EQ(answer(lumetra_composite, images.data(), settings.data(), 4U, &image), "");
            EXPECT_TRUE(areEqual(result, expected)) << blendText(blend);
            images[2].format = LUMETRA_BGR;
            EXPECT_EQ(answer(lumetra_composite, images.data(), settings.data(), 4U, &image),
                      "the images have different pixel formats");
        }
}

TEST(CInterface, ProjectsPlanes) {
    for (const int type : {CV_8UC1, CV_16UC1})
        for (const int method : {LUMETRA_MAX, LUMETRA_MEAN, LUMETRA_SUM}) {
            std::vector<cv::Mat> planes;
            std::vector<lumetra_plane> given;
            Projection projection(static_cast<ProjectionMethod>(method));
            for (int i = 0; i < 5; ++i) {
                planes.push_back(noisePlane({997, 1201}, type, i)); // of three strips
                given.push_back(planeOf(planes.back()));
                projection.add(planes.back());
            }
            const cv::Mat expected = projection.result();
            cv::Mat result(expected.size(), expected.type());
            lumetra_image image = imageOf(result, LUMETRA_GRAY);
            ASSERT_EQ(answer(lumetra_project, given.data(), 5U, method, &image), "");
            EXPECT_TRUE(areEqual(result, expected));
            EXPECT_NE(answer(lumetra_project, given.data(), 5U, 3, &image), "");
            image.format = LUMETRA_RGB;
            EXPECT_NE(answer(lumetra_project, given.data(), 5U, 0, &image), "");
        }
}

TEST(CInterface, UnderstandsLevelPolicies) {
    lumetra_level_policy policy{};
    policy.struct_size = sizeof policy;
    ASSERT_EQ(answer(lumetra_parse_level_policy, "none", &policy), "");
    EXPECT_EQ(policy.method, LUMETRA_KEEP_VALUES);
    ASSERT_EQ(answer(lumetra_parse_level_policy, "clip:2.5", &policy), "");
    EXPECT_EQ(policy.method, LUMETRA_CLIP);
    EXPECT_EQ(policy.percent, 2.5);
    ASSERT_EQ(answer(lumetra_parse_level_policy, "200:4000", &policy), "");
    EXPECT_EQ(policy.method, LUMETRA_FIXED);
    EXPECT_EQ(policy.low, 200);
    EXPECT_EQ(policy.high, 4000);
    EXPECT_NE(answer(lumetra_parse_level_policy, "clip:50", &policy).find("percentage"),
              std::string::npos);
    EXPECT_NE(answer(lumetra_parse_level_policy, nullptr, &policy), "");
}

} // namespace
} // namespace lumetra
