#include "apps/common/dyes.h"

#include "apps/common/failure.h"

#include <QFile>

#include <lumetra>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <numeric>
#include <utility>

namespace apps {
namespace {

/// How many letters must be put in, left out or replaced to make `b` of `a`, whatever their case.
int editDistance(const QString& a, const QString& b) {
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar letter : a) {
        int diagonal = row[0]++;
        auto column = row.begin() + 1;
        for (const QChar other : b) {
            const int replaced = diagonal + (letter.toLower() == other.toLower() ? 0 : 1);
            diagonal = *column;
            *column = std::min({replaced, *column + 1, *(column - 1) + 1});
            ++column;
        }
    }
    return row.back();
}

void sortByDistance(std::vector<Dye>& dyes, int Dye::*wavelength, int nanometres) {
    dyes.erase(std::remove_if(dyes.begin(), dyes.end(),
                              [&](const Dye& dye) { return dye.*wavelength == 0; }),
               dyes.end());
    const auto place = [&](const Dye& dye) {
        return std::pair(std::abs(dye.*wavelength - nanometres), dye.name);
    };
    std::sort(dyes.begin(), dyes.end(),
              [&](const Dye& a, const Dye& b) { return place(a) < place(b); });
}

bool byName(const Dye& a, const Dye& b) { return a.name < b.name; }

} // namespace

DyeList::DyeList() {
    Lumetra::InitFluoDyeType();
    const auto& catalogue = Lumetra::g_mapFluo;
    for (auto dye = catalogue.begin(); dye != catalogue.end(); ++dye)
        dyes_.push_back({dye.key(), QColor(dye->nColorR, dye->nColorG, dye->nColorB),
                         dye->nExcitation, dye->nEmission, false});
}

void DyeList::add(const QMap<QString, QColor>& custom) {
    for (auto dye = custom.begin(); dye != custom.end(); ++dye) {
        const Dye added{dye.key(), dye.value(), 0, 0, true};
        const auto place = std::lower_bound(dyes_.begin(), dyes_.end(), added, byName);
        if (place != dyes_.end() && place->name == added.name)
            *place = added;
        else
            dyes_.insert(place, added);
    }
}

std::vector<Dye> DyeList::inSliderOrder() const {
    std::vector<Dye> ordered;
    for (const QString& name : Lumetra::m_vecSldFluo)
        ordered.push_back(at(name));
    std::copy_if(dyes_.begin(), dyes_.end(), std::back_inserter(ordered), [](const Dye& dye) {
        return dye.custom && !Lumetra::m_vecSldFluo.contains(dye.name);
    });
    return ordered;
}

const Dye* DyeList::find(const QString& name) const {
    const Dye* alike = nullptr;
    int matches = 0;
    for (const Dye& dye : dyes_) {
        if (dye.name == name)
            return &dye;
        if (dye.name.compare(name, Qt::CaseInsensitive) == 0) {
            alike = &dye;
            ++matches;
        }
    }
    return matches == 1 ? alike : nullptr;
}

const Dye& DyeList::at(const QString& name) const {
    if (const Dye* dye = find(name))
        return *dye;
    throw Failure(QStringLiteral("there is no dye \"%1\"; the nearest names are \"%2\"")
                      .arg(shown(name), nearestNames(name).join(QStringLiteral("\", \""))));
}

std::vector<Dye> DyeList::containing(const QString& text) const {
    std::vector<Dye> found;
    std::copy_if(dyes_.begin(), dyes_.end(), std::back_inserter(found),
                 [&](const Dye& dye) { return dye.name.contains(text, Qt::CaseInsensitive); });
    return found;
}

QStringList DyeList::nearestNames(const QString& written, int count) const {
    const QString shortened = written.left(100); // longer than any name: bounds the work
    std::vector<std::pair<int, QString>> ranked;
    ranked.reserve(dyes_.size());
    for (const Dye& dye : dyes_)
        ranked.emplace_back(editDistance(shortened, dye.name), dye.name);
    std::sort(ranked.begin(), ranked.end());
    QStringList names;
    for (const auto& [distance, name] : ranked)
        if (names.size() < count)
            names << name;
    return names;
}

void sortByEmission(std::vector<Dye>& dyes, int nanometres) {
    sortByDistance(dyes, &Dye::emission, nanometres);
}

void sortByExcitation(std::vector<Dye>& dyes, int nanometres) {
    sortByDistance(dyes, &Dye::excitation, nanometres);
}

QMap<QString, QColor> readCustomDyes(const QString& file) {
    QFile device(file); // the library says nothing of a file that it cannot read
    if (!device.open(QIODevice::ReadOnly))
        throw Failure(shown(file) + QStringLiteral(": ") + device.errorString());
    device.close();
    QMap<QString, QColor> dyes;
    Lumetra::LoadCustomDyeType(dyes, file);
    if (dyes.isEmpty())
        throw Failure(shown(file) + QStringLiteral(": holds no custom dyes"));
    for (auto dye = dyes.begin(); dye != dyes.end(); ++dye)
        if (dye.key().isEmpty() || !dye->isValid())
            throw Failure(QStringLiteral("%1: the colour of the dye \"%2\" cannot be understood")
                              .arg(shown(file), shown(dye.key())));
    return dyes;
}

} // namespace apps
