#include "app/persist/color_profile.h"

#include <array>
#include <utility>

#include <QFile>
#include <QSaveFile>

namespace zrcol {

namespace {

constexpr const char* kSignature = "ZRCOL01";
constexpr const char* kEntriesKey = "colorDepthEntries";
/// Far beyond the ten rows that a profile can hold; what follows in a longer file is not read.
constexpr qint64 kLargestProfile = 1 << 20;

struct Number
{
    const char* key;
    float zre::ZRParams::*field;
};

constexpr std::array kNumbers{
    Number{"colorDepthWeight", &zre::ZRParams::colorDepthWeight},
    Number{"colorDepthSmoothness", &zre::ZRParams::colorDepthSmoothness},
    Number{"colorDepthGaussian", &zre::ZRParams::colorDepthGaussian},
    Number{"colorDepthGamma", &zre::ZRParams::colorDepthGamma},
};

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

/// Stores the value of a line `key=value`; false for any other line.
bool storeLine(const QString& line, zre::ZRParams& params)
{
    const qsizetype cut = line.indexOf('=');
    if (cut < 1)
        return false;
    const QString key = line.left(cut);
    const QString value = line.mid(cut + 1);
    for (const Number& number : kNumbers)
        if (key == QLatin1String(number.key)) {
            params.*number.field = value.toFloat();
            return true;
        }
    if (key != QLatin1String(kEntriesKey))
        return false;
    params.colorDepthEntries = value.toStdString();
    return true;
}

} // namespace

bool save(const QString& path, const zre::ZRParams& params, QString* error)
{
    QString text = kSignature + QString('\n');
    for (const Number& number : kNumbers)
        text += QString("%1=%2\n").arg(
            number.key, QString::number(static_cast<double>(params.*number.field), 'g', 9));
    text +=
        QString("%1=").arg(kEntriesKey) + QString::fromStdString(params.colorDepthEntries) + '\n';

    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::Text) &&
                         file.write(bytes) == bytes.size() && file.commit();
    return written || fail(error, "Cannot write: " + path);
}

bool load(const QString& path, zre::ZRParams& params, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(error, "Cannot open: " + path);
    const QStringList lines = QString::fromUtf8(file.read(kLargestProfile)).split('\n');
    if (lines.first().trimmed() != kSignature)
        return fail(error, "Not a color depth profile (bad signature).");
    zre::ZRParams changed = params;
    bool found = false;
    for (const QString& line : lines.mid(1))
        found = storeLine(line.trimmed(), changed) || found;
    if (!found)
        return fail(error, "No color depth settings found in: " + path);
    params = std::move(changed);
    return true;
}

} // namespace zrcol
