#include "apps/common/error.h"
#include "apps/common/lut_file.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace lumetra {
namespace {

TEST(LutFile, IsAskedForByNameToo) {
    EXPECT_EQ(namedLut("viridis")[0], (Colour{68, 1, 84}));
    EXPECT_THROW(namedLut("virdis"), Error);
}

TEST(LutFile, IsReadInAllItsForms) {
    QByteArray binary, plain, numbered = "Index\tRed\tGreen\tBlue\n";
    Colormap expected;
    for (int i = 0; i < 256; ++i)
        expected[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(i),
                                                 static_cast<std::uint8_t>(255 - i),
                                                 static_cast<std::uint8_t>(i / 2)};
    for (int part = 0; part < 3; ++part)
        for (const Colour colour : expected)
            binary.append(static_cast<char>(part == 0   ? colour.red
                                            : part == 1 ? colour.green
                                                        : colour.blue));
    for (int i = 0; i < 256; ++i) {
        const Colour colour = expected[static_cast<std::size_t>(i)];
        const auto text =
            QStringLiteral("%1 %2 %3\r\n").arg(colour.red).arg(colour.green).arg(colour.blue);
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
            EXPECT_EQ(namedLut(file), expected) << c.name;
        else
            EXPECT_THROW(namedLut(file), Error) << c.name;
    }
    EXPECT_THROW(namedLut(folder.path()), Error);
}

} // namespace
} // namespace lumetra
