#pragma once

#include <QJsonObject>
#include <QString>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"
#include "tools/render/outcome.h"
#include "tools/render/program.h"

namespace zrrender {

/// Refuses a path whose suffix cannot be written, or not with `bits` ("8", "16", "32" or empty),
/// and one where no file can be written.
Outcome checkStillPath(const QString& path, const QString& bits);

/// Writes `image` where `path` is staged; `bits` as above. The solution may be null.
Outcome writeStaged(const QString& path, const zre::Image& image, const zre::Wcs* wcs,
                    const QString& bits, StagedOutputs& outputs);

/// Writes `text` where `path` is staged.
Outcome writeTextStaged(const QString& path, const QByteArray& text, StagedOutputs& outputs);

/// Bits of a sample of the file that `writeStaged` makes.
int writtenBits(const QString& path, const QString& bits);

} // namespace zrrender
