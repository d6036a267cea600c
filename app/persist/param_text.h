#pragma once

#include <QList>
#include <QMap>
#include <QString>

#include "engine/params/params.h"

namespace zrproj {

/// All session parameters as `key=value` lines in the fixed order of `kParamOrder`, then the
/// unknown lines and the erasures in sorted order. `roles` gives the ids of "starmask", "starless",
/// "stars" and "depthmap".
QString paramsToText(const zre::ZRParams& params, int outputMode,
                     const QMap<QString, QString>& roles, const QList<QString>& unknownLines);

/// Reads `text` over what `params` and `outputMode` hold; absent keys keep their value. Lines with
/// a key that this version does not know go to `unknownLines` in file order. No range is checked.
void paramsFromText(const QString& text, zre::ZRParams& params, int& outputMode,
                    QList<QString>& unknownLines);

} // namespace zrproj
