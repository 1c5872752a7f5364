#include "render/dyes.h"

#include "render/render_error.h"

#include <gtest/gtest.h>

#include <lumetra>

namespace lumetra {
namespace {

TEST(Dyes, AreThoseOfTheLibrary) {
    Lumetra::InitFluoDyeType();
    const DyeList dyes;
    ASSERT_EQ(dyes.all().size(), static_cast<std::size_t>(Lumetra::g_mapFluo.size()));
    auto known = Lumetra::g_mapFluo.cbegin();
    for (const Dye& dye : dyes.all()) {
        ASSERT_EQ(dye.name, known.key().toStdString());
        ASSERT_EQ(dye.excitation, known->nExcitation);
        ASSERT_EQ(dye.emission, known->nEmission);
        ASSERT_EQ(dye.colour.red, known->nColorR);
        ASSERT_EQ(dye.colour.green, known->nColorG);
        ASSERT_EQ(dye.colour.blue, known->nColorB);
        ++known;
    }
    const std::vector<Dye> slider = dyes.inSliderOrder();
    ASSERT_EQ(slider.size(), 148U);
    for (int i = 0; i < 148; ++i)
        ASSERT_EQ(slider[static_cast<std::size_t>(i)].name, Lumetra::m_vecSldFluo[i].toStdString());
}

TEST(Dyes, AreFoundByNameAndWavelength) {
    DyeList dyes;
    dyes.add({{"FITC", {1, 2, 3}, 0, 0, true}, {"Our own", {4, 5, 6}, 0, 0, true}});
    EXPECT_EQ(dyes.all().size(), 330U);
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
