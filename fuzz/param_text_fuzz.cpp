// The parameter text and the colour rows inside it: any bytes are read without harm, and what was
// read once is written and read again without change.

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/persist/param_text.h"
#include "engine/depth/color_depth_rows.h"

static QString rewritten(const QString& text)
{
    zre::ZRParams params;
    int outputMode = 2;
    QList<QString> unknown;
    zrproj::paramsFromText(text, params, outputMode, unknown);
    return zrproj::paramsToText(params, outputMode, {}, unknown);
}

static void checkRows(const std::string& text)
{
    std::vector<zre::ColorDepthRow> rows;
    zre::parseColorDepthRows(text, rows);
    for (const zre::ColorDepthRow& row : rows)
        for (const float value : {row.r, row.g, row.b, row.tolerance, row.depth})
            if (!std::isfinite(value))
                std::abort();
    const std::string once = zre::colorDepthRowsText(rows);
    zre::parseColorDepthRows(once, rows);
    if (zre::colorDepthRowsText(rows) != once)
        std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const QString once = rewritten(QString::fromUtf8(bytes.data(), static_cast<qsizetype>(size)));
    if (rewritten(once) != once)
        std::abort();
    checkRows(bytes);
    return 0;
}
