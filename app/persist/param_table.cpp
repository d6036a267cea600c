#include "app/persist/param_table.h"

#include <climits>
#include <cmath>

#include <QStringList>

#include "app/persist/edit_distance.h"
#include "engine/depth/color_depth_rows.h"
#include "engine/params/param_ranges.h"

namespace zrproj {

static constexpr const char* kErasuresMeaning =
    "erased star light \"x,y,radius,softness,mode\" joined by \";\" (pixels; mode 0 removed, "
    "1 moved to the background, 2 blended into the glow)";

namespace {

struct KindName
{
    const char* operator()(float zre::ZRParams::*) const { return "float"; }
    const char* operator()(int zre::ZRParams::*) const { return "int"; }
    const char* operator()(bool zre::ZRParams::*) const { return "bool"; }
    const char* operator()(std::string zre::ZRParams::*) const { return "string"; }
    const char* operator()(OutputView) const { return "int"; }
    const char* operator()(RoleId) const { return nullptr; }
    const char* operator()(Retired) const { return nullptr; }
};

} // namespace

/// Null for a row that is no parameter: a role or a retired key.
static const char* kindOf(const ParamKey& row)
{
    return std::visit(KindName{}, row.field);
}

static std::optional<ParamLimits> limitsOf(const ParamKey& row)
{
    if (const zre::ParamRange* range = zre::findParamRange(row.name))
        return ParamLimits{range->min, range->max};
    return row.limits;
}

std::vector<ParamInfo> parameterList()
{
    static constexpr int kDefaultView = 2;
    const zre::ZRParams defaults;
    std::vector<ParamInfo> list;
    forEachKey([&](const ParamKey& row) {
        const char* kind = kindOf(row);
        if (!kind)
            return;
        const std::optional<ParamLimits> limits = limitsOf(row);
        const ParamLimits shown = limits.value_or(ParamLimits{});
        list.push_back({row.name, kind, shown.min, shown.max, limits.has_value(),
                        *fieldText(row, defaults, kDefaultView, {}), row.meaning});
    });
    list.push_back({kErasuresKey, "string", 0.0, 0.0, false, {}, kErasuresMeaning});
    return list;
}

static QString nearestName(const QString& key)
{
    QString best = kErasuresKey;
    int bestDistance = editDistance(key, best);
    forEachKey([&](const ParamKey& row) {
        if (!kindOf(row))
            return;
        if (const int distance = editDistance(key, row.name); distance < bestDistance) {
            bestDistance = distance;
            best = row.name;
        }
    });
    return best;
}

static bool fail(QString* error, const QString& text)
{
    if (error)
        *error = text;
    return false;
}

/// What a value has to be: "a whole number from 0 to 3".
static QString rangeText(const ParamKey& row, const QString& kind)
{
    const std::optional<ParamLimits> limits = limitsOf(row);
    QString number = kind == "int" ? "a whole number" : "a number";
    if (!limits)
        return number;
    return QString("%1 from %2 to %3")
        .arg(number, QString::number(limits->min, 'g', 9), QString::number(limits->max, 'g', 9));
}

static std::optional<bool> switchOf(const QString& value)
{
    const QString word = value.trimmed().toLower();
    if (word == "1" || word == "true" || word == "on")
        return true;
    if (word == "0" || word == "false" || word == "off")
        return false;
    return std::nullopt;
}

/// A whole number of the int range where `whole`, else any finite number that a float holds.
static std::optional<double> numberOf(const QString& value, bool whole)
{
    bool ok = false;
    if (whole) {
        const int number = value.toInt(&ok);
        return ok ? std::optional<double>(number) : std::nullopt;
    }
    const double number = value.toDouble(&ok);
    if (!ok || !std::isfinite(static_cast<float>(number)))
        return std::nullopt;
    return number;
}

static bool listIsWhole(const QString& key, const QString& value)
{
    if (value.contains('\n'))
        return false; // a line of the parameter text could not hold it
    const auto parts = static_cast<std::size_t>(value.split(';', Qt::SkipEmptyParts).size());
    if (key == QLatin1String(kErasuresKey))
        return readErasures(value).size() == parts;
    std::vector<zre::ColorDepthRow> rows;
    zre::parseColorDepthRows(value.toStdString(), rows);
    return rows.size() == parts;
}

/// Why `value` cannot be set, or an empty text.
static QString objection(const ParamKey& row, const QString& value)
{
    const QString kind = kindOf(row);
    const QString start = QString("parameter \"%1\": \"%2\" ").arg(row.name, value);
    if (kind == "string")
        return listIsWhole(row.name, value) ? QString() : start + "is not " + row.meaning + ".";
    if (kind == "bool")
        return switchOf(value) ? QString() : start + "is not one of 0, 1, false, true, off, on.";
    const std::optional<double> number = numberOf(value, kind == "int");
    if (!number)
        return start + "is not " + rangeText(row, kind) + '.';
    const std::optional<ParamLimits> limits = limitsOf(row);
    // In the precision of the field: a bound's own text form may lie a hair beyond the double.
    const auto held = [](double bound) { return static_cast<float>(bound); };
    if (limits && (held(*number) < held(limits->min) || held(*number) > held(limits->max)))
        return start + "is out of range: " + rangeText(row, kind) + " is expected.";
    return {};
}

static bool setErasures(zre::ZRParams& params, const QString& value, QString* error)
{
    if (!listIsWhole(kErasuresKey, value))
        return fail(error, QString("parameter \"%1\": \"%2\" is not %3.")
                               .arg(kErasuresKey, value, kErasuresMeaning));
    params.starErasures = readErasures(value);
    return true;
}

bool setParam(zre::ZRParams& params, int& outputMode, const QString& key, const QString& value,
              QString* error)
{
    if (key == QLatin1String(kErasuresKey))
        return setErasures(params, value, error);
    const ParamKey* row = findParamKey(key);
    if (!row || !kindOf(*row))
        return fail(
            error,
            QString("unknown parameter \"%1\"; the nearest is \"%2\".").arg(key, nearestName(key)));
    if (const QString reason = objection(*row, value); !reason.isEmpty())
        return fail(error, reason);
    const std::optional<bool> on = switchOf(value);
    const bool isSwitch = std::holds_alternative<bool zre::ZRParams::*>(row->field);
    return storeField(*row, isSwitch ? QString::number(*on ? 1 : 0) : value, params, outputMode);
}

} // namespace zrproj
