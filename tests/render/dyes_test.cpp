#include "render/dyes.h"

#include "render/palette.h"
#include "render/render_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <lumetra>

namespace lumetra {
namespace {

TEST(Dyes, AreThoseOfTheLibraryAndMore) {
    Lumetra::InitFluoDyeType();
    const DyeList dyes;
    int ofCatalogue = 0;
    for (const Dye& dye : dyes.all()) {
        if (dye.origin != DyeOrigin::catalogue)
            continue;
        ++ofCatalogue;
        const auto known = Lumetra::g_mapFluo.constFind(QString::fromStdString(dye.name));
        ASSERT_NE(known, Lumetra::g_mapFluo.cend()) << dye.name;
        ASSERT_EQ(dye.excitation, known->nExcitation);
        ASSERT_EQ(dye.emission, known->nEmission);
        ASSERT_EQ(dye.colour, (Colour{static_cast<std::uint8_t>(known->nColorR),
                                      static_cast<std::uint8_t>(known->nColorG),
                                      static_cast<std::uint8_t>(known->nColorB)}));
    }
    EXPECT_EQ(ofCatalogue, Lumetra::g_mapFluo.size());
    const std::vector<Dye> slider = dyes.inSliderOrder();
    ASSERT_EQ(slider.size(), 148U);
    for (int i = 0; i < 148; ++i)
        ASSERT_EQ(slider[static_cast<std::size_t>(i)].name, Lumetra::m_vecSldFluo[i].toStdString());
}

TEST(Dyes, AreEachFoundByTheirNameInAnyCase) {
    const DyeList dyes;
    for (const Dye& dye : dyes.all()) {
        EXPECT_EQ(&dyes.at(dye.name), &dye);
        std::string name = dye.name;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char letter) { return std::toupper(letter); });
        EXPECT_EQ(&dyes.at(name), &dye);
        const Dye* spaced = dyes.find(' ' + name);
        ASSERT_NE(spaced, nullptr) << name << " is ambiguous";
        EXPECT_EQ(spaced->emission, dye.emission) << name;
        if (dye.origin == DyeOrigin::published) {
            EXPECT_GT(dye.emission, dye.excitation) << name;
            EXPECT_EQ(dye.colour, emissionColour(dye.emission)) << name;
        }
    }
}

TEST(Dyes, AreFoundAsPeopleWriteThem) {
    const DyeList dyes;
    struct Case {
        const char *written, *name;
        int emission;
    };
    for (const Case& c : {
             Case{"Alexa Fluor 488", "Alexa 488", 519},
             Case{"AlexaFluor488", "Alexa 488", 519},
             Case{"alexa-488", "Alexa 488", 519},
             Case{"AF488", "Alexa 488", 519},
             Case{"A488", "Alexa 488", 519},
             Case{"Alexa 647", "Alexa Fluor 647", 668},
             Case{"Alexa Fluor Plus 647", "Alexa Fluor 647", 668},
             Case{"Hoechst 33342", "Hoescht 33342", 461},
             Case{"Hoechst", "Hoescht 33342", 461},
             Case{"Cy-3", "Cy3", 570},
             Case{"cy_5.5", "Cy5.5", 694},
             Case{"PE/Cyanine7", "PE-Cy7", 774},
             Case{"DyLight488", "DyLight 488", 518},
             Case{"JF646", "Janelia Fluor 646", 664},
             Case{"BV421", "Brilliant Violet 421", 421},
             Case{"Qdot 605", "Qdots 605", 605},
             Case{"SYTO17", "SYTO 17(red)", 632},
             Case{"DiO", "DiO(DiOC 18(3))", 501},
             Case{"MitoTracker Deep Red", "MitoTracker Deep Red 633", 665},
             Case{"DiI", "DiI", 565},
             Case{"BODIPY 493/503", "BODIPY 493^503", 506},
             Case{"FM-4-64", "FM 4-64", 750},
             Case{"PI", "Propidium iodide(PI)", 617},
             Case{"eGFP", "EGFP", 507},
             Case{"YFP", "YFP[Yellow Fluorescent Protein]", 527},
             Case{"dsred", "DsRed", 583},
             Case{"Phalloidin-Alexa 568", "Alexa 568", 603},
             Case{"Alexa Fluor 488 phalloidin", "Alexa 488", 519},
             Case{"concanavalin A, AF488", "Alexa 488", 519},
             Case{"WGA-Alexa555", "Alexa 555", 565},
             Case{"Grey", "gray", 0},
         }) {
        const Dye* dye = dyes.find(c.written);
        ASSERT_NE(dye, nullptr) << c.written;
        EXPECT_EQ(dye->name, c.name) << c.written;
        EXPECT_EQ(dye->emission, c.emission) << c.written;
    }
    EXPECT_EQ(dyes.at("gray").colour, (Colour{255, 255, 255}));
    // What could be several, another one, or nothing at all.
    for (const char* written :
         {"JC-1", "Rhodamine", "MitoTracker Red", "Cy55", "Cy5-5", "SYTO 1-1", "Fluoro-Gold",
          "BCECF", "Phalloidin", "Alexa", "488", "A4", "FITC+3-2", "-", ""})
        EXPECT_EQ(dyes.find(written), nullptr) << written;
    EXPECT_EQ(dyes.nearestNames("JC-1"),
              (std::vector<std::string>{"JC-1(monomer)", "JC-1(aggregate)"}));
}

TEST(Dyes, NearNamesAreOfTheSameKind) {
    const DyeList dyes;
    struct Case {
        const char *written, *nearest;
    };
    for (const Case& c : {Case{"DAPY", "DAPI"}, Case{"EGPF", "EGFP"}, Case{"mScarlet9", "mScarlet"},
                          Case{"Unheard-of 568", "Alexa 568"}, Case{"Sytoks Green", "SYTOX Green"}})
        EXPECT_EQ(dyes.nearestNames(c.written).front(), c.nearest) << c.written;
    for (const char* written : {"xyzzy", "DAPY"})
        try {
            dyes.at(written);
            FAIL() << written;
        } catch (const RenderError& error) {
            const std::string reason = error.what(),
                              hint = "or give a colour, #rrggbb or NAME#rrggbb";
            EXPECT_EQ(reason.substr(reason.size() - hint.size()), hint);
        }
    EXPECT_TRUE(dyes.nearestNames("xyzzy").empty());
}

TEST(Dyes, HaveTheColourOfTheirEmission) {
    const DyeList dyes;
    EXPECT_EQ(emissionColour(518.6), dyes.at("Alexa 488").colour);
    EXPECT_EQ(emissionColour(670), dyes.at("Cy5").colour);
    EXPECT_EQ(emissionColour(-1e300), emissionColour(380));
    EXPECT_EQ(dyes.at("Alexa Fluor 790").colour, emissionColour(799));
    EXPECT_THROW(emissionColour(std::nan("")), RenderError);
    EXPECT_EQ(dyes.nearestByEmission(606.8).emission, 607);
    EXPECT_EQ(dyes.nearestByEmission(550).colour,
              emissionColour(550)); // not white transmitted light
}

TEST(Palette, HasAColourForEachChannel) {
    for (std::size_t channels : {0U, 1U, 2U, 3U, 4U, 9U})
        EXPECT_EQ(safePalette(channels).size(), channels);
    EXPECT_EQ(safePalette(2).back(), (Colour{0, 255, 0}));
}

TEST(Dyes, AreFoundByNameAndWavelength) {
    DyeList dyes;
    const std::size_t builtIn = dyes.all().size();
    dyes.add({{"FITC", {1, 2, 3}}, {"Our own", {4, 5, 6}}});
    EXPECT_EQ(dyes.all().size(), builtIn + 1);
    EXPECT_EQ(dyes.at("our-own").source, "custom");
    EXPECT_EQ(dyes.at("fitc").colour, (Colour{1, 2, 3}));
    EXPECT_EQ(dyes.inSliderOrder().back().name, "Our own");
    EXPECT_EQ(dyes.nearestNames("Alexa 489").front(), "Alexa 488");
    EXPECT_THROW(dyes.at("Alexa 489"), RenderError);
    auto near = dyes.containing("ALEXA");
    sortByEmission(near, 520);
    EXPECT_EQ(near.front().name, "Alexa 488");
    sortByExcitation(near, 749);
    EXPECT_EQ(near.front().name, "Alexa Fluor 750");
    near = dyes.containing("own");
    sortByEmission(near, 500);
    for (const Dye& dye : near)
        EXPECT_NE(dye.emission, 0); // custom dyes have none
}

TEST(Colour, IsReadAndWritten) {
    EXPECT_EQ(parseHex("#0aFF80"), (Colour{10, 255, 128}));
    EXPECT_EQ(toHex({10, 255, 128}), "#0aff80");
    for (const char* text : {"", "#", "0aff800", "#0aff8", "#0aff800", "#0aff8g", "#-1ff80"})
        EXPECT_FALSE(parseHex(text)) << text;
}

} // namespace
} // namespace lumetra
