#include <algorithm>
#include <cmath>

#include <QRegularExpression>
#include <QSettings>

#include "app/persist/appcfg.h"

namespace appcfg {

namespace {

/// Made anew by each call, so that no thread holds one for another.
struct Store : QSettings
{
    Store()
        : QSettings("Corvelle Works", "Zerrith Studio")
    {
    }
};

QVariant boundFlag(const Row& row, const QVariant& value)
{
    const QString text = value.toString().trimmed().toLower();
    if (text == "true" || text == "1")
        return true;
    if (text == "false" || text == "0")
        return false;
    return row.initial != 0.0;
}

QVariant boundWhole(const Row& row, const QVariant& value)
{
    bool isNumber = false;
    const qlonglong number = value.toString().trimmed().toLongLong(&isNumber);
    const auto initial = static_cast<int>(row.initial);
    if (!isNumber || (row.kind == Kind::WholeOrAutomatic && number == 0))
        return initial;
    return static_cast<int>(
        std::clamp(number, static_cast<qlonglong>(row.min), static_cast<qlonglong>(row.max)));
}

QVariant boundReal(const Row& row, const QVariant& value)
{
    bool isNumber = false;
    const double number = value.toString().trimmed().toDouble(&isNumber);
    return isNumber && number >= row.min && number <= row.max ? number : row.initial;
}

QVariant boundColour(const QVariant& value)
{
    static const QRegularExpression kForm("^#[0-9a-f]{6}\\z",
                                          QRegularExpression::CaseInsensitiveOption);
    const QString text = value.toString();
    return kForm.match(text).hasMatch() ? text : QString();
}

QVariant boundBytes(const Row& row, const QVariant& value)
{
    const bool fits =
        value.typeId() == QMetaType::QByteArray && value.toByteArray().size() <= row.max;
    return fits ? value.toByteArray() : QByteArray();
}

QVariant boundList(const Row& row, const QVariant& value)
{
    QStringList entries = value.toStringList();
    entries.removeAll(QString());
    return QStringList(entries.mid(0, static_cast<qsizetype>(row.max)));
}

QVariant bound(const Row& row, const QVariant& value)
{
    switch (row.kind) {
    case Kind::Flag:
        return boundFlag(row, value);
    case Kind::Whole:
    case Kind::WholeOrAutomatic:
        return boundWhole(row, value);
    case Kind::Real:
        return boundReal(row, value);
    case Kind::Text:
        return value.toString();
    case Kind::Colour:
        return boundColour(value);
    case Kind::Bytes:
        return boundBytes(row, value);
    case Kind::List:
        return boundList(row, value);
    }
    return {};
}

} // namespace

void useStoreIn(const QString& folder)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
}

QVariant stored(const Row& row)
{
    return bound(row, Store().value(row.key));
}

void store(const Row& row, const QVariant& value)
{
    const bool limited = row.kind == Kind::Real && !std::isnan(value.toDouble());
    Store().setValue(row.key,
                     bound(row, limited ? std::clamp(value.toDouble(), row.min, row.max) : value));
}

QStringList takeOldRecentFiles()
{
    QStringList old = stored(kSettings.recentFiles).toStringList();
    Store().remove(kSettings.recentFiles.key);
    return old;
}

void rememberDialogPath(const QString& key, const QString& path)
{
    Store().setValue(key, path);
}

QString lastDialogPath(const QString& key)
{
    return Store().value(key).toString();
}

} // namespace appcfg
