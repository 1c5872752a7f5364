#include "apps/cli/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace lumetra {
namespace {

/// How many letters must be put in, left out, replaced or swapped with the next one to make `b` of
/// `a`.
int editDistance(const QString& a, const QString& b) {
    const auto width = static_cast<std::size_t>(b.size()) + 1;
    std::vector<int> beforeLast(width), last(width), row(width);
    std::iota(last.begin(), last.end(), 0);
    for (int i = 1; i <= static_cast<int>(a.size()); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j < width; ++j) {
            const int k = static_cast<int>(j);
            const bool isSame = a[i - 1] == b[k - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

} // namespace

QString nearestName(const QString& written, const QStringList& names) {
    const QString shortened = written.left(100).toLower(); // longer than any name: bounds the work
    QString nearest;
    int least = 0;
    for (const QString& name : names) {
        const int distance = editDistance(shortened, name.toLower());
        if (3 * distance <= name.size() + 1 && (nearest.isEmpty() || distance < least)) {
            nearest = name;
            least = distance;
        }
    }
    return nearest;
}

} // namespace lumetra
