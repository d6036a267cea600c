#include "tools/render/nearest.h"

#include <algorithm>

#include "app/persist/edit_distance.h"

namespace zrrender {

QString nearestName(const QString& name, const QStringList& candidates)
{
    const qsizetype longest = 64; // nothing that long is a slip of the finger
    if (name.size() > longest)
        return {};
    QString nearest;
    int least = std::max(2, (static_cast<int>(name.size()) + 2) / 3) + 1;
    for (const QString& candidate : candidates) {
        const int distance = zrproj::editDistance(name, candidate);
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
