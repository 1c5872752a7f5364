#include "apps/cli/plate.h"

#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace lumetra {
namespace {

constexpr int letters = 26;

int rowOf(const QString& name) {
    int row = 0;
    for (const QChar letter : name)
        row = row * letters + letter.unicode() - 'A' + 1;
    return row - 1;
}

/// A well by a letter and a number, or by two numbers.
std::vector<Well> candidates(const QString& name) {
    static const QRegularExpression form(
        QStringLiteral("(?<![A-Za-z0-9])(?:"
                       "(?<letters>[A-Z]|A[A-F])(?: - )?(?<column>%1)(?![A-Za-z0-9])|"
                       "[rR](?<row>%2)[cC](?<columnOfRow>%1)(?![0-9]))")
            .arg(QStringLiteral("0?[1-9]|[1-3][0-9]|4[0-8]"),
                 QStringLiteral("0?[1-9]|[12][0-9]|3[0-2]")));
    std::vector<Well> wells;
    for (auto matches = form.globalMatch(name); matches.hasNext();) {
        const auto match = matches.next();
        const auto part = [&](const char* group) { return match.captured(QLatin1String(group)); };
        const bool hasLetters = !part("letters").isEmpty();
        const int row = hasLetters ? rowOf(part("letters")) : part("row").toInt() - 1;
        const QString column = part(hasLetters ? "column" : "columnOfRow");
        wells.push_back(
            {name.left(match.capturedStart()), row, column.toInt(), name.mid(match.capturedEnd())});
    }
    return wells;
}

} // namespace

QString rowName(int row) {
    const QString last(QChar('A' + row % letters));
    return row < letters ? last : rowName(row / letters - 1) + last;
}

std::vector<std::optional<Well>> findWells(const QStringList& names) {
    std::vector<std::vector<Well>> ofNames;
    std::vector<QSet<QString>> wellsOfPlace;
    for (const QString& name : names) {
        ofNames.push_back(candidates(name));
        const std::vector<Well>& wells = ofNames.back();
        wellsOfPlace.resize(std::max(wellsOfPlace.size(), wells.size()));
        for (std::size_t place = 0; place < wells.size(); ++place)
            wellsOfPlace[place] << rowName(wells[place].row) + QString::number(wells[place].column);
    }
    const auto most = std::max_element(
        wellsOfPlace.begin(), wellsOfPlace.end(),
        [](const QSet<QString>& a, const QSet<QString>& b) { return a.size() < b.size(); });
    const auto meant = static_cast<std::size_t>(most - wellsOfPlace.begin());
    std::vector<std::optional<Well>> found(ofNames.size());
    for (std::size_t i = 0; i < ofNames.size(); ++i)
        if (meant < ofNames[i].size())
            found[i] = ofNames[i][meant];
    return found;
}

} // namespace lumetra
