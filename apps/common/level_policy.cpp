#include "apps/common/level_policy.h"

#include "apps/common/failure.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace apps {

QString LevelPolicy::text() const {
    switch (method) {
    case Method::none:
        return QStringLiteral("none");
    case Method::given:
        return QStringLiteral("%1:%2").arg(range.low).arg(range.high);
    case Method::clip:
        break;
    }
    if (percent == 0)
        return QStringLiteral("auto");
    return QStringLiteral("clip:") + QString::number(percent, 'g', QLocale::FloatingPointShortest);
}

LevelRange parseRange(const QString& words) {
    static const QRegularExpression form(QStringLiteral("^([0-9]{1,5}):([0-9]{1,5})$"));
    const auto match = form.match(words);
    const LevelRange range{match.captured(1).toInt(), match.captured(2).toInt()};
    if (!match.hasMatch() || range.low >= range.high || range.high > 65535)
        throw BadUsage(
            QStringLiteral("\"%1\" is no range LOW:HIGH within 0:65535").arg(shown(words)));
    return range;
}

LevelPolicy parseLevelPolicy(const QString& words) {
    LevelPolicy policy;
    if (words == QLatin1String("none")) {
        policy.method = LevelPolicy::Method::none;
    } else if (words == QLatin1String("auto")) {
        policy.percent = 0;
    } else if (words.startsWith(QLatin1String("clip:"))) {
        bool isNumber = false;
        policy.percent = words.mid(5).toDouble(&isNumber);
        if (!isNumber || !(policy.percent >= 0 && policy.percent < 50))
            throw BadUsage(QStringLiteral("\"%1\": a share to cut off is a percentage from 0 to "
                                          "below 50")
                               .arg(shown(words)));
    } else if (words.contains(QLatin1Char(':'))) {
        policy.method = LevelPolicy::Method::given;
        policy.range = parseRange(words);
    } else {
        throw BadUsage(QStringLiteral("\"%1\": levels are auto, clip:PERCENT, LOW:HIGH or none")
                           .arg(shown(words)));
    }
    return policy;
}

std::optional<LevelRange> levelsOf(const Histogram& histogram, const LevelPolicy& policy) {
    if (policy.method == LevelPolicy::Method::none)
        return std::nullopt;
    if (policy.method == LevelPolicy::Method::given)
        return policy.range;
    LevelRange range = histogram.clipped(policy.percent);
    if (range.low == range.high) {
        const int largest = histogram.bits() == 8 ? 255 : 65535;
        range = {std::max(range.low, 1) - 1, std::min(range.high, largest - 1) + 1};
    }
    return range;
}

} // namespace apps
