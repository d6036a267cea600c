#pragma once

#include <QString>

/// True for an existing file whose suffix is one of `imageExts`, without regard to case.
bool isOpenableImage(const QString& path);

/// The filter of the open dialog, made from `imageExts`.
QString imageFileFilter();
