#include "tools/render/still_output.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include "app/export/still_file.h"

namespace zrrender {

Outcome checkStillPath(const QString& path, const QString& bits)
{
    const QList<int> depths = stillBitDepths(path);
    if (depths.isEmpty())
        return Outcome::usage(
            QStringLiteral("%1 has no suffix that can be written (.xisf, .fits, .tif, .png, .jpg)")
                .arg(path));
    if (bits.isEmpty() || depths.contains(bits.toInt())) {
        QString error;
        return StagedOutputs::isWritable(path, &error) ? Outcome::done() : Outcome::failed(error);
    }
    QStringList texts;
    for (const int depth : depths)
        texts << QString::number(depth);
    return Outcome::usage(
        QStringLiteral("%1: a .%2 file takes --bits %3, not %4")
            .arg(path, QFileInfo(path).suffix(), texts.join(QStringLiteral(" or ")), bits));
}

Outcome writeStaged(const QString& path, const zre::Image& image, const zre::Wcs* wcs,
                    const QString& bits, StagedOutputs& outputs)
{
    QString error;
    const std::optional<QString> staged = outputs.stage(path, &error);
    if (!staged)
        return Outcome::failed(error);
    StillOptions options;
    options.bits = bits.toInt();
    options.wcs = wcs && wcs->valid ? wcs : nullptr;
    if (!writeStill(*staged, image, options, &error))
        return Outcome::failed(error.replace(*staged, path));
    return Outcome::done();
}

Outcome writeTextStaged(const QString& path, const QByteArray& text, StagedOutputs& outputs)
{
    QString error;
    const std::optional<QString> staged = outputs.stage(path, &error);
    if (!staged)
        return Outcome::failed(error);
    QFile file(*staged);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
        return Outcome::failed(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return Outcome::done();
}

int writtenBits(const QString& path, const QString& bits)
{
    return bits.isEmpty() ? stillBitDepths(path).value(0) : bits.toInt();
}

} // namespace zrrender
