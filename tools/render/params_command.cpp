#include <algorithm>

#include "app/persist/param_table.h"
#include "app/persist/param_text.h"
#include "app/session/session.h"
#include "tools/render/command_line.h"
#include "tools/render/program.h"

namespace zrrender {

static QString rangeText(const zrproj::ParamInfo& info)
{
    if (info.kind == QLatin1String("bool"))
        return QStringLiteral("0 or 1");
    if (!info.hasRange)
        return QStringLiteral("any");
    return QStringLiteral("%1 to %2")
        .arg(QString::number(info.min, 'g', 9), QString::number(info.max, 'g', 9));
}

/// Without the digits that only tell a float from its neighbours.
static QString defaultText(const zrproj::ParamInfo& info)
{
    if (info.kind != QLatin1String("float"))
        return info.defaultText;
    return QString::number(info.defaultText.toDouble(), 'g', 7);
}

static QJsonValue defaultValue(const zrproj::ParamInfo& info)
{
    if (info.kind == QLatin1String("string"))
        return info.defaultText;
    if (info.kind == QLatin1String("bool"))
        return info.defaultText == QLatin1String("1");
    return defaultText(info).toDouble();
}

/// Four columns as wide as their longest entry, then the meaning.
static QString paramTable(const std::vector<zrproj::ParamInfo>& list)
{
    constexpr std::size_t kColumns = 4;
    std::vector<std::array<QString, kColumns + 1>> rows;
    rows.push_back({"name", "kind", "range", "default", "meaning"});
    for (const zrproj::ParamInfo& info : list)
        rows.push_back({info.name, info.kind, rangeText(info), defaultText(info), info.meaning});
    std::array<qsizetype, kColumns> widths{};
    for (const auto& cells : rows)
        for (std::size_t c = 0; c < kColumns; ++c)
            widths[c] = std::max(widths[c], cells[c].size());
    QString text;
    for (const auto& cells : rows) {
        for (std::size_t c = 0; c < kColumns; ++c)
            text += cells[c].leftJustified(widths[c] + 2);
        text += cells[kColumns] + QLatin1Char('\n');
    }
    return text;
}

static QJsonObject paramObject(const zrproj::ParamInfo& info)
{
    QJsonObject object{{"name", info.name},
                       {"kind", info.kind},
                       {"default", defaultValue(info)},
                       {"meaning", info.meaning}};
    if (info.hasRange) {
        object.insert("min", info.min);
        object.insert("max", info.max);
    }
    return object;
}

Outcome runParams(const Invocation& invocation, RunContext& context)
{
    if (invocation.has(Option::Text) && context.console.json())
        return Outcome::usage(QStringLiteral("params takes --text or --json, not both"));
    if (invocation.has(Option::Text)) {
        const Session session;
        context.console.answer(zrproj::paramsToText(session.params, session.outputMode, {}, {}));
        return Outcome::done();
    }
    const std::vector<zrproj::ParamInfo> list = zrproj::parameterList();
    if (!context.console.json())
        context.console.answer(paramTable(list));
    else
        for (const zrproj::ParamInfo& info : list)
            context.console.answer(paramObject(info));
    return Outcome::done();
}

} // namespace zrrender
