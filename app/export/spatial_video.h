#pragma once

#include <array>

#include <QSize>
#include <QString>
#include <QStringList>

/// Players that show a side-by-side pair as depth once the file tells them so.
enum class SpatialKind
{
    Vr180,
    Apple
};

/// How wide the pair of a spatial file is made.
struct SpatialSize
{
    const char* label;
    int width; ///< of both eyes together, pixels; 0 keeps them
};

inline constexpr std::array kSpatialSizes{
    SpatialSize{"Original (no resize)", 0},
    SpatialSize{"8K (8192 pixels wide)", 8192},
    SpatialSize{"5.7K (5760 pixels wide)", 5760},
    SpatialSize{"4K (3840 pixels wide)", 3840},
};

/// The widest pair that players decode, and so what is suggested for a larger one.
inline constexpr int kPlayablePairWidth = 8192;

/// The encoder's further arguments for such a video.
QStringList spatialArguments(SpatialKind kind);

/// The size of a pair of `packed` pixels made `width` wide, both sides even and each eye unshaped;
/// empty where the pair is no wider, or for a width of 0.
QSize spatialTarget(QSize packed, int width);

/// The largest pair without margins, both sides even, whose eyes fit into `box` without being
/// enlarged; empty for an empty box.
QSize spatialTargetIn(QSize frame, QSize box);

/// Writes into the finished MP4 at `path` what players of the kind look for: for Apple's a field of
/// 90 degrees and a baseline of 63 mm. False, with the file as it was, where that cannot be done.
bool injectSpatial(SpatialKind kind, const QString& path);

/// The encoder's arguments for a video of `seconds` that shows the one picture in `frame`.
QStringList loopedStillArguments(const QString& frame, int seconds, QSize target,
                                 const QStringList& extra, const QString& path);
