#include "apps/cli/natural_order.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

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

// A number is a digit, as other characters compare with it, its length and its digits, zeros in
// front left out; the text itself follows, which tells 1 from 01. Both end with NUL.
void appendNaturalKey(std::string& key, const QString& text) {
    constexpr std::ptrdiff_t longest = 254;
    const QByteArray bytes = text.toUtf8();
    const auto isByteOfNumber = [](char byte) { return byte >= '0' && byte <= '9'; };
    for (const char* at = bytes.begin(); at != bytes.end();) {
        if (!isByteOfNumber(*at)) {
            key += *at++;
            continue;
        }
        const char* const end = std::find_if_not(at, bytes.end(), isByteOfNumber);
        at = std::find_if_not(at, end, [](char byte) { return byte == '0'; });
        key += '0';
        key += static_cast<char>(1 + std::min(end - at, longest));
        key.append(at, end);
        at = end;
    }
    key += '\0';
    key.append(bytes.constData(), static_cast<std::size_t>(bytes.size()) + 1);
}

QString textOfNaturalKey(const char*& at) {
    const char* const text = at + std::strlen(at) + 1;
    at = text + std::strlen(text) + 1;
    return QString::fromUtf8(text);
}

bool NaturalOrder::operator()(const QStringList& a, const QStringList& b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), *this);
}

} // namespace lumetra
