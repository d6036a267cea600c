#pragma once

#include <QString>

namespace zrproj {

/// How many slips of the finger lie between two words: insertions, deletions, replacements and
/// swaps of neighbours, without regard to case. Cost: the product of their lengths.
int editDistance(const QString& left, const QString& right);

} // namespace zrproj
