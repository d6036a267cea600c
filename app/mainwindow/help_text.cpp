#include "app/mainwindow/help_text.h"

#include <array>

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>

namespace {

struct Gesture
{
    const char* gesture;
    const char* effect;
};

constexpr std::array kGestures{
    Gesture{"Wheel", "Zoom to the cursor"},
    Gesture{"Drag", "Move the picture"},
    Gesture{"Arrow keys", "Move the picture"},
    Gesture{"Space, held", "Look at the source"},
    Gesture{"Double click", "Whole picture, or actual pixels"},
};

struct HelpParagraph
{
    const char* tab;
    const char* section;
    const char* text;
};

constexpr std::array kTabHelp{
    HelpParagraph{"Stars", "Star separation",
                  "Stars are lifted out of the picture and drawn as points of light of their own, "
                  "so that each has its depth and the nebula behind it none of its holes. Look at "
                  "the starless image (key 5) and the stars (key 6) to judge the separation."},
    HelpParagraph{"Stars", "Star detection",
                  "Threshold is how far a star has to stand out of the noise, Min brightness how "
                  "bright its peak has to be, and Max star radius how large it may get before it "
                  "counts as nebula. While you change them, the stars found are ringed in the "
                  "preview and counted in the status bar; Show Found Stars (key O) keeps the "
                  "rings. Remove companions takes the neighbors out of a star's cut-out, Split "
                  "merged stars parts stars that touch, and Background scale is the blur that "
                  "stars are measured against."},
    HelpParagraph{"Stars", "Star depth",
                  "Depth model spreads the stars about the Star plane: not at all, the bright ones "
                  "nearer, or scattered. Star spread is how far. Star floatation below 100 % "
                  "draws them toward the depth of what lies behind them, and Foreground pop lifts "
                  "all of them toward you. With an Occultation threshold, matter in front hides "
                  "stars. Max stars draws the brightest only. Advanced Star Profiling sets how "
                  "soft the rims of the stars are."},
    HelpParagraph{"Stars", "Star table",
                  "View > Star Table (Ctrl+T) lists every star that was found. The star selected "
                  "is ringed in the preview, and a click into the preview selects the star there. "
                  "A click into its sprite erases a disc of its light, a companion or a spike; "
                  "Ctrl and the wheel set the size of the disc, Shift erases within another disc, "
                  "Del deletes the disc selected. The other stars keep their places and depths."},
    HelpParagraph{"Depth", "Depth filters",
                  "What is done to the finished depth map. Smoothness calms it, Edge preservation "
                  "keeps its outlines while it does, and Depth gamma above 1 pushes all but the "
                  "nearest parts back."},
    HelpParagraph{"Depth", "Image depth",
                  "Depth read out of the picture: bright is near by Luminance weight, and fine "
                  "detail stands out by Structure weight. Landscape AI Depth adds what a learned "
                  "model makes of the whole picture, where one is configured under Edit > "
                  "Preferences. Look at the depth map (key 2) while you change them: white is "
                  "near."},
    HelpParagraph{"Depth", "Narrowband depth",
                  "For pictures of single spectral lines: the near channel comes forward of the "
                  "far one."},
    HelpParagraph{"Depth", "External depth map",
                  "A depth map of your own, painted or computed elsewhere, laid over the rest by "
                  "Blend. White is near. Drop the file on the window or load it here."},
    HelpParagraph{"Shaping", "Structure depth",
                  "Puts the object of the picture where you know it to be. Use this distance says "
                  "that the Object depth counts, Match object distance how far the object moves "
                  "there, and Object thickness how much of its own depth it keeps. What lies no "
                  "nearer than the background floor stays in place. It works on a picture without "
                  "stars, so Star separation has to be on."},
    HelpParagraph{"Shaping", "Color depth",
                  "Each row takes a color of the picture and says how near it lies. Pick the "
                  "color from the preview. A profile keeps the rows for another image."},
    HelpParagraph{"Stereo", "Stereo depth",
                  "Parallax amount is the depth of the whole scene in pixels; Convergence is the "
                  "depth that lies in the plane of the screen, nearer parts come out of it. Max "
                  "disparity bounds the shift to what eyes can follow."},
    HelpParagraph{"Stereo", "Depth and disparity",
                  "How the depths of the picture are spread, and what becomes of them: the shift "
                  "between the two eyes in pixels. The solid line is the plane of the screen, what "
                  "lies to its right comes out of it, and the dashed lines are Max disparity."},
    HelpParagraph{"Stereo", "Parallax motion (wiggle)",
                  "The viewpoint swings from side to side, which shows the depth without glasses: "
                  "Play > Play Parallax Motion (key P). Amplitude is how far it swings, 1 being "
                  "the distance of the eyes; Frames and Frame rate are how long one swing takes. "
                  "Path angle is its direction, 0\u00b0 sideways and 90\u00b0 up and down; with "
                  "Circular sweep it goes round instead."},
    HelpParagraph{"Stereo", "Flyby frame",
                  "The window through which a flyby looks at the picture, at zoom 1. A frame "
                  "smaller than the picture can travel over it. Ratio sets the largest frame of a "
                  "shape."},
    HelpParagraph{"Stereo", "Anaglyph",
                  "How the two eyes share the colors of one picture. Put the glasses on and even "
                  "out the two lenses with the tint: it is for your screen and enters no file."},
    HelpParagraph{
        "Post", "Post-processing",
        "A last correction of tone and color, on each eye of the stereo views. The source "
        "and the depth map stay as they are."},
};

QString row(const QString& keys, const QString& effect)
{
    return QString("<tr><td><b>%1</b></td><td style=\"padding-left:24px\">%2</td></tr>")
        .arg(keys.toHtmlEscaped(), effect.toHtmlEscaped());
}

} // namespace

QString aboutText()
{
    return QString("<h3>Zerrith Studio %1</h3>"
                   "<p>Turns one deep-sky photograph into a three-dimensional picture.</p>"
                   "<p>Corvelle Works. Free software under the MIT licence.</p>"
                   "<p>Built on Qt %2 (LGPL 3), CFITSIO and libtiff (their own free licences), "
                   "zlib (zlib licence), LZ4 and Zstandard (BSD), Expat (MIT).</p>")
        .arg(QCoreApplication::applicationVersion(), qVersion());
}

QString tabHelpText(const QString& tab)
{
    QString text;
    for (const HelpParagraph& paragraph : kTabHelp)
        if (tab == QLatin1String(paragraph.tab))
            text += QString("<h4>%1</h4><p>%2</p>").arg(paragraph.section, paragraph.text);
    return text.isEmpty() ? text : QString("<h3>%1</h3>").arg(tab) + text;
}

QString shortcutsText(const QList<QAction*>& actions)
{
    QString rows;
    for (const QAction* action : actions) {
        const QString keys = QKeySequence::listToString(action->shortcuts(), //
                                                        QKeySequence::NativeText);
        if (!keys.isEmpty())
            rows += row(QString(keys).replace("; ", " or "), action->text().remove('&'));
    }
    for (const Gesture& gesture : kGestures)
        rows += row(gesture.gesture, gesture.effect);
    return "<table>" + rows + "</table>";
}
