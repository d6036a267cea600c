#pragma once

#include <QList>
#include <QString>
#include <QUrl>

/// True for an existing file whose suffix is one of `imageExts`, without regard to case.
bool isOpenableImage(const QString& path);

/// The first openable image of `urls`; empty when there is none.
QString droppedImage(const QList<QUrl>& urls);

/// The filter of the open dialog, made from `imageExts`.
QString imageFileFilter();
