#include "render/lumetra_render.h"

#include "render/colormaps.h"
#include "render/dyes.h"
#include "render/histogram.h"
#include "render/projection.h"
#include "render/renderer.h"

#include "planes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>
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

TEST(CInterface, RendersTheSameBytes) {
    const std::vector<cv::Mat> planes{noisePlane({61, 47}, CV_16UC1, 1),
                                      noisePlane({61, 47}, CV_8UC1, 2)};
    Channel first{"", "", {0, 107, 255}, {3, -2}, ContrastLimits{99, 60000}, 0.5, true};
    Channel second{"", "", {255, 40, 9}, {0, 0}, {}, 1, true};
    for (const bool keeps16 : {false, true}) {
        if (keeps16)
            first.levels.reset(), first.gamma = 1;
        for (const int format : {LUMETRA_BGR, LUMETRA_RGB, LUMETRA_BGRA}) {
            if (keeps16 && format == LUMETRA_BGRA)
                continue;
            second.blend = format == LUMETRA_BGR   ? Blend::screen
                           : format == LUMETRA_RGB ? Blend::darkest
                                                   : Blend::add;
            std::vector<lumetra_plane> given{planeOf(planes[0]), planeOf(planes[1])};
            const std::vector<lumetra_channel> settings{channelOf(first), channelOf(second)};
            lumetra_image image{sizeof image, nullptr, 0, 0, 0, 0, format};
            char reason[200] = "";
            ASSERT_EQ(
                lumetra_image_size(given.data(), settings.data(), 2, &image, reason, sizeof reason),
                LUMETRA_OK)
                << reason;
            EXPECT_EQ(image.bit_depth, keeps16 ? 16 : 8);
            cv::Mat expected;
            Renderer().render(planes, {first, second}, expected, static_cast<PixelFormat>(format));
            ASSERT_EQ(cv::Size(image.width, image.height), expected.size());

            cv::Mat rows(expected.size(), expected.type());
            image.pixels = rows.data;
            image.row_step = static_cast<ptrdiff_t>(rows.step);
            ASSERT_EQ(lumetra_render(given.data(), settings.data(), 2, &image, nullptr, 0),
                      LUMETRA_OK);
            EXPECT_TRUE(areEqual(rows, expected));

            // Planes and image with negative steps.
            UpsideDown plane(planes[0]), out(cv::Mat::zeros(expected.size(), expected.type()));
            given[0].pixels = plane.row(planes[0].rows, 0);
            given[0].row_step = -plane.step;
            image.pixels = out.row(rows.rows, 0);
            image.row_step = -out.step;
            ASSERT_EQ(lumetra_render(given.data(), settings.data(), 2, &image, nullptr, 0),
                      LUMETRA_OK);
            for (int y = 0; y < rows.rows; ++y)
                ASSERT_EQ(std::memcmp(out.row(rows.rows, y), expected.ptr(y), rowBytes(expected)),
                          0);
        }
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
        channel.known = channelOf({"", "", {255, 0, 0}, {}, ContrastLimits{5, 200}, 1, true});
        channel.known.struct_size = sizeof(Larger);
    }
    const std::vector<lumetra_plane> planes(2, planeOf(plane));
    cv::Mat rows(plane.size(), CV_8UC3), expected;
    const lumetra_image image{sizeof image, rows.data, static_cast<ptrdiff_t>(rows.step),
                              rows.cols,    rows.rows, 8,
                              LUMETRA_RGB};
    ASSERT_EQ(lumetra_render(planes.data(), &channels[0].known, 2, &image, nullptr, 0), LUMETRA_OK);
    const Channel red{"", "", {255, 0, 0}, {}, ContrastLimits{5, 200}, 1, true};
    Renderer().render({plane, plane}, {red, red}, expected, PixelFormat::rgb);
    EXPECT_TRUE(areEqual(rows, expected));
    // Without a gamma, which an older caller would not have.
    lumetra_channel shorter = channels[0].known;
    shorter.struct_size = offsetof(lumetra_channel, gamma);
    shorter.gamma = -9;
    EXPECT_EQ(lumetra_render(planes.data(), &shorter, 1, &image, nullptr, 0), LUMETRA_OK);
}

TEST(CInterface, RefusesWithAReason) {
    const cv::Mat plane = noisePlane({20, 10}, CV_16UC1, 1);
    const lumetra_plane good = planeOf(plane);
    const Channel red{"", "", {255, 0, 0}, {}, ContrastLimits{5, 200}, 1, true};
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
        {"gamma", [](auto&, auto& c, auto&) { c.gamma = -1; }},
        {"blend", [](auto&, auto& c, auto&) { c.blend = 3; }},
        {"low < high", [](auto&, auto& c, auto&) { c.high = 5; }},
        {"another size", [](auto&, auto&, auto& i) { i.width = 19; }},
        {"another size", [](auto&, auto& c, auto&) { c.has_limits = 0; }}, // 16 bits then
        {"pixel format", [](auto&, auto&, auto& i) { i.format = 3; }},
        {"no memory", [](auto&, auto&, auto& i) { i.pixels = nullptr; }},
    };
    for (const Case& c : cases) {
        lumetra_plane p = good;
        lumetra_channel channel = channelOf(red);
        lumetra_image image{sizeof image, rows.data, static_cast<ptrdiff_t>(rows.step),
                            rows.cols,    rows.rows, 8,
                            LUMETRA_BGR};
        c.spoil(p, channel, image);
        char reason[80] = "";
        EXPECT_EQ(lumetra_render(&p, &channel, 1, &image, reason, sizeof reason), LUMETRA_FAILED);
        EXPECT_NE(std::string(reason).find(c.reason), std::string::npos)
            << c.reason << ": " << reason;
        char cut[5] = "";
        lumetra_render(&p, &channel, 1, &image, cut, sizeof cut);
        EXPECT_EQ(std::string(cut), std::string(reason).substr(0, 4));
    }
    EXPECT_EQ(lumetra_render(&good, nullptr, 0, nullptr, nullptr, 0), LUMETRA_FAILED);

    // A list whose elements say different sizes, the second one more than there is.
    const lumetra_channel channel = channelOf(red);
    lumetra_plane planes[2] = {good, good};
    planes[1].struct_size += 8;
    lumetra_image image{sizeof image, nullptr, 0, 0, 0, 0, LUMETRA_BGR};
    const lumetra_channel channels[2] = {channel, channel};
    EXPECT_EQ(lumetra_image_size(planes, channels, 2, &image, nullptr, 0), LUMETRA_FAILED);

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

TEST(CInterface, KnowsDyesColormapsAndLimits) {
    lumetra_dye dye{};
    dye.struct_size = sizeof dye;
    ASSERT_EQ(lumetra_find_dye("dapi", &dye, nullptr, 0), LUMETRA_OK);
    EXPECT_STREQ(dye.name, "DAPI");
    EXPECT_EQ(dye.emission, 461);
    EXPECT_STREQ(dye.source, "catalogue");
    const DyeList list;
    ASSERT_EQ(lumetra_nearest_dye(520, &dye, nullptr, 0), LUMETRA_OK);
    EXPECT_EQ(dye.name, list.nearestByEmission(520).name);
    for (const double emission : {0.0, std::nan(""), HUGE_VAL})
        EXPECT_EQ(lumetra_nearest_dye(emission, &dye, nullptr, 0), LUMETRA_FAILED);
    char reason[200];
    EXPECT_EQ(lumetra_find_dye("DAPY", &dye, reason, sizeof reason), LUMETRA_FAILED);
    EXPECT_NE(std::strstr(reason, "\"DAPI\""), nullptr);
    ASSERT_EQ(lumetra_find_dye("AF488", &dye, nullptr, 0), LUMETRA_OK);
    EXPECT_STREQ(dye.name, "Alexa 488");
    std::size_t dyes = 0;
    for (; lumetra_dye_at(dyes, &dye) == LUMETRA_OK; ++dyes)
        ASSERT_EQ(dye.name, list.all().at(dyes).name);
    EXPECT_EQ(dyes, list.all().size());

    std::size_t maps = 0;
    for (; const char* name = lumetra_colormap_name(maps); ++maps) {
        std::vector<std::uint8_t> colours(768);
        ASSERT_EQ(lumetra_find_colormap(name, colours.data(), nullptr, 0), LUMETRA_OK);
        EXPECT_EQ(colours[3 * 99 + 1], findColormap(name).value()[99].green);
    }
    EXPECT_EQ(maps, colormapNames().size());

    const cv::Mat plane = noisePlane({300, 200}, CV_16UC1, 1);
    const lumetra_plane given = planeOf(plane);
    std::vector<std::uint64_t> counts(65536);
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(lumetra_count_values(&given, counts.data(), nullptr, 0), LUMETRA_OK);
    EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}), 2 * plane.total());
    Histogram histogram;
    histogram.add(plane);
    histogram.add(plane);
    std::int32_t low = 0, high = 0;
    ASSERT_EQ(lumetra_contrast_limits(counts.data(), 16, 2.5, &low, &high, nullptr, 0), LUMETRA_OK);
    EXPECT_EQ((ContrastLimits{low, high}), histogram.clipped(2.5));
    EXPECT_EQ(lumetra_contrast_limits(counts.data(), 16, 50, &low, &high, nullptr, 0),
              LUMETRA_FAILED);
    for (int i = 0; i < 3; ++i) { // nothing is left of the last
        const cv::Mat other = noisePlane({50, 40}, i < 2 ? CV_16UC1 : CV_8UC1, 3 + i) / (i + 1);
        const lumetra_plane measured = planeOf(other);
        ASSERT_EQ(lumetra_measure_limits(&measured, 2.5, &low, &high, nullptr, 0), LUMETRA_OK);
        Histogram alone;
        alone.add(other);
        EXPECT_EQ((ContrastLimits{low, high}), alone.clipped(2.5));
    }
}

TEST(CInterface, AppliesColormaps) {
    const cv::Mat plane = noisePlane({33, 21}, CV_16UC1, 4);
    std::vector<std::uint8_t> colours(768);
    ASSERT_EQ(lumetra_find_colormap("magma", colours.data(), nullptr, 0), LUMETRA_OK);
    const lumetra_plane given = planeOf(plane);
    cv::Mat rows(plane.size(), CV_8UC3), expected;
    const lumetra_image image{sizeof image, rows.data, static_cast<ptrdiff_t>(rows.step),
                              rows.cols,    rows.rows, 8,
                              LUMETRA_RGB};
    const lumetra_channel settings =
        channelOf({"", "", {255, 255, 255}, {}, ContrastLimits{300, 9000}, 0.7, true});
    ASSERT_EQ(lumetra_apply_colormap(&given, &settings, colours.data(), &image, nullptr, 0),
              LUMETRA_OK);
    Renderer().applyColormap(plane, ContrastLimits{300, 9000}, 0.7, *findColormap("magma"),
                             expected, PixelFormat::rgb);
    EXPECT_TRUE(areEqual(rows, expected));
}

TEST(CInterface, CompositesColouredImages) {
    const std::vector<cv::Mat> planes{noisePlane({40, 30}, CV_8UC1, 1),
                                      noisePlane({40, 30}, CV_8UC1, 2),
                                      noisePlane({40, 30}, CV_8UC1, 3)};
    for (const Blend blend : {Blend::add, Blend::screen, Blend::darkest}) {
        for (const bool is16Bit : {false, true}) {
            // What the renderer makes of planes is what a composite makes of the tinted planes.
            std::vector<Channel> channels{{"", "", {0, 107, 255}, {3, -2}, {}, 1, true},
                                          {"", "", {255, 40, 9}, {-1, 5}, {}, 1, true},
                                          {"", "", {90, 255, 0}, {0, 9}, {}, 1, false}};
            channels[1].blend = blend;
            std::vector<cv::Mat> gray = planes, tinted(3);
            std::vector<lumetra_image> images;
            std::vector<lumetra_channel> settings;
            for (std::size_t i = 0; i < 3; ++i) {
                if (is16Bit)
                    planes[i].convertTo(gray[i], CV_16U, 250);
                Channel alone = channels[i];
                alone.visible = true;
                Renderer().render({gray[i]}, {alone}, tinted[i], PixelFormat::rgb);
                images.push_back(imageOf(tinted[i], LUMETRA_RGB));
                settings.push_back(channelOf(channels[i]));
            }
            cv::Mat expected;
            Renderer().render(gray, channels, expected, PixelFormat::rgb);
            cv::Mat result(expected.size(), expected.type());
            const lumetra_image image = imageOf(result, LUMETRA_RGB);
            char reason[200] = "";
            ASSERT_EQ(
                lumetra_composite(images.data(), settings.data(), 3, &image, reason, sizeof reason),
                LUMETRA_OK)
                << reason;
            EXPECT_TRUE(areEqual(result, expected)) << blendText(blend);
            images[2].format = LUMETRA_BGR;
            EXPECT_EQ(
                lumetra_composite(images.data(), settings.data(), 3, &image, reason, sizeof reason),
                LUMETRA_FAILED);
            EXPECT_STREQ(reason, "the images have different pixel formats");
        }
    }
}

TEST(CInterface, ProjectsPlanes) {
    for (const int type : {CV_8UC1, CV_16UC1})
        for (const auto method :
             {ProjectionMethod::max, ProjectionMethod::mean, ProjectionMethod::sum}) {
            std::vector<cv::Mat> planes;
            std::vector<lumetra_plane> given;
            Projection projection(method);
            for (int i = 0; i < 5; ++i) {
                planes.push_back(noisePlane({997, 1201}, type, i)); // of three strips
                given.push_back(planeOf(planes.back()));
                projection.add(planes.back());
            }
            const cv::Mat expected = projection.result();
            cv::Mat result(expected.size(), expected.type());
            lumetra_image image = imageOf(result, LUMETRA_GRAY);
            ASSERT_EQ(
                lumetra_project(given.data(), 5, static_cast<int>(method), &image, nullptr, 0),
                LUMETRA_OK);
            EXPECT_TRUE(areEqual(result, expected));
            EXPECT_EQ(lumetra_project(given.data(), 5, 3, &image, nullptr, 0), LUMETRA_FAILED);
            image.format = LUMETRA_RGB;
            EXPECT_EQ(lumetra_project(given.data(), 5, 0, &image, nullptr, 0), LUMETRA_FAILED);
        }
}

TEST(CInterface, UnderstandsLevelPolicies) {
    const auto parse = [](const char* text) {
        lumetra_level_policy policy{};
        policy.struct_size = sizeof policy;
        EXPECT_EQ(lumetra_parse_level_policy(text, &policy, nullptr, 0), LUMETRA_OK) << text;
        return policy;
    };
    EXPECT_EQ(parse("none").method, LUMETRA_KEEP_VALUES);
    EXPECT_EQ(parse("clip:2.5").method, LUMETRA_CLIP);
    EXPECT_EQ(parse("clip:2.5").percent, 2.5);
    EXPECT_EQ(parse("auto").percent, 0);
    EXPECT_EQ(parse("200:4000").method, LUMETRA_FIXED);
    EXPECT_EQ(parse("200:4000").low, 200);
    EXPECT_EQ(parse("200:4000").high, 4000);
    lumetra_level_policy policy{};
    policy.struct_size = sizeof policy;
    char reason[200] = "";
    EXPECT_EQ(lumetra_parse_level_policy("clip:50", &policy, reason, sizeof reason),
              LUMETRA_FAILED);
    EXPECT_NE(std::strstr(reason, "percentage"), nullptr) << reason;
    EXPECT_EQ(lumetra_parse_level_policy(nullptr, &policy, reason, sizeof reason), LUMETRA_FAILED);
}

/// Numbers that callers get wrong, in structures whose pixels are memory.
class Nonsense {
public:
    explicit Nonsense(unsigned seed) : random_(seed) {}

    template<class Number>
    Number oneOf(std::initializer_list<Number> numbers) {
        return numbers.begin()[random_() % numbers.size()];
    }
    std::int32_t number() { return oneOf({0, 1, 2, 3, 8, 16, 255, -1, INT32_MIN, INT32_MAX}); }
    std::size_t size(std::size_t right) {
        return oneOf({right, right, right, right, std::size_t{0}, std::size_t{8}, std::size_t{20},
                      std::size_t{12345678}});
    }
    lumetra_plane plane() {
        return {size(sizeof(lumetra_plane)), pixels(), step(), extent(), extent(), bits()};
    }
    lumetra_image image() {
        return {size(sizeof(lumetra_image)), pixels(), step(), extent(), extent(), bits(),
                oneOf({0, 1, 2, 3, 3, -9})};
    }
    lumetra_channel channel() {
        lumetra_channel channel{};
        channel.struct_size = size(sizeof channel);
        channel.red = oneOf({0, 255, 0, 255, -1, 256});
        channel.offset_x = oneOf({0, 0, 1, -2, INT32_MIN, INT32_MAX});
        channel.has_limits = oneOf({0, 1, 7});
        channel.low = oneOf({0, 3, number()});
        channel.high = oneOf({255, 65535, number()});
        channel.hidden = oneOf({0, 0, 1});
        channel.gamma = oneOf({0.0, 1.0, 2.0, 0.5, std::nan(""), HUGE_VAL, -1.0});
        channel.blend = oneOf({0, 1, 2, number()});
        return channel;
    }

private:
    void* pixels() { return oneOf({true, true, true, true, false}) ? &memory_[2000] : nullptr; }
    ptrdiff_t step() { return oneOf<ptrdiff_t>({48, 48, 49, 7, 0, -48, -51}); }
    std::int32_t extent() { return oneOf({3, 3, 3, 3, 3, 7, 0, -1}); }
    std::int32_t bits() { return oneOf({8, 8, 16, 16, 12}); }

    std::minstd_rand random_;
    std::array<unsigned char, 4000> memory_{};
};

TEST(CInterface, AnswersNonsenseWithAReason) {
    std::vector<std::uint64_t> counts(65536);
    std::vector<std::uint8_t> colours(768);
    std::array<int, 2> results{};
    for (unsigned seed = 0; seed < 20000; ++seed) {
        Nonsense nonsense(seed);
        const std::array planes{nonsense.plane(), nonsense.plane()};
        const std::array channels{nonsense.channel(), nonsense.channel()};
        const std::array images{nonsense.image(), nonsense.image()};
        lumetra_image image = nonsense.image();
        const std::size_t count = nonsense.oneOf<std::size_t>({0, 1, 1, 2, 2});
        const auto* const some = nonsense.oneOf({true, true, false}) ? planes.data() : nullptr;
        // The second of an array is where the first says, which has to be in the array.
        const auto isArray = [](std::size_t size, std::size_t right) {
            return size <= right || size > 4096;
        };
        if (!isArray(planes[0].struct_size, sizeof planes[0]) ||
            !isArray(images[0].struct_size, sizeof images[0]))
            continue;
        std::int32_t low = 0, high = 0;
        const auto answers = [&](auto call) {
            char reason[100] = "";
            const int result = call(reason, sizeof reason);
            EXPECT_EQ(result == LUMETRA_OK, reason[0] == '\0') << seed << ": " << reason;
            ++results[result == LUMETRA_OK ? 1 : 0];
        };
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_render(some, channels.data(), count, &image, reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_apply_colormap(some, channels.data(), colours.data(), &image, reason,
                                          bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_composite(images.data(), channels.data(), count, &image, reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_project(some, count, nonsense.number(), &image, reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_count_values(some, counts.data(), reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_measure_limits(some, channels[0].gamma, &low, &high, reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_contrast_limits(counts.data(), nonsense.number(), channels[0].gamma,
                                           &low, &high, reason, bytes);
        });
        answers([&](char* reason, std::size_t bytes) {
            return lumetra_image_size(some, channels.data(), count, &image, reason, bytes);
        });
    }
    EXPECT_GT(results[0], 1000);
    EXPECT_GT(results[1], 1000);
}

} // namespace
} // namespace lumetra
