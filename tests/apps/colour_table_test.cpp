#include "apps/common/colour_table.h"
#include "apps/common/failure.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace apps {
namespace {

TEST(ColourTable, HasAllNames) {
    for (const QString& name : colourTableNames())
        EXPECT_EQ(colourTable(name).size(), 256) << name.toStdString();
    EXPECT_EQ(colourTable("gray")[77], QColor(77, 77, 77));
    EXPECT_EQ(colourTable("viridis").first(), QColor(68, 1, 84));
    EXPECT_EQ(reversedTable(colourTable("viridis")).last(), QColor(68, 1, 84));
    EXPECT_THROW(colourTable("virdis"), Failure);
}

TEST(ColourTable, IsStretchedFromFirstToLastColour) {
    const auto stretched = pseudoSlots(colourTable("gray"));
    ASSERT_EQ(stretched.size(), 255);
    for (int i = 0; i < 255; ++i)
        EXPECT_NEAR(stretched[i].red(), i * 255.0 / 254, 0.5 + 1e-9);
    EXPECT_EQ(stretched[254], QColor(255, 255, 255));
}

TEST(ColourTable, ReadsFiles) {
    QByteArray binary, plain, numbered = "Index\tRed\tGreen\tBlue\n";
    QVector<QColor> expected;
    for (int i = 0; i < 256; ++i)
        expected << QColor(i, 255 - i, i / 2);
    for (int part = 0; part < 3; ++part)
        for (const QColor& colour : expected)
            binary.append(static_cast<char>(part == 0   ? colour.red()
                                            : part == 1 ? colour.green()
                                                        : colour.blue()));
    for (int i = 0; i < 256; ++i) {
        const auto& colour = expected[i];
        const auto text =
            QStringLiteral("%1 %2 %3\r\n").arg(colour.red()).arg(colour.green()).arg(colour.blue());
        plain += text.toLatin1();
        numbered += QByteArray::number(i) + '\t' + text.toLatin1();
    }
    struct Case {
        const char* name;
        QByteArray bytes;
        bool good;
    };
    const QTemporaryDir folder;
    for (const Case& c :
         {Case{"binary", binary, true},
          Case{"header", "ICOL" + QByteArray(28, '\0') + binary, true}, Case{"plain", plain, true},
          Case{"numbered", numbered, true}, Case{"empty", "", false},
          Case{"short", binary.left(767), false}, Case{"large", plain + "1 2 3\n", false},
          Case{"range", QByteArray(plain).replace("255 0 127", "256 0 127"), false},
          Case{"words", QByteArray(plain).replace("7 248 3", "7 x 3"), false}}) {
        const QString file = folder.filePath(c.name);
        QFile device(file);
        ASSERT_TRUE(device.open(QIODevice::WriteOnly));
        device.write(c.bytes);
        device.close();
        if (c.good)
            EXPECT_EQ(colourTable(file), expected) << c.name;
        else
            EXPECT_THROW(colourTable(file), Failure) << c.name;
    }
    EXPECT_THROW(colourTable(folder.path()), Failure);
}

} // namespace
} // namespace apps
