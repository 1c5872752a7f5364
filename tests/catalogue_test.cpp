// The dye catalogue and the list of names in the order of their colours.

#include <gtest/gtest.h>

#include <lumetra>

#include <QCryptographicHash>

#include <array>
#include <type_traits>

namespace {

static_assert(std::is_empty_v<Lumetra> && !std::is_aggregate_v<Lumetra>);
static_assert(std::is_default_constructible_v<Lumetra> && !std::is_polymorphic_v<Lumetra>);
static_assert(sizeof(FLUO_DYE_TYPE) == 5 * sizeof(int) && std::is_trivial_v<FLUO_DYE_TYPE>);

using Record = std::array<int, 5>;

Record values(const FLUO_DYE_TYPE& dye) {
    return {dye.nExcitation, dye.nEmission, dye.nColorR, dye.nColorG, dye.nColorB};
}

/// A process fills the catalogue only once. This host does so with entries of its own in it.
class Catalogue : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (wasInit || !Lumetra::g_mapFluo.isEmpty())
            return;
        wasInit = Lumetra::bFluoDyeTypeInit;
        namesBefore = static_cast<int>(Lumetra::m_vecSldFluo.size());
        Lumetra::g_mapFluo["My own dye"] = {1, 2, 3, 4, 5};
        Lumetra::g_mapFluo["DAPI"] = {1, 2, 3, 4, 5};
        Lumetra::m_vecSldFluo.append("My own dye");
        Lumetra::InitFluoDyeType();
    }

    Catalogue() { dyes.remove("My own dye"); }

    static inline bool wasInit = false;
    static inline qsizetype namesBefore = -1;
    QMap<QString, FLUO_DYE_TYPE> dyes = Lumetra::g_mapFluo;
    QVector<QString> names = Lumetra::m_vecSldFluo.mid(1);
};

TEST_F(Catalogue, IsFilledOnceAndKeepsTheHostsEntries) {
    EXPECT_FALSE(wasInit);
    EXPECT_EQ(namesBefore, 0);
    EXPECT_TRUE(Lumetra::bFluoDyeTypeInit);
    EXPECT_EQ(Lumetra::g_mapFluo.size(), 330);
    EXPECT_EQ(values(Lumetra::g_mapFluo["My own dye"]), (Record{1, 2, 3, 4, 5}));
    EXPECT_EQ(values(Lumetra::g_mapFluo["DAPI"]), (Record{358, 461, 0, 107, 255}));
    EXPECT_EQ(Lumetra::m_vecSldFluo.size(), 149);
    EXPECT_EQ(Lumetra::m_vecSldFluo.first(), "My own dye");
    Lumetra::g_mapFluo.remove("Cy5");
    Lumetra::InitFluoDyeType();
    EXPECT_EQ(Lumetra::g_mapFluo.size(), 329);
    EXPECT_EQ(Lumetra::m_vecSldFluo.size(), 149);
    Lumetra::g_mapFluo["Cy5"] = dyes["Cy5"];
}

/// Names and values all together: the digests are of the published tables, one line for each dye
/// in name order ("name|excitation|emission|red|green|blue") and one for each name of the list.
TEST_F(Catalogue, IsThePublishedOneToTheLetter) {
    QByteArray dyeLines, nameLines;
    for (auto dye = dyes.cbegin(); dye != dyes.cend(); ++dye) {
        dyeLines += dye.key().toUtf8();
        for (int value : values(*dye))
            dyeLines += "|" + QByteArray::number(value);
        dyeLines += "\n";
    }
    for (const QString& name : names)
        nameLines += name.toUtf8() + "\n";
    const auto digest = [](const QByteArray& lines) {
        return QCryptographicHash::hash(lines, QCryptographicHash::Sha256).toHex().toStdString();
    };
    EXPECT_EQ(digest(dyeLines), "04b93ac683cd1d4f5e204387c237ae1e41f04fcf512e59df99c8fc82a6a4f150");
    EXPECT_EQ(digest(nameLines),
              "73b01f100b5e41a65bd8ed9eabd5644074f5ed8cddeeaef6d856c0ad4b0a47f1");
}

} // namespace
