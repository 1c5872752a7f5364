#include "apps/cli/natural_order.h"

#include <algorithm>

namespace lumetra {
namespace {

bool isDigit(QChar letter) { return letter >= QLatin1Char('0') && letter <= QLatin1Char('9'); }

/// Where the digits from here on end.
const QChar* endOfNumber(const QChar* from, const QChar* end) {
    return std::find_if_not(from, end, isDigit);
}

/// Numbers of any length: the longer one is larger, once zeros in front are left out.
int compareNumbers(const QChar* a, const QChar* endOfA, const QChar* b, const QChar* endOfB) {
    const auto isZero = [](QChar letter) { return letter == QLatin1Char('0'); };
    a = std::find_if_not(a, endOfA, isZero);
    b = std::find_if_not(b, endOfB, isZero);
    if (endOfA - a != endOfB - b)
        return endOfA - a < endOfB - b ? -1 : 1;
    const auto [x, y] = std::mismatch(a, endOfA, b);
    return x == endOfA ? 0 : x->unicode() - y->unicode();
}

} // namespace

int compareNaturally(const QString& a, const QString& b) {
    const QChar* x = a.constData();
    const QChar* y = b.constData();
    const QChar* const endOfA = x + a.size();
    const QChar* const endOfB = y + b.size();
    while (x != endOfA && y != endOfB) {
        if (isDigit(*x) && isDigit(*y)) {
            const QChar* const afterX = endOfNumber(x, endOfA);
            const QChar* const afterY = endOfNumber(y, endOfB);
            if (const int order = compareNumbers(x, afterX, y, afterY); order != 0)
                return order;
            x = afterX;
            y = afterY;
        } else if (*x != *y) {
            return x->unicode() - y->unicode();
        } else {
            ++x;
            ++y;
        }
    }
    if (x != endOfA || y != endOfB)
        return x == endOfA ? -1 : 1;
    return a.compare(b); // 1 and 01
}

bool NaturalOrder::operator()(const QStringList& a, const QStringList& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), *this);
}

} // namespace lumetra
