#include "lumetra/lumetra"

#include <QFile>
#include <QSettings>
#include <QVariant>

#include <map>
#include <utility>

namespace {

constexpr char countKey[] = "Number";
constexpr char sectionPrefix[] = "DyeType";
constexpr int prefixLength = sizeof sectionPrefix - 1;

QString section(int number) { return QLatin1String(sectionPrefix) + QString::number(number); }

QString nameKey(const QString& section) { return section + QStringLiteral("/Name"); }

QString colourKey(const QString& section) { return section + QStringLiteral("/Color"); }

/// The sections of dyes 1 to `count` that the file holds, by number.
std::map<int, QString> dyeSections(const QSettings& settings, int count) {
    std::map<int, QString> sections;
    for (const QString& group : settings.childGroups()) {
        const int number = group.mid(prefixLength).toInt();
        if (number >= 1 && number <= count && group == section(number))
            sections.emplace(number, group);
    }
    return sections;
}

} // namespace

void Lumetra::LoadCustomDyeType(QMap<QString, QColor>& map, QString const& path) {
    const QSettings settings(path, QSettings::IniFormat);
    const int count = settings.value(countKey, QString()).toInt();
    map.clear();
    if (count < 1)
        return;

    // Every gap reads as the same nameless entry, so one insertion stands for a run of them.
    const auto insertNameless = [&map] { map.insert(QString(), QColor()); };
    int previous = 0;
    for (const auto& [number, group] : dyeSections(settings, count)) {
        if (number - previous > 1)
            insertNameless();
        map.insert(settings.value(nameKey(group), QString()).toString(),
                   settings.value(colourKey(group), QString()).value<QColor>());
        previous = number;
    }
    if (previous < count)
        insertNameless();
}

void Lumetra::SaveCustomDyeType(QMap<QString, QColor>& map, QString const& path) {
    QFile::remove(path);
    QSettings settings(path, QSettings::IniFormat);
    settings.setValue(countKey, map.size());
    int number = 1;
    for (auto dye = map.cbegin(); dye != map.cend(); ++dye, ++number) {
        settings.setValue(nameKey(section(number)), dye.key());
        settings.setValue(colourKey(section(number)), dye.value());
    }
}
