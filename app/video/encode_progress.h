#pragma once

#include <QString>

/// How far an export is, for the user: frames written, their rate and the time left, the last two
/// once they can be told.
QString encodeProgressText(int done, int frames, double elapsedSeconds);
