#include "app/video/encode_progress.h"

#include <cmath>

static QString durationText(double seconds)
{
    const auto whole = static_cast<long long>(std::ceil(seconds));
    if (whole < 60)
        return QString("%1 s").arg(whole);
    if (whole < 3600)
        return QString("%1 min %2 s").arg(whole / 60).arg(whole % 60);
    return QString("%1 h %2 min").arg(whole / 3600).arg(whole % 3600 / 60);
}

QString encodeProgressText(int done, int frames, double elapsedSeconds)
{
    constexpr double kToldAfterSeconds = 2.0; // an estimate from less would jump about
    QString text = QString("%1 of %2 frames").arg(done).arg(frames);
    if (done < 1 || elapsedSeconds < kToldAfterSeconds)
        return text;
    if (done >= frames)
        return text + "  -  finishing the file";
    const double rate = done / elapsedSeconds;
    const QString shown = rate < 1.0 ? QString::number(rate, 'g', 2)
                                     : QString::number(rate, 'f', rate < 10.0 ? 1 : 0);
    return text + QString("  -  %1 frames a second  -  %2 left")
                      .arg(shown)
                      .arg(durationText((frames - done) / rate));
}
