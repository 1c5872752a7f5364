// The user's own dyes in their settings file.

#include "plain_custom_dyes.h"
#include "user_interface.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <random>

namespace {

const QColor red(255, 0, 0), green(0, 255, 128);

class CustomDyes : public testing::Test {
protected:
    /// A path that no test has used yet: settings files are cached by their path.
    QString freshPath() { return folder.filePath(QString::number(++files) + " dyes ü.ini"); }

    QString fileOf(const QByteArray& text) {
        QFile file(freshPath());
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    static Dyes load(const QString& path) {
        Dyes dyes = {{"left over", QColor(1, 2, 3)}};
        Lumetra::LoadCustomDyeType(dyes, path);
        return dyes;
    }

    static void save(Dyes dyes, const QString& path) {
        const Dyes before = dyes;
        Lumetra::SaveCustomDyeType(dyes, path);
        EXPECT_EQ(dyes, before);
    }

    QTemporaryDir folder;

private:
    int files = 0;
};

TEST_F(CustomDyes, AnyNameAndAnyColourSurvive) {
    QStringList names =
        QString("~ ~ leading~trailing ~\t~plain~a=b~a;b # c~a, b~[General]~[a~a]~a/b~a\\b~\\~100%~"
                "%41~\"quoted\"~\"~'~two\nlines\r\n~@Variant(~@Variant(\\0\\0\\0C)~@~@@~@Invalid()~"
                "@String(x)~Größe~αβγ-Tubulin~細胞核~🔬~éabc~\x01~true~1~DyeType1/Name")
            .split('~');
    names += {QChar(0), QString("a") + QChar(0) + "1", QChar(0xD800), QString(5000, QChar(0x3B1))};
    const QColor colours[] = {QColor(),
                              red,
                              QColor(1, 2, 3, 4),
                              QColor(Qt::transparent),
                              QColor::fromRgba64(1, 2, 65535, 257),
                              QColor::fromHsv(359, 10, 20, 30),
                              QColor::fromHsvF(0.125, 0.5, 0.25),
                              QColor::fromHsl(-1, 0, 77),
                              QColor::fromCmyk(1, 2, 3, 4, 5),
                              QColor::fromRgbF(1.5, -0.25, 0.5)};
    Dyes all;
    for (int i = 0; i < names.size(); ++i) {
        const Dyes one = {{names[i], colours[i % 10]}};
        const QString path = freshPath();
        save(one, path);
        EXPECT_EQ(load(path), one) << qPrintable(names[i]);
        all.insert(names[i], colours[i % 7]);
    }
    const QString path = freshPath();
    save(all, path);
    EXPECT_EQ(load(path), all);
    EXPECT_EQ(readPlainly(path), all);
}

TEST_F(CustomDyes, AreNumberedInTheirOrderAndReplaceTheFile) {
    const QString path = freshPath();
    save({{"e", red}, {"d", red}, {"c", red}, {"b", red}, {"a", red}}, path);
    QSettings(path, QSettings::IniFormat).setValue("Other", 1);
    save({{"DAPI", green}, {"Cy5", QColor()}, {"Alexa 488", red}}, path);
    {
        const QSettings settings(path, QSettings::IniFormat);
        EXPECT_EQ(settings.value("Number").toInt(), 3);
        EXPECT_EQ(settings.allKeys().size(), 7);
        EXPECT_EQ(settings.value("DyeType1/Name"), "Alexa 488");
        EXPECT_EQ(settings.value("DyeType2/Name"), "Cy5");
        EXPECT_EQ(settings.value("DyeType3/Name"), "DAPI");
        EXPECT_EQ(settings.value("DyeType3/Color"), green);
    }
    save({}, path);
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    EXPECT_EQ(file.readAll(), "[General]\nNumber=0\n");
    EXPECT_EQ(load(path), Dyes());
}

TEST_F(CustomDyes, FilesWrittenByOthersAreRead) {
    struct Case {
        QByteArray text; // "~" ends a line
        Dyes dyes;
    };
    const QByteArray a = "[DyeType1]~Name=a~Color=red~", b = "[DyeType2]~Name=b~Color=#00ff80~",
                     c = "[DyeType3]~Name=c~Color=nonsense~";
    const Case cases[] = {
        {"Number=3~" + a + b + c, {{"a", red}, {"b", green}, {"c", {}}}},
        {"Number=2~" + c + b + a, {{"a", red}, {"b", green}}},
        {"Number=4~" + a + b + c, {{"a", red}, {"b", green}, {"c", {}}, {"", {}}}},
        {"Number=3~" + a + c, {{"a", red}, {"c", {}}, {"", {}}}},
        {"Number=2~" + a + "[DyeType2]~Name=a~Color=#00ff80~", {{"a", green}}},
        {"Number=2~" + a + "[DyeType2]~Name=a~", {{"a", {}}}},
        {"Number=2~[DyeType2]~Color=red~", {{"", red}}},
        {"Number=3~[DyeType2]~Color=red~", {{"", {}}}},
        {"Number=1~[DyeType01]~Name=a~Color=red~", {{"", {}}}},
        {"Number=1~[dyetype1]~Name=a~[DyeType1]~name=b~", {{"", {}}}},
        // No number of dyes.
        {"Number=0~" + a, {}},
        {"Number=-3~" + a, {}},
        {"Number=many~" + a, {}},
        {"Number=1.5~" + a, {}},
        {"Number=2147483648~" + a, {}},
        {a + b, {}},
        // More than could be read one by one in time.
        {"Number=2000000000~" + a + b, {{"a", red}, {"b", green}, {"", {}}}},
        {"Number=2000000000~[DyeType2000000000]~Color=red~" + a, {{"a", red}, {"", red}}},
        {"Number=2000000000~[DyeType1999999999]~Color=red~", {{"", {}}}},
        {"Number=2147483647~[DyeType2147483648]~Name=z~[DyeType2147483647]~Name=y~" + b,
         {{"b", green}, {"y", {}}, {"", {}}}},
        {"Number=2147483647~", {{"", {}}}}};
    for (const Case& known : cases)
        EXPECT_EQ(load(fileOf(QByteArray(known.text).replace('~', '\n'))), known.dyes)
            << known.text.constData();
}

/// Files of lines that matter, put together at random: the outcome is that of the plain reading.
TEST_F(CustomDyes, AnyFileIsReadAsEntryByEntry) {
    const QByteArrayList lines =
        QByteArray(
            "[DyeType1]~[DyeType2]~[DyeType3]~[DyeType12]~[DyeType02]~[DyeType+1]~[DyeType 1]~"
            "[DyeType1/x]~[DyeType]~[%44yeType3]~[General]~[%General]~DyeType1\\Name=inner~"
            "DyeType3/Name=slash~DyeType2\\Color=blue~Name=a~Name=b~Name=b, c~Name=~Name~"
            "Color=red~Color=#12345678~Color=1, 2, 3~Color=@ByteArray(red)~Color=@Size(1 2)~"
            "Color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\x80\\x80\\0\\0\\0\\0)~"
            "Color=@Variant(\\0\\0)~Number=2~Number= 13 ~Number=@ByteArray(3)~number=1~"
            "; Name=comment~\\~\"~\xff\xfe")
            .split('~');
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        QByteArray text = "Number=" + QByteArray::number(static_cast<int>(random() % 14)) + "\n";
        for (unsigned n = random() % 16; n > 0; --n)
            text += lines[static_cast<int>(random() % static_cast<unsigned>(lines.size()))] + "\n";
        const QString path = fileOf(text);
        ASSERT_EQ(load(path), readPlainly(path)) << text.constData();
    }
    for (int size : {0, 1, 100, 10000}) {
        QByteArray noise(size, 0);
        std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
        EXPECT_EQ(load(fileOf(noise)), Dyes());
    }
}

TEST_F(CustomDyes, PathsThatCannotBeUsedAreEmptyFiles) {
    const QString inFile = fileOf("Number=1\n[DyeType1]\nName=a\n") + "/dyes.ini";
    for (const QString& path : {freshPath(), folder.path(), inFile, QString()})
        EXPECT_EQ(load(path), Dyes()) << qPrintable(path);
    for (const QString& path : {folder.path(), inFile, QString("/proc/dyes.ini")}) {
        save({{"a", red}}, path);
        EXPECT_EQ(load(path), Dyes());
        EXPECT_FALSE(QFileInfo(path).isFile());
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);

    // A file that may not be written is replaced all the same, as long as its folder may be.
    QFile readOnly(fileOf("Number=0\n"));
    ASSERT_TRUE(readOnly.setPermissions(QFile::ReadOwner));
    save({{"a", red}}, readOnly.fileName());
    EXPECT_EQ(load(readOnly.fileName()), (Dyes{{"a", red}}));
}

} // namespace
