#pragma once

#include <array>

#include <QSize>
#include <QString>
#include <QStringList>

#include "engine/image/image.h"

/// The kinds of moving picture; the row number is what the settings keep.
struct VideoFormat
{
    const char* label;
    const char* suffix; ///< of the file, and its name on the command line
    const char* filter; ///< in file dialogs
};

inline constexpr std::array kVideoFormats{
    VideoFormat{"MP4 video (H.264)", "mp4", "MP4 video (*.mp4)"},
    VideoFormat{"Animated GIF", "gif", "Animated GIF (*.gif)"},
};
inline constexpr int kMp4 = 0;
inline constexpr int kGif = 1;

/// How both eyes travel in one picture.
struct StereoFormat
{
    const char* label;
    const char* key;    ///< on the command line
    const char* suffix; ///< added to the file's name
};

inline constexpr std::array kStereoFormats{
    StereoFormat{"2D (standard)", "2d", ""},
    StereoFormat{"Anaglyph (red/cyan)", "anaglyph", "_anaglyph"},
    StereoFormat{"Side-by-side (full width)", "sbs", "_SBS"},
    StereoFormat{"Side-by-side (half width)", "hsbs", "_HSBS"},
    StereoFormat{"Top-bottom", "tb", "_TB"},
};
inline constexpr int kFlat = 0;
inline constexpr int kAnaglyph = 1;
inline constexpr int kSideBySide = 2;
inline constexpr int kHalfSideBySide = 3;
inline constexpr int kTopBottom = 4;

struct SizePreset
{
    const char* label;
    int width; ///< 0 keeps the picture's size, -1 is the user's own
    int height;
};

inline constexpr std::array kSizePresets{
    SizePreset{"Original (no resize)", 0, 0},
    SizePreset{"2160p - 4K UHD (3840x2160)", 3840, 2160},
    SizePreset{"1440p - QHD (2560x1440)", 2560, 1440},
    SizePreset{"1080p - Full HD (1920x1080)", 1920, 1080},
    SizePreset{"720p - HD (1280x720)", 1280, 720},
    SizePreset{"480p (854x480)", 854, 480},
    SizePreset{"360p (640x360)", 640, 360},
    SizePreset{"Phone portrait (1080x1920)", 1080, 1920},
    SizePreset{"Custom...", -1, -1},
};

/// What an export is to make.
struct VideoPlan
{
    int format = kMp4;
    int stereo3d = kFlat;
    QSize box;    ///< the picture is fitted into it; empty keeps its size
    int fps = 24; ///< 1 to 240
    QSize frame;  ///< of one eye, as it is rendered
    bool hasStars = false;
};

/// A GIF holds no pairs: of its colours nothing would be left.
int stereoFormatFor(int format, int stereo3d);

/// Size of the frames that go to the encoder.
QSize packedSize(int stereo3d, QSize frame);

/// The longest side that the encoder of MP4 videos takes.
inline constexpr int kLongestVideoSide = 16384;

/// Why no video can be of that size, in words that send the user to the control `cure`; empty when
/// one can.
QString videoSizeObstacle(QSize video, const QString& cure);

/// How the frames stand in the video.
struct VideoFit
{
    QSize picture; ///< as it is scaled
    QSize video;   ///< with the margins
    bool isScaled = false;

    /// Whether margins at the outer sides of a pair take its eyes from the middles of their halves.
    bool partsEyes(int stereo3d) const;
};
VideoFit videoFit(const VideoPlan& plan);

/// Brings a packed frame to where the fit has it, with black around it, as the encoder does.
void fitFrame(const VideoFit& fit, zre::Image& frame);

/// The encoder's filter: an even size, or the picture fitted into the box, never enlarged, with
/// black around it.
QString videoFilter(const VideoPlan& plan);

/// The encoder's arguments for raw frames on its standard input.
QStringList encoderArguments(const VideoPlan& plan, const QString& path);

/// Of an MP4 video, from the filter on, without the path.
QStringList h264Arguments(const QString& filter);

/// Arguments for a stream of side-by-side pairs of `packed` pixels; `target` empty keeps their
/// size. `extra` stands before the path.
QStringList sideBySideArguments(QSize packed, QSize target, int fps, const QStringList& extra,
                                const QString& path);

/// Frames held at once: about 256 MiB of them, 4 to 128, at most `frames`.
int frameBatch(QSize packed, int frames);
