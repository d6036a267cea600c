#include "app/mainwindow/openable_file.h"

#include <QFileInfo>

#include "engine/qt/image_file.h"

bool isOpenableImage(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() && imageExts().contains(file.suffix(), Qt::CaseInsensitive);
}

// Both cases of each suffix: cameras write JPG, and file dialogs match by case on this system.
QString imageFileFilter()
{
    QStringList patterns;
    for (const QString& suffix : imageExts())
        patterns << "*." + suffix << "*." + suffix.toUpper();
    return QString("Images (%1);;All files (*)").arg(patterns.join(' '));
}
