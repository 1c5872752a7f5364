// The user's own dyes in their settings file.

#include "plain_custom_dyes.h"
#include "user_interface.h"

#include <gtest/gtest.h>

#include <lumetra>

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include <functional>
#include <random>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

/// Settings files of this Qt are UTF-8; those of Qt 5 are ASCII with escapes, or Latin-1 if
/// somebody has written them by hand.
constexpr bool writesUtf8 = QT_VERSION >= QT_VERSION_CHECK(6, 0, 0);

const QColor plainRed(255, 0, 0), plainGreen(0, 255, 128);

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

    /// With the ends of lines that the other systems have.
    static QByteArray bytesOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::ReadOnly | QFile::Text)) << qPrintable(path);
        return file.readAll();
    }

    /// What the file holds, whatever Qt remembers of its path.
    Dyes loadCopy(const QString& path) { return load(fileOf(bytesOf(path))); }

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
    names += {QChar(0), QString("a") + QChar(0) + "1", QString(5000, QChar(0x3B1))};
    if (!writesUtf8)
        names += {QChar(0xD800), QChar(0xFEFF)}; // no text, but Qt 5 keeps it
    // clang-format off
    const QColor colours[] = {
        QColor(), plainRed, QColor(1, 2, 3, 4), QColor(Qt::transparent),
        QColor::fromRgba64(1, 2, 65535, 257), QColor::fromHsv(359, 10, 20, 30),
        QColor::fromHsvF(0.125, 0.5, 0.25), QColor::fromHsl(-1, 0, 77),
        QColor::fromCmyk(1, 2, 3, 4, 5), QColor::fromRgbF(1.5, -0.25, 0.5)};
    // clang-format on
    Dyes all;
    for (int i = 0; i < names.size(); ++i) {
        const Dyes one = {{names[i], colours[i % 10]}};
        const QString path = freshPath();
        save(one, path);
        EXPECT_EQ(loadCopy(path), one) << qPrintable(names[i]);
        all.insert(names[i], colours[i % 7]);
    }
    const QString path = freshPath();
    save(all, path);
    EXPECT_EQ(loadCopy(path), all);
    EXPECT_EQ(readPlainly(path), all);
}

TEST_F(CustomDyes, AreNumberedInTheirOrderAndReplaceTheFile) {
    const QString path = freshPath();
    save({{"d", plainRed}, {"c", plainRed}, {"b", plainRed}, {"a", plainRed}}, path);
    QSettings(path, QSettings::IniFormat).setValue("Other", 1);
    save({{"DAPI", plainGreen}, {"Cy5", QColor()}, {"Alexa 488", plainRed}}, path);
    QStringList keys;
    for (const QString& group : QStringList{"DyeType1", "DyeType2", "DyeType3"})
        keys += {group + "/Color", group + "/Name"};
    const QSettings settings(path, QSettings::IniFormat);
    EXPECT_EQ(settings.allKeys(), keys + QStringList("Number"));
    EXPECT_EQ(settings.value("Number").toInt(), 3);
    EXPECT_EQ(settings.value("DyeType1/Name"), "Alexa 488");
    EXPECT_EQ(settings.value("DyeType3/Name"), "DAPI");
    EXPECT_EQ(settings.value("DyeType3/Color"), plainGreen);
    const QString other = freshPath();
    save({}, other);
    EXPECT_EQ(bytesOf(other), "[General]\nNumber=0\n");
}

/// What each generation of Qt writes, the other one reads.
TEST_F(CustomDyes, AreExchangedBetweenQt5AndQt6) {
    const QByteArray header = "[General]\nNumber=1\n\n[DyeType1]\n",
                     colour = "Color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff"
                              "\\0\\0\\0\\0\\0\\0)\n";
    const auto file = [&](const QByteArray& name) {
#ifdef Q_OS_WIN // where Qt keeps the order in which keys were set
        return header + name + colour;
#else
        return header + colour + name;
#endif
    };
    const QByteArray qt5 = file("Name=\"Gr\\xf6\\xdf\\x65, \\x3b1\\x3b2 \\xd83d\\xdd2c\\x1\"\n"),
                     qt6 = file("Name=\"Größe, αβ 🔬\\x1\"\n");
    const Dyes dyes = {{QString::fromUtf8("Größe, αβ 🔬\x01"), plainRed}};
    EXPECT_EQ(load(fileOf(qt5)), dyes);
    EXPECT_EQ(load(fileOf(qt6)), dyes);
    EXPECT_EQ(load(fileOf("\xef\xbb\xbf" + qt6)), dyes);
    const QString path = freshPath();
    save(dyes, path);
    EXPECT_EQ(bytesOf(path), writesUtf8 ? qt6 : qt5);

    // Long files, with a character on every boundary that a reader may have.
    for (int comment = 65400; comment < 65600; ++comment)
        ASSERT_EQ(load(fileOf(";" + QByteArray(comment, ' ') + "\n" + qt6)), dyes) << comment;

    if (writesUtf8) { // so what is no text does not survive
        const QString ends = freshPath();
        save({{QString(QChar(0xDFFF)) + "a", plainRed}, {QString(QChar(0xFEFF)) + "b", plainRed}},
             ends);
        EXPECT_EQ(loadCopy(ends),
                  (Dyes{{QString(QChar(0xFFFD)) + "a", plainRed}, {"b", plainRed}}));
        return;
    }
    for (const char* ending :
         {"\xe9", "\xe9\n", "\xc3\xa9 \xe9", "\xc3", "\xed\xa0\x80", "\xc1\x81"})
        EXPECT_EQ(load(fileOf("Number=1\n[DyeType1]\nColor=red\nName=" + QByteArray(ending))),
                  (Dyes{{QString::fromLatin1(ending).trimmed(), plainRed}}));
}

/// More entries than could be read one by one in time.
TEST_F(CustomDyes, AreReadFromFilesThatClaimMillionsOfThem) {
    const std::pair<QByteArray, Dyes> cases[] = {
        {"2000000000~[DyeType1]~Name=a~Color=red~", {{"a", plainRed}, {"", {}}}},
        {"2000000000~[DyeType2000000000]~Color=red~", {{"", plainRed}}},
        {"2000000000~[DyeType1999999999]~Color=red~", {{"", {}}}},
        {"2147483647~[DyeType2147483648]~Name=z~[DyeType2147483647]~Name=y~",
         {{"y", {}}, {"", {}}}},
        {"2147483648~[DyeType1]~Name=a~", {}},
        {"2147483647~", {{"", {}}}}};
    for (const auto& [text, dyes] : cases)
        EXPECT_EQ(load(fileOf("Number=" + QByteArray(text).replace('~', '\n'))), dyes)
            << text.constData();
}

/// Files of lines that matter, put together at random: the outcome is that of the plain reading.
TEST_F(CustomDyes, AnyFileIsReadAsEntryByEntry) {
    const QByteArrayList lines =
        QByteArray(
            "[DyeType1]~[DyeType2]~[DyeType3]~[DyeType12]~[DyeType02]~[DyeType+1]~[DyeType 1]~"
            "[DyeType1/x]~[DyeType]~[%44yeType3]~[General]~[%General]~DyeType1\\Name=inner~"
            "DyeType3/Name=slash~DyeType2\\Color=blue~Name=a~Name=b~Name=b, c~Name=~Name~"
            "Name=\xc3\xa9~Name=\xe9~Color=red~Color=#12345678~Color=1, 2, "
            "3~Color=@ByteArray(red)~Color=@Size(1 2)~"
            "Color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff\\xff\\xff\\x80\\x80\\0\\0\\0\\0)~"
            "Color=@Variant(\\0\\0)~Number=2~Number= 13 ~Number=@ByteArray(3)~number=1~"
            "[DyeType0]~[DyeType-1]~[dyetype1]~name=lower~Color=nonsense~Number=many~"
            "; Name=comment~\\~\"~\xff\xfe")
            .split('~');
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        QByteArray text = "Number=" + QByteArray::number(static_cast<int>(random() % 14)) + "\n";
        for (unsigned n = random() % 16; n > 0; --n)
            text += lines[static_cast<int>(random() % static_cast<unsigned>(lines.size()))] + "\n";
        ASSERT_EQ(load(fileOf(text)), readPlainly(fileOf(text))) << text.constData();
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
    QStringList noFiles{folder.path(), inFile};
#ifdef Q_OS_UNIX
    noFiles << "/proc/dyes.ini";
#endif
    for (const QString& path : noFiles) {
        save({{"a", plainRed}}, path);
        EXPECT_EQ(load(path), Dyes());
        EXPECT_FALSE(QFileInfo(path).isFile());
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);

#ifdef Q_OS_UNIX
    // A file that may not be written is replaced all the same, as long as its folder may be.
    // Windows protects it.
    QFile readOnly(fileOf("Number=0\n"));
    ASSERT_TRUE(readOnly.setPermissions(QFile::ReadOwner));
    save({{"a", plainRed}}, readOnly.fileName());
    EXPECT_EQ(load(readOnly.fileName()), (Dyes{{"a", plainRed}}));
#endif
}

#ifdef Q_OS_UNIX

/// Gives the folder of a file to its owner to write in, or to nobody, root included.
void setFolderWritable(const QString& path, bool writable) {
    const bool isRoot = getuid() == 0;
    EXPECT_TRUE(!isRoot || !writable || seteuid(0) == 0);
    EXPECT_EQ(chmod(QFile::encodeName(QFileInfo(path).path()), writable ? 0755 : 0555), 0);
    EXPECT_TRUE(!isRoot || writable || seteuid(65534) == 0);
}

/// Lets files of this process grow, or not.
void setRoomForFiles(bool room) {
    rlimit limit{};
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = room ? limit.rlim_max : 0;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::signal(SIGXFSZ, room ? SIG_DFL : SIG_IGN);
}

#endif

/// A save that fails leaves nothing in memory for later calls.
TEST_F(CustomDyes, AFailedSaveIsForgotten) {
    struct Obstacle {
        const char* name;
        std::function<void(const QString&)> put, remove;
        bool keepsTheFile;
    };
    const Obstacle obstacles[] = {
        {"a folder in its place",
         [](auto& path) { EXPECT_TRUE(QFile::remove(path) && QDir().mkdir(path)); },
         [](auto& path) { EXPECT_TRUE(QDir().rmdir(path)); }, false},
#ifdef Q_OS_UNIX
        {"a folder that may not be written", [](auto& path) { setFolderWritable(path, false); },
         [](auto& path) { setFolderWritable(path, true); }, true},
        {"no room for files", [](auto&) { setRoomForFiles(false); },
         [](auto&) { setRoomForFiles(true); }, false},
#endif
    };
    const Dyes old = {{"old", plainRed}, {"older", plainRed}};
    Dyes lost;
    for (const char* name : {"a", "b", "c", "d", "e"})
        lost[name] = plainGreen;
    for (const Obstacle& obstacle : obstacles) {
        SCOPED_TRACE(obstacle.name);
        const QString path = freshPath();
        save(old, path);
        EXPECT_EQ(load(path), old);
        const QByteArray bytes = bytesOf(path);

        obstacle.put(path);
        save(lost, path);
        const Dyes during = load(path);
        obstacle.remove(path);
        EXPECT_EQ(during, obstacle.keepsTheFile ? old : Dyes());

        EXPECT_EQ(load(path), during);
        EXPECT_EQ(QFile::exists(path), obstacle.keepsTheFile);
        EXPECT_TRUE(!obstacle.keepsTheFile || bytesOf(path) == bytes);
        save({{"new", plainRed}}, path);
        EXPECT_EQ(loadCopy(path), (Dyes{{"new", plainRed}}));
    }

    // Nor does it write what the host has set on the path and not written yet.
    const QString path = freshPath();
    QSettings hosts(path, QSettings::IniFormat);
    hosts.setValue("Other", 1);
    save(old, path);
    EXPECT_EQ(readPlainly(fileOf(bytesOf(path))), old);
    EXPECT_FALSE(bytesOf(path).contains("Other"));
}

} // namespace
