#include "apps/common/channel_spec.h"
#include "apps/common/error.h"
#include "apps/common/settings.h"

#include <gtest/gtest.h>

#include <functional>

namespace lumetra {
namespace {

QString reasonOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return QStringLiteral("no error");
}

TEST(Channel, IsUnderstoodInAllItsForms) {
    struct Case {
        const char *text, *file;
        int page;
        const char* dye;
        cv::Point offset;
    };
    const DyeList dyes;
    for (const Case& c : {
             Case{"a.tif=DAPI", "a.tif", 0, "DAPI", {}},
             Case{"a=b.tif=dapi+3-2", "a=b.tif", 0, "DAPI", {3, -2}},
             Case{"a b[12].tif[3]=FITC-0-1", "a b[12].tif", 3, "FITC", {0, -1}},
             Case{"new\nline[2]=FM 4-64", "new\nline", 2, "FM 4-64", {}},
             Case{"x=FM 4-64+2147483647-2147483648",
                  "x",
                  0,
                  "FM 4-64",
                  {2147483647, -2147483647 - 1}},
             Case{"x=#FF00aa+1+1", "x", 0, "", {1, 1}},
             Case{"x=Our+9-9#c474ff+1+1", "x", 0, "Our+9-9", {1, 1}},
             Case{"x=FITC#c474ff", "x", 0, "FITC", {}},
             Case{"x=Cy3+5-2", "x", 0, "Cy3", {5, -2}},
             Case{"x=Cy-3-5-2", "x", 0, "Cy3", {-5, -2}},
             Case{"x=AF488+3-2", "x", 0, "Alexa 488", {3, -2}},
             Case{"x=PE-Cy5", "x", 0, "PE-Cy5", {}},
             Case{"x=fm-4-64", "x", 0, "FM 4-64", {}},
             Case{"x=fm-4-64-1-1", "x", 0, "FM 4-64", {-1, -1}},
             Case{"x=BODIPY-493-503", "x", 0, "BODIPY 493^503", {}},
         }) {
        const ChannelFile parsed = parseChannelFile(c.text, dyes);
        EXPECT_EQ(parsed.file, c.file);
        EXPECT_EQ(parsed.page, c.page);
        EXPECT_EQ(parsed.channel.dye, c.dye);
        EXPECT_EQ(parsed.channel.offset, c.offset);
        const ChannelFile again =
            parseChannelFile(fileSpec(parsed) + '=' + channelSpec(parsed.channel, dyes), dyes);
        EXPECT_EQ(again.channel.offset, c.offset);
        EXPECT_EQ(again.channel.colour, parsed.channel.colour);
    }
}

TEST(Channel, OffsetGoesBeforeAnotherSpellingOfAName) {
    DyeList dyes;
    dyes.add({{"Actin", {1, 2, 3}}, {"Actin 1-2", {4, 5, 6}}});
    EXPECT_EQ(parseChannel("Actin-1-2", dyes).offset, cv::Point(-1, -2));
    EXPECT_EQ(parseChannel("actin 1-2", dyes).dye, "Actin 1-2");
}

TEST(Channel, IsRefusedWithAReason) {
    struct Case {
        const char *text, *reason;
    };
    const DyeList dyes;
    for (const Case& c :
         {Case{"a.tif", "not of the form"}, Case{"=DAPI", "not of the form"},
          Case{"a=DAPY", "\"DAPI\""}, Case{"a=DAPY+1+1", "\"DAPI\""},
          Case{"a=DAPI+99999999999+1", "too large"},
          Case{"a=FITC+3", "\"+3\" after \"FITC\" is not an offset"},
          Case{"a=FITC+1.5-2", "\"+1.5-2\" after"}, Case{"a=#ff0000-3", "is not an offset"},
          Case{"a=PE-Cy9", "no dye \"PE-Cy9\""}, Case{"a[0]=DAPI", "counted from 1"},
          Case{"a=#12345", "no dye"}})
        EXPECT_TRUE(reasonOf([&] { parseChannelFile(c.text, dyes); }).contains(c.reason)) << c.text;
}

TEST(Settings, KeepEverything) {
    Channel full;
    full.name = "nuclei \"1\"\n";
    full.dye = "not in the list";
    full.colour = {1, 2, 3};
    full.offset = {-2147483647 - 1, 2147483647};
    full.levels = ContrastLimits{12, 65535};
    full.levelsBits = 16;
    full.gamma = 0.45;
    full.visible = false;
    full.blend = Blend::screen;
    const Settings written{{full, Channel{}}, Measurement{"clip:0.1", 7}};
    const QByteArray json = settingsJson(written);
    const Settings read = parseSettings(json, DyeList());
    EXPECT_EQ(settingsJson(read), json);
    EXPECT_EQ(read.channels[0].levels, full.levels);
    EXPECT_EQ(read.channels[0].levelsBits, 16);
    EXPECT_EQ(read.channels[0].offset, full.offset);
    EXPECT_EQ(read.channels[0].name, full.name);
    EXPECT_FALSE(read.channels[0].visible);
    EXPECT_EQ(read.channels[0].blend, Blend::screen);
    EXPECT_EQ(json.count("blend"), 1);
    EXPECT_FALSE(read.channels[1].levels.has_value());
}

TEST(Settings, RefuseWhatTheyDoNotUnderstand) {
    struct Case {
        const char *channel, *reason;
    };
    for (const Case& c : {
             Case{R"("dye":"DAPI","gama":1)", "unknown key \"gama\""},
             Case{R"("dye":"DAPY")", "\"DAPI\""},
             Case{R"("name":"x")", "neither a dye nor a colour"},
             Case{R"("dye":7)", "\"dye\" of channel 1 is not a text"},
             Case{R"("dye":"DAPI","levels":[5,5])", "black level below"},
             Case{R"("dye":"DAPI","levels":[0,65536])", "whole number from 0 to 65535"},
             Case{R"("dye":"DAPI","levels":[0.5,9])", "whole number"},
             Case{R"("dye":"DAPI","bits":12)", "\"bits\" of channel 1 is not 8 or 16"},
             Case{R"("dye":"DAPI","offset":[1])", "two numbers"},
             Case{R"("dye":"DAPI","offset":[1,4e9])", "whole number"},
             Case{R"("dye":"DAPI","gamma":0)", "\"gamma\" of channel 1"},
             Case{R"("dye":"DAPI","visible":1)", "true or false"},
             Case{R"("dye":"DAPI","blend":"multiply")", "add, screen or darkest"},
             Case{R"("colour":"red")", "#rrggbb"},
         }) {
        const QByteArray json = QByteArray(R"({"channels":[{)") + c.channel + "}]}";
        const QString reason = reasonOf([&] { parseSettings(json, DyeList()); });
        EXPECT_TRUE(reason.contains(c.reason)) << c.channel << ": " << reason.toStdString();
    }
    for (const char* json : {"", "[]", "{", "{}", R"({"channels":{}})", R"({"channels":[7]})",
                             R"({"channels":[{"dye":"DAPI"}],"chanels":1})"})
        EXPECT_NE(reasonOf([&] { parseSettings(json, DyeList()); }), "no error") << json;
}

} // namespace
} // namespace lumetra
