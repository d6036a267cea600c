// The window's road on 24 megapixels: what opening a file costs up to the first anaglyph, stage by
// stage, what a moved slider runs again, and the memory that all of it takes. A program of its own,
// because peak memory is a fact of a whole process: it makes its file in another one.

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <vector>

#include <QApplication>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include "app/export/still_file.h"
#include "app/mainwindow/image_pyramid.h"
#include "app/mainwindow/main_window.h"
#include "app/persist/appcfg.h"
#include "app/session/open_document.h"
#include "app/session/render_pipeline.h"
#include "bench/bench_support.h"
#include "engine/demo/demo_scene.h"
#include "engine/depth/depth_map.h"
#include "engine/qt/zre_qt.h"
#include "engine/stereo/eye.h"
#include "engine/stereo/views.h"

namespace {

constexpr double kLargestUnnamedShare = 0.15;
constexpr double kSmallestEyesShare = 0.85;
constexpr double kMostFloatSizes = 12.0;

struct Row
{
    const char* stage;
    double milliseconds;
};

double processorMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

/// Processor time of all threads: that of a machine with other work is the same.
template <typename Work>
double timed(const Work& work)
{
    const double start = processorMilliseconds();
    work();
    return processorMilliseconds() - start;
}

double peakMegabytes()
{
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    return static_cast<double>(used.ru_maxrss) / 1024.0;
}

int writeScene(const QString& path)
{
    zre::DemoSceneOptions options;
    options.width = benchWidth();
    options.height = benchHeight();
    const zre::DemoScene scene = zre::makeDemoScene(options);
    StillOptions still;
    still.wcs = &scene.wcs;
    return writeStill(path, scene.picture, still, nullptr) ? 0 : 1;
}

/// Every stage of opening, called by itself on the same file.
std::vector<Row> stagesOf(Session& session, const QString& path)
{
    std::vector<Row> rows;
    const auto add = [&rows](const char* stage, const auto& work) {
        rows.push_back({stage, timed(work)});
    };
    RenderPipeline pipeline(session);
    zre::Image cues, anchored, depth, left, right, view;
    QImage preview;
    add("read, decode, stretch, 8-bit picture",
        [&] { openSource(path, StretchMode::Auto, session, nullptr, nullptr); });
    add("detection", [&] { pipeline.prepareInputs(); });
    const zre::Image& working = pipeline.working();
    const zre::ZRParams& p = session.params;
    add("cues", [&] { zre::buildDepthCues(working, p, {}, cues, {}, {}); });
    add("anchor", [&] { zre::applyAnchor(cues, p, anchored); });
    add("final", [&] { zre::compositeDepthModel(anchored, p, {}, depth); });
    add("eyes", [&] {
        zre::renderEyes(working, depth, p, left, right, pipeline.activeStars(), {}, nullptr,
                        nullptr);
    });
    add("anaglyph", [&] { zre::makeAnaglyph(left, right, view, p.anaglyphMode, 1, 1, 1); });
    add("toQImage", [&] { preview = zre_qt::toQImage(view); });
    ImagePyramid pyramid;
    constexpr double kFitted = 0.15; // 24 megapixels in a window
    add("pyramid", [&] {
        pyramid = ImagePyramid(std::move(preview));
        pyramid.level(pyramid.levelFor(kFitted));
    });
    add("paint", [&] {
        QImage screen(900, 600, QImage::Format_RGB32);
        QPainter painter(&screen);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(screen.rect(), pyramid.level(pyramid.levelFor(kFitted)));
    });
    return rows;
}

void print(const std::vector<Row>& rows, double total)
{
    double named = 0.0;
    std::printf("%-40s%12s%9s\n", "opening to the first anaglyph", "ms", "share");
    for (const Row& row : rows) {
        std::printf("%-40s%12.1f%8.1f%%\n", row.stage, row.milliseconds,
                    100.0 * row.milliseconds / total);
        named += row.milliseconds;
    }
    std::printf("%-40s%12.1f%8.1f%%\n%-40s%12.1f\n", "the rest", total - named,
                100.0 * (total - named) / total, "the window, in all", total);
}

bool check(bool holds, const char* what)
{
    std::printf("%s: %s\n", holds ? "ok" : "MISSED", what);
    return holds;
}

/// What a moved slider runs again, by counting, and where the time of a new parallax goes.
bool sliders(Session& session)
{
    RenderPipeline pipeline(session);
    zre::Image view;
    pipeline.renderView(2, {}, view, nullptr);
    const auto before = pipeline.levelBuilds();
    double whole = std::numeric_limits<double>::infinity();
    double eyes = whole;
    constexpr int kRounds = 4; // the least of them, each by turns
    for (int round = 0; round < kRounds; ++round) {
        session.params.parallaxAmount += 1.0f;
        whole = std::min(whole, timed([&] { pipeline.renderView(2, {}, view, nullptr); }));
        const zre::Image& depth = *pipeline.standingDepth();
        eyes =
            std::min(eyes, timed([&] {
                         zre::renderAnaglyph(pipeline.working(), depth, session.params, view,
                                             pipeline.activeStars(), {}, nullptr, nullptr, 1, 1, 1);
                     }));
    }
    const auto moved = pipeline.levelBuilds();
    std::printf(
        "a change of parallaxAmount: %.1f ms, of which eyes and anaglyph %.1f ms (%.1f%%)\n", whole,
        eyes, 100.0 * eyes / whole);
    bool good = check(moved.cues == before.cues && moved.anchor == before.anchor &&
                          moved.final == before.final && moved.detections == before.detections,
                      "parallaxAmount rebuilds no depth level and finds no star again");
    if (!benchQuick())
        good = check(eyes >= kSmallestEyesShare * whole,
                     "85 % of it is in the eye renderer and the anaglyph") &&
               good;
    session.params.resolveDistance = true;
    session.params.objectFit += 0.25f;
    pipeline.renderView(2, {}, view, nullptr);
    const auto fitted = pipeline.levelBuilds();
    return check(fitted.cues == moved.cues && fitted.detections == moved.detections &&
                     fitted.anchor == moved.anchor + 1 && fitted.final == moved.final + 1,
                 "objectFit runs the two later levels only") &&
           good;
}

/// Opens the file in a window, in a process that has done nothing else, as the user's has not.
int openInWindow(const QString& path)
{
    double total = 0.0;
    {
        MainWindow window;
        window.resize(1280, 800);
        window.show();
        QApplication::processEvents();
        total = timed([&] {
            window.loadImageFromPath(path);
            QApplication::processEvents();
            window.grab();
        });
    }
    const double peak = peakMegabytes();
    const double floats = 12e-6 * benchWidth() * benchHeight() / 1.048576;
    std::printf("peak resident size: %.0f MB, %.1f times the picture's floats\n", peak,
                peak / floats);
    const bool fits = benchQuick() || check(peak < kMostFloatSizes * floats, "peak below 12 times");
    std::fflush(stdout);
    const int stages = QProcess::execute(QApplication::applicationFilePath(),
                                         {"--stages", path, QString::number(total)});
    return fits ? stages : 1;
}

/// The same work stage by stage, in a process as fresh as the window's: touching memory for the
/// first time is part of the cost.
int openInStages(const QString& path, double total)
{
    Session session;
    const std::vector<Row> rows = stagesOf(session, path);
    print(rows, total);
    double named = 0.0;
    for (const Row& row : rows)
        named += row.milliseconds;
    const bool told = benchQuick() || check(total - named < kLargestUnnamedShare * total,
                                            "the stages tell where the time of opening goes");
    return sliders(session) && told ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--write") == 0)
        return writeScene(argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "--stages") == 0)
        return openInStages(argv[2], QString(argv[3]).toDouble());
    const QTemporaryDir folder;
    appcfg::useStoreIn(folder.path());
    const QString path = folder.filePath("scene.xisf");
    if (QProcess::execute(QApplication::applicationFilePath(), {"--write", path}) != 0)
        return 1;
    return openInWindow(path);
}
