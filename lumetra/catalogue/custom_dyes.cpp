#include "lumetra/lumetra"

#include <QFile>
#include <QSettings>
#include <QVariant>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextDecoder>
#endif

#include <algorithm>
#include <set>

namespace {

constexpr char countKey[] = "Number";
constexpr char sectionPrefix[] = "DyeType";
constexpr int prefixLength = sizeof sectionPrefix - 1;

QString section(int number) { return QLatin1String(sectionPrefix) + QString::number(number); }

QString nameKey(const QString& section) { return section + QStringLiteral("/Name"); }

QString colourKey(const QString& section) { return section + QStringLiteral("/Color"); }

/// The numbers from 1 to `count` of which the file may hold a section. Qt takes small letters for
/// large ones on some systems alone.
std::set<int> numbersOfSections(const QSettings& settings, int count) {
    std::set<int> numbers;
    for (const QString& group : settings.childGroups()) {
        const int number = group.mid(prefixLength).toInt();
        if (number >= 1 && number <= count &&
            group.compare(section(number), Qt::CaseInsensitive) == 0)
            numbers.insert(number);
    }
    return numbers;
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

bool isUtf8(const QString& path) {
    QFile file(path);
    if (!file.exists() || !file.open(QFile::ReadOnly))
        return false;
    QTextDecoder decoder(QTextCodec::codecForName("UTF-8"));
    for (qint64 left = file.size(); left > 0 && !decoder.hasFailure();) {
        const QByteArray text = file.read(std::min(left, qint64{1} << 16));
        if (text.isEmpty())
            return false;
        decoder.toUnicode(text);
        left -= text.size();
    }
    return !decoder.hasFailure() && !decoder.needsMoreData();
}

/// Makes Qt 5, which takes bytes outside ASCII for Latin-1 and writes none, read what Qt 6 wrote.
void chooseEncoding(QSettings& settings) {
    if (isUtf8(settings.fileName()))
        settings.setIniCodec("UTF-8");
}

#else

void chooseEncoding(QSettings& /*settings*/) {} // always UTF-8

#endif

} // namespace

void Lumetra::LoadCustomDyeType(QMap<QString, QColor>& map, const QString& path) {
    QSettings settings(path, QSettings::IniFormat);
    chooseEncoding(settings);
    const int count = settings.value(countKey, QString()).toInt();
    map.clear();
    if (count < 1)
        return;

    // Every gap reads as the same nameless entry, so one insertion stands for a run of them.
    const auto insertNameless = [&map] { map.insert(QString(), QColor()); };
    int previous = 0;
    for (const int number : numbersOfSections(settings, count)) {
        if (number - previous > 1)
            insertNameless();
        map.insert(settings.value(nameKey(section(number)), QString()).toString(),
                   settings.value(colourKey(section(number)), QString()).value<QColor>());
        previous = number;
    }
    if (previous < count)
        insertNameless();
}

void Lumetra::SaveCustomDyeType(QMap<QString, QColor>& map, const QString& path) {
    // Of a path, Qt keeps in memory what it could not write, unless it finds no file there: where
    // the old one stays, nothing must be set.
    if (!QFile::remove(path) && QFile::exists(path))
        return;

    QSettings settings(path, QSettings::IniFormat);
    settings.clear(); // what the host may have set on the same path and not written yet
    settings.setValue(countKey, static_cast<int>(map.size()));
    int number = 1;
    for (auto dye = map.cbegin(); dye != map.cend(); ++dye, ++number) {
        settings.setValue(nameKey(section(number)), dye.key());
        settings.setValue(colourKey(section(number)), dye.value());
    }
}
