#include "app/persist/edit_distance.h"

#include <algorithm>
#include <vector>

namespace zrproj {

int editDistance(const QString& left, const QString& right)
{
    const QString a = left.toLower();
    const QString b = right.toLower();
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

} // namespace zrproj
