// Any bytes as a file of custom dyes, against the reading entry by entry.

#include "fuzz/input.h"
#include "tests/plain_custom_dyes.h"

#include <lumetra>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

namespace {

/// Whether the file holds a streamed value of another type than a colour. Reading the file makes Qt
/// decode every value, and of some types there are values that it does not survive.
bool holdsOtherStreams(const QByteArray& text) {
    for (const char* tag : {"Variant(", "DateTime("})
        for (int at = text.indexOf(tag); at >= 0; at = text.indexOf(tag, at + 1))
            if (!text.mid(at).startsWith(tag + QByteArray(R"(\0\0\0C)")))
                return true;
    return false;
}

/// A path that has not been used yet: settings files are cached by their path.
QString freshPath() {
    static const QTemporaryDir folder("/dev/shm/dyes-XXXXXX");
    static int files = 0;
    return folder.filePath(QString::number(++files));
}

QString fileOf(const QByteArray& text) {
    QFile file(freshPath());
    require(file.open(QFile::WriteOnly), "no file");
    file.write(text);
    return file.fileName();
}

Dyes load(const QString& path) {
    Dyes dyes = {{"left over", QColor()}};
    Lumetra::LoadCustomDyeType(dyes, path);
    return dyes;
}

int claimedCount(const QString& path) {
    return QSettings(path, QSettings::IniFormat).value("Number", "").toInt();
}

} // namespace

/// Qt's platform keeps its screens.
extern "C" const char*
__lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "leak:libqoffscreen.so";
}

// NOLINTNEXTLINE(readability-non-const-parameter): the fuzzer's signature
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    silenceQt();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(*argc, *argv); // as in every host
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (holdsOtherStreams(text))
        return 0;
    const QString path = fileOf(text);
    Dyes dyes = load(path);
    if (claimedCount(path) <= 1000)
        require(dyes == readPlainly(path), "not what the file holds");
    QFile::remove(path);

    const QString copy = freshPath();
    Lumetra::SaveCustomDyeType(dyes, copy);
    require(load(copy) == dyes, "not what was saved");
    QFile::remove(copy);
    return 0;
}
