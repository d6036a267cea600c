#include "tools/render/nearest.h"

#include <algorithm>
#include <vector>

namespace zrrender {

static int editDistance(const QString& a, const QString& b)
{
    const auto columns = static_cast<std::size_t>(b.size()) + 1;
    std::vector<int> beforePrevious(columns);
    std::vector<int> previous(columns);
    std::vector<int> current(columns);
    for (std::size_t k = 0; k < columns; ++k)
        previous[k] = static_cast<int>(k);
    for (qsizetype i = 0; i < a.size(); ++i) {
        current[0] = static_cast<int>(i) + 1;
        for (qsizetype k = 0; k < b.size(); ++k) {
            const auto at = static_cast<std::size_t>(k);
            const int replaced = previous[at] + (a[i] == b[k] ? 0 : 1);
            current[at + 1] = std::min({replaced, previous[at + 1] + 1, current[at] + 1});
            if (i > 0 && k > 0 && a[i] == b[k - 1] && a[i - 1] == b[k])
                current[at + 1] = std::min(current[at + 1], beforePrevious[at - 1] + 1);
        }
        beforePrevious.swap(previous);
        previous.swap(current);
    }
    return previous.back();
}

QString nearestName(const QString& name, const QStringList& candidates)
{
    const qsizetype longest = 64; // nothing that long is a slip of the finger
    if (name.size() > longest)
        return {};
    QString nearest;
    int least = std::max(2, (static_cast<int>(name.size()) + 2) / 3) + 1;
    for (const QString& candidate : candidates) {
        const int distance = editDistance(name.toLower(), candidate.toLower());
        if (distance < least && distance < candidate.size()) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

QString suggestion(const QString& name, const QStringList& candidates)
{
    const QString nearest = nearestName(name, candidates);
    return nearest.isEmpty() ? QString() : QStringLiteral("; did you mean %1?").arg(nearest);
}

} // namespace zrrender
