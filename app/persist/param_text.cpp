#include "app/persist/param_text.h"

#include <QStringList>

#include "app/persist/param_table.h"

namespace zrproj {

static QString numberText(double value)
{
    return QString::number(value, 'g', 9);
}

QString erasuresText(const std::vector<zre::StarErasure>& erasures)
{
    QStringList parts;
    for (const zre::StarErasure& e : erasures)
        parts << QStringList{numberText(e.x), numberText(e.y), numberText(e.radius),
                             numberText(e.feather), QString::number(e.mode)}
                     .join(',');
    return parts.join(';');
}

std::vector<zre::StarErasure> readErasures(const QString& text)
{
    std::vector<zre::StarErasure> erasures;
    for (const QString& part : text.split(';', Qt::SkipEmptyParts)) {
        const QStringList fields = part.split(',');
        if (fields.size() < 5)
            continue;
        const int mode = fields[4].toInt();
        const zre::StarErasure erasure{fields[0].toDouble(), fields[1].toDouble(),
                                       fields[2].toDouble(), fields[3].toDouble(),
                                       mode == 1 || mode == 2 ? mode : 0};
        if (erasure.radius > 0.0)
            erasures.push_back(erasure);
    }
    return erasures;
}

const ParamKey* findParamKey(const QString& key)
{
    const ParamKey* found = nullptr;
    forEachKey([&](const ParamKey& row) {
        if (key == QLatin1String(row.name))
            found = &row;
    });
    return found;
}

namespace {

/// The text of a field; none for a key that is not written.
struct FieldWriter
{
    const zre::ZRParams& params;
    int outputMode;
    const QMap<QString, QString>& roles;

    std::optional<QString> operator()(float zre::ZRParams::*field) const
    {
        return numberText(static_cast<double>(params.*field));
    }
    std::optional<QString> operator()(int zre::ZRParams::*field) const
    {
        return QString::number(params.*field);
    }
    std::optional<QString> operator()(bool zre::ZRParams::*field) const
    {
        return QString(params.*field ? "1" : "0");
    }
    std::optional<QString> operator()(std::string zre::ZRParams::*field) const
    {
        return QString::fromStdString(params.*field);
    }
    std::optional<QString> operator()(OutputView) const { return QString::number(outputMode); }
    std::optional<QString> operator()(RoleId id) const
    {
        return roles.value(QString::fromLatin1(id.role));
    }
    std::optional<QString> operator()(Retired) const { return std::nullopt; }
};

/// Stores a value in its field; false for a key that is not read by this version.
struct FieldReader
{
    zre::ZRParams& params;
    int& outputMode;
    const QString& value;

    bool operator()(float zre::ZRParams::*field) const
    {
        params.*field = static_cast<float>(value.toDouble());
        return true;
    }
    bool operator()(int zre::ZRParams::*field) const
    {
        params.*field = value.toInt();
        return true;
    }
    bool operator()(bool zre::ZRParams::*field) const
    {
        params.*field = value.toInt() != 0;
        return true;
    }
    bool operator()(std::string zre::ZRParams::*field) const
    {
        params.*field = value.toStdString();
        return true;
    }
    bool operator()(OutputView) const
    {
        outputMode = value.toInt();
        return true;
    }
    bool operator()(RoleId) const { return true; } // the manifest of a project names its roles
    bool operator()(Retired) const { return false; }
};

} // namespace

std::optional<QString> fieldText(const ParamKey& row, const zre::ZRParams& params, int outputMode,
                                 const QMap<QString, QString>& roles)
{
    return std::visit(FieldWriter{params, outputMode, roles}, row.field);
}

bool storeField(const ParamKey& row, const QString& value, zre::ZRParams& params, int& outputMode)
{
    return std::visit(FieldReader{params, outputMode, value}, row.field);
}

static QMap<QString, QString> textByKey(const zre::ZRParams& params, int outputMode,
                                        const QMap<QString, QString>& roles,
                                        const QList<QString>& unknownLines)
{
    QMap<QString, QString> values;
    for (const QString& line : unknownLines)
        if (const qsizetype cut = line.indexOf('='); cut >= 0)
            values[line.left(cut)] = line.mid(cut + 1);
    for (const ParamKey& row : kParamOrder)
        if (const std::optional<QString> text = fieldText(row, params, outputMode, roles))
            values[QString::fromLatin1(row.name)] = *text;
    const zre::ZRParams defaults;
    for (const ParamKey& row : kDetectionOrder) {
        values.remove(row.name);
        const std::optional<QString> text = fieldText(row, params, outputMode, roles);
        if (text != fieldText(row, defaults, outputMode, roles))
            values[QString::fromLatin1(row.name)] = *text;
    }
    values.remove(kErasuresKey);
    if (!params.starErasures.empty())
        values[kErasuresKey] = erasuresText(params.starErasures);
    return values;
}

QString paramsToText(const zre::ZRParams& params, int outputMode,
                     const QMap<QString, QString>& roles, const QList<QString>& unknownLines)
{
    QMap<QString, QString> values = textByKey(params, outputMode, roles, unknownLines);
    QString text;
    const auto emitLine = [&text](const QString& key, const QString& value) {
        text += key + '=' + value + '\n';
    };
    for (const ParamKey& row : kParamOrder) {
        const auto found = values.constFind(QString::fromLatin1(row.name));
        if (found == values.cend())
            continue;
        emitLine(found.key(), found.value());
        values.erase(found);
    }
    for (auto rest = values.cbegin(); rest != values.cend(); ++rest)
        emitLine(rest.key(), rest.value());
    return text;
}

void paramsFromText(const QString& text, zre::ZRParams& params, int& outputMode,
                    QList<QString>& unknownLines)
{
    unknownLines.clear();
    for (const QString& rawLine : text.split('\n')) {
        const QString line = rawLine.trimmed();
        const qsizetype cut = line.indexOf('=');
        if (cut < 1)
            continue;
        const QString key = line.left(cut);
        const QString value = line.mid(cut + 1);
        if (key == QLatin1String(kErasuresKey)) {
            params.starErasures = readErasures(value);
            continue;
        }
        const ParamKey* row = findParamKey(key);
        if (!row || !storeField(*row, value, params, outputMode))
            unknownLines << line;
    }
}

} // namespace zrproj
