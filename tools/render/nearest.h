#pragma once

#include <QString>
#include <QStringList>

namespace zrrender {

/// The candidate that `name` most likely meant, without regard to case: the one of least edit
/// distance (insertions, deletions, replacements and swaps of neighbours), the first of equals;
/// empty when none is nearer than about a third of the name.
QString nearestName(const QString& name, const QStringList& candidates);

/// "; did you mean X?", or nothing.
QString suggestion(const QString& name, const QStringList& candidates);

} // namespace zrrender
