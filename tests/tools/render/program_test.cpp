#include "tools/render/program.h"

#include <fstream>
#include <sstream>

#include <QImage>
#include <QJsonDocument>
#include <gmock/gmock.h>

#include "app/export/still_file.h"
#include "app/persist/param_text.h"
#include "app/session/open_document.h"
#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "engine/demo/demo_scene.h"
#include "tests/support/testkit.h"
#include "tests/tools/render/folder_listing.h"
#include "tests/tools/render/spawn.h"

namespace fs = std::filesystem;

namespace zrrender {
namespace {

using testing::HasSubstr;
using zrtest::listing;

struct Spoken
{
    int code;
    std::string out;
    std::string err;
};

class Program : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = zrtest::scratchFolder() / "program";
        fs::remove_all(folder);
        fs::create_directories(folder);
        source = zrtest::noise(36, 24, 1, 4);
        EXPECT_TRUE(writeStill(at("in.tif"), source, {32}, nullptr));
    }

    QString at(const QString& name) const
    {
        return QString::fromStdString((folder / name.toStdString()).string());
    }

    /// Runs a line whose words begin with "@" where a file of the folder is meant.
    Spoken run(const QString& line) const
    {
        QStringList arguments = line.split(' ', Qt::SkipEmptyParts);
        for (QString& argument : arguments)
            if (argument.startsWith('@'))
                argument = at(argument.mid(1));
        std::ostringstream out;
        std::ostringstream err;
        Console console(out, err, false);
        StagedOutputs outputs;
        const int code = runCommandLine(arguments, console, outputs);
        return {code, out.str(), err.str()};
    }

    void ok(const QString& line) const
    {
        const Spoken ended = run(line);
        EXPECT_EQ(ended.code, 0) << line.toStdString() << "\n" << ended.err;
    }

    Session opened(const QString& name) const
    {
        Session session;
        QString error;
        EXPECT_TRUE(openSource(at(name), StretchMode::None, session, nullptr, &error))
            << error.toStdString();
        return session;
    }

    /// The view by the pipeline itself.
    zre::Image view(int id, const char* parameters = "") const
    {
        Session session = opened("in.tif");
        QList<QString> unknown;
        zrproj::paramsFromText(parameters, session.params, session.outputMode, unknown);
        zre::Image image;
        RenderPipeline(session).renderView(id, {}, image, nullptr);
        return image;
    }

    fs::path folder;
    zre::Image source;
};

TEST_F(Program, StillInEveryFormatReadsBackAsThePipelineRendersIt)
{
    struct Format
    {
        const char* name;
        const char* bits;
        double tolerance;
    };
    const Format formats[] = {{"o.xisf", "", 0},
                              {"o.fits", "", 0},
                              {"o.fts", "--bits 32", 0},
                              {"o.tif", "", 0.5001 / 65535},
                              {"o.tiff", "--bits 32", 0},
                              {"o.tif", "--bits 8", 0.5001 / 255},
                              {"o.png", "", 0.5001 / 65535},
                              {"o.PNG", "--bits 8", 0.5001 / 255},
                              {"o.jpg", "", 0.1}};
    const std::pair<const char*, int> views[] = {{"source", 0}, {"depth", 1}, {"sbs", 3}};
    for (const auto& [key, id] : views) {
        const zre::Image expected = view(id);
        for (const Format& format : formats) {
            if (id != 1 && format.tolerance == 0.1)
                continue; // noise is no picture for JPEG
            ok(QString("still @in.tif -o @%1 --view %2 %3").arg(format.name, key, format.bits));
            zre::Image read = opened(format.name).source;
            if (expected.channels == 1)
                read = depthPlane(std::move(read));
            EXPECT_TRUE(zrtest::imagesNear(read, expected, format.tolerance))
                << format.name << format.bits << key;
        }
    }
    EXPECT_EQ(listing(folder).size(), 9u); // the input and eight names: no leftovers
}

TEST_F(Program, SolutionStaysOnlyWithPicturesOfTheSkyInTheSourcesGeometry)
{
    ok("demo-scene -o @scene.xisf --size 64x48");
    double ra = 0.0;
    double dec = 0.0;
    ASSERT_TRUE(opened("scene.xisf").wcs.imageToCelestial(10.0, 5.0, ra, dec));
    for (const char* name : {"o.xisf", "o.fits"}) {
        for (const char* key : {"source", "anaglyph", "starless", "stars", "stars-over-starless"}) {
            ok(QString("still @scene.xisf -o @%1 --view %2").arg(name, key));
            double keptRa = 0.0;
            double keptDec = 0.0;
            ASSERT_TRUE(opened(name).wcs.imageToCelestial(10.0, 5.0, keptRa, keptDec)) << key;
            EXPECT_NEAR(keptRa, ra, 1e-9);
            EXPECT_NEAR(keptDec, dec, 1e-9);
        }
        for (const char* key : {"depth", "sbs"}) { // as the window exports them
            ok(QString("still @scene.xisf -o @%1 --view %2").arg(name, key));
            EXPECT_FALSE(opened(name).wcs.valid) << key;
        }
    }
}

TEST_F(Program, LaterParametersOverrideEarlierOnes)
{
    std::ofstream(folder / "p.txt")
        << "depthGamma=3\nsmoothness=0\nsomethingNewer=1\noutputMode=1\n";
    const Spoken ended = run("still @in.tif -o @o.xisf --params @p.txt --set smoothness=5 "
                             "--set smoothness=1.5");
    EXPECT_EQ(ended.code, 0);
    EXPECT_THAT(ended.err, HasSubstr("somethingNewer"));
    EXPECT_TRUE(
        zrtest::imagesNear(opened("o.xisf").source, view(1, "depthGamma=3\nsmoothness=1.5"), 0));
}

TEST_F(Program, UnknownKeysOfAFileNameTheNearestAndDoNotSteerTheTerminal)
{
    std::ofstream(folder / "p.txt") << "paralaxAmount=3\na\x1b[2J=1\n";
    const Spoken ended = run("still @in.tif -o @o.xisf --params @p.txt");
    EXPECT_EQ(ended.code, 0);
    EXPECT_THAT(ended.err, HasSubstr("paralaxAmount; did you mean parallaxAmount?"));
    EXPECT_EQ(ended.err.find('\x1b'), std::string::npos);
}

TEST_F(Program, NamedDepthMapCountsUnlessToldOtherwise)
{
    zre::Image map = zrtest::noise(36, 24, 0, 77);
    ASSERT_TRUE(writeStill(at("map.fits"), map, {}, nullptr));
    ok("still @in.tif -o @o.xisf --view depth --depth-map @map.fits");
    EXPECT_TRUE(zrtest::imagesNear(opened("o.xisf").source, map, 0));
    ok("still @in.tif -o @o.xisf --view depth --depth-map @map.fits --set depthMapEnabled=0");
    EXPECT_TRUE(zrtest::imagesNear(opened("o.xisf").source, view(1), 0));
    std::ofstream(folder / "p.txt") << "depthMapEnabled=0\ndepthMapBlend=0.25\n";
    ok("still @in.tif -o @o.xisf --view depth --depth-map @map.fits --params @p.txt");
    zre::Image mixed = view(1);
    for (std::size_t i = 0; i < mixed.data.size(); ++i)
        mixed.data[i] = 0.75f * mixed.data[i] + 0.25f * map.data[i];
    EXPECT_TRUE(zrtest::imagesNear(opened("o.xisf").source, mixed, 1e-6));
}

/// What the program with a window shows is rendered by the same road.
TEST_F(Program, EveryViewOfAPhotographOrAPairIsThePipelines)
{
    ok("demo-scene -o @scene.xisf --size 200x140 --truth @truth");
    zre::Image stars = opened("scene.xisf").source;
    const zre::Image starless = opened("truth/starless.xisf").source;
    for (std::size_t i = 0; i < stars.data.size(); ++i)
        stars.data[i] = std::max(0.0f, stars.data[i] - starless.data[i]);
    ASSERT_TRUE(writeStill(at("stars.xisf"), stars, {}, nullptr));
    Session pair;
    ASSERT_TRUE(openPair(at("stars.xisf"), at("truth/starless.xisf"), StretchMode::None, pair,
                         nullptr, nullptr));
    const std::pair<QString, Session> documents[] = {
        {"@scene.xisf", opened("scene.xisf")},
        {"--starless @truth/starless.xisf --stars @stars.xisf", pair}};
    for (const auto& [words, document] : documents) {
        for (const ::OutputView& output : kOutputViews) {
            Session session = document;
            session.params.thresholdSigma = 3.0f;
            RenderPipeline pipeline(session);
            zre::Image expected;
            ASSERT_TRUE(pipeline.renderView(output.id, {}, expected, nullptr));
            EXPECT_EQ(pipeline.activeStars() != nullptr,
                      output.id != kSourceView &&
                          (output.id < 4 || output.id == 6 || !session.hasPair()));
            ok(QString("still %1 -o @o.xisf --set thresholdSigma=3 --view %2")
                   .arg(words, output.key));
            EXPECT_TRUE(zrtest::imagesNear(opened("o.xisf").source, expected, 0))
                << words.toStdString() << ' ' << output.key;
        }
    }
    ok("still @scene.xisf -o @without.xisf --no-stars");
    ok("still @scene.xisf -o @off.xisf --set starSeparationEnabled=0");
    EXPECT_TRUE(zrtest::imagesNear(opened("without.xisf").source, opened("off.xisf").source, 0));
}

TEST_F(Program, StarsAreThePipelines)
{
    ok("demo-scene -o @scene.xisf --size 300x200");
    const Spoken ended = run(
        "stars @scene.xisf -o @stars.csv --set thresholdSigma=4 --set starMaxRendered=5 --json");
    EXPECT_EQ(ended.code, 0) << ended.err;
    Session session = opened("scene.xisf");
    session.params.thresholdSigma = 4.0f;
    session.params.starMaxRendered = 5;
    RenderPipeline pipeline(session);
    pipeline.prepareStars();
    const QString answer = QString::fromStdString(ended.out).trimmed().section('\n', -1);
    const QJsonObject told = QJsonDocument::fromJson(answer.toUtf8()).object();
    EXPECT_EQ(told["stars"].toInt(), static_cast<int>(pipeline.stars().size()));
    EXPECT_EQ(told["drawn"].toInt(), pipeline.starsShown());
    EXPECT_EQ(told["detector"], QJsonValue("classical"));

    const auto bytes = zrtest::readBytes(folder / "stars.csv");
    const QStringList rows = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()),
                                               static_cast<qsizetype>(bytes.size()))
                                 .split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(static_cast<std::size_t>(rows.size()), pipeline.stars().size() + 1);
    ASSERT_GT(rows.size(), 6);
    for (qsizetype i = 1; i < rows.size(); ++i) {
        const zre::Star& star = pipeline.stars()[static_cast<std::size_t>(i - 1)];
        const QStringList cells = rows[i].trimmed().split(',');
        ASSERT_EQ(cells.size(), 10);
        EXPECT_EQ(cells[0].toInt(), i - 1);
        EXPECT_NEAR(cells[2].toDouble(), star.y, 1e-4);
        EXPECT_NEAR(cells[4].toDouble(), static_cast<double>(star.depth), 1e-6);
        double x = 0.0;
        double y = 0.0;
        ASSERT_TRUE(session.wcs.celestialToImage(cells[8].toDouble(), cells[9].toDouble(), x, y));
        EXPECT_NEAR(x, star.x, 1e-3);
    }
}

struct Refusal
{
    const char* line;
    int code;
    const char* message;
};

TEST_F(Program, RefusalsSayWhyInOneLineAndTouchNothing)
{
    std::ofstream(folder / "p.txt") << "wiggleFrames=2000000000\n";
    std::ofstream(folder / "comma.txt") << "depthGamma=1\nparallaxAmount=1,5\n";
    std::ofstream(folder / "word.txt") << "invertDepth=true\n";
    std::ofstream(folder / "bytes.txt") << "\xff\x1b=1\n";
    std::ofstream(folder / "view.txt") << "outputMode=7\n";
    std::ofstream(folder / "broken.xisf") << "XISF0100";
    EXPECT_TRUE(writeStill(at("half.tif"), zrtest::noise(18, 12, 1, 4), {}, nullptr));
    fs::create_directory(folder / "full");
    std::ofstream(folder / "full" / ".hidden") << "";
    const Refusal refusals[] = {
        {"still @in.tif -o @o.bmp2", 2, "no suffix that can be written"},
        {"still @in.tif -o @o.png --bits 32", 2, ".png file takes --bits 16 or 8"},
        {"still @in.tif -o @o.jpg --bits 16", 2, ".jpg file takes --bits 8"},
        {"still @in.tif -o @in.tif", 2, "not overwritten"},
        {"still @in.tif -o @p.txt.png --params @p.txt", 2, "wiggleFrames = 2e+09 is out of range"},
        {"still @in.tif -o @o.png --set parallaxAmout=3", 2, "parallaxAmount"},
        {"still @in.tif -o @o.png --set parallaxAmount=101", 2, "100"},
        {"still @in.tif -o @o.png --set parallaxAmount", 2, "KEY=VALUE"},
        {"still @in.tif -o @o.png --set =3", 2, "KEY=VALUE"},
        {"still @in.tif -o @o.png --params @view.txt", 2, "--view"},
        {"still @in.tif -o @o.png --params @comma.txt", 2, "parallaxAmount = 1,5 is not a number"},
        {"still @in.tif -o @o.png --params @word.txt", 2, "invertDepth = true is not a number"},
        {"still @in.tif -o @o.png --params @bytes.txt", 1, "not a text"},
        {"still @absent.tif -o @absent/o.png", 1, "program/absent: "}, // before any work is done
        {"still", 2, "needs a file to read"},
        {"still --starless @in.tif --stars @half.tif -o @o.png", 1, "must be of the same size"},
        {"still --starless @in.tif --stars @absent.tif -o @o.png", 1, "Stars only image"},
        {"still --starless @in.tif --stars @half.tif -o @half.tif", 2, "not overwritten"},
        {"stars @in.tif -o @o.png", 2, "(.csv)"},
        {"stars @in.tif -o @absent/o.csv", 1, "program/absent: "},
        {"demo-scene -o @depth.xisf --truth @. --size 32x32", 1, "two outputs"},
        {"still @in.tif -o @o.png --params @absent.txt", 1, "absent.txt"},
        {"still @absent.tif -o @o.png", 1, "absent.tif"},
        {"still @broken.xisf -o @o.png", 1, "broken.xisf"},
        {"still @in.tif -o @o.png --depth-map @broken.xisf", 1, "broken.xisf"},
        {"still @in.tif -o @absent/o.png", 1, "absent"},
        {"wiggle @in.tif -o @full", 1, "not empty"},
        {"wiggle @in.tif -o @p.txt", 1, "not a folder"},
        {"demo-scene -o @o.xisf --size 15x40", 2, "--size"},
        {"demo-scene -o @o.xisf --size 40", 2, "--size"},
        {"demo-scene -o @o.xisf --size 40x32769", 2, "32768"},
        {"demo-scene -o @o.xisf --seed -1", 2, "--seed"},
        {"demo-scene -o @o", 2, "no suffix"},
        {"params --text --json", 2, "not both"},
    };
    const auto before = listing(folder);
    for (const Refusal& refusal : refusals) {
        const Spoken ended = run(refusal.line);
        EXPECT_EQ(ended.code, refusal.code) << refusal.line;
        EXPECT_THAT(ended.err, HasSubstr(refusal.message)) << refusal.line;
        EXPECT_EQ(ended.err.find("zerrith-render: "), 0u) << refusal.line;
        EXPECT_EQ(ended.err.find('\n'), ended.err.size() - 1) << refusal.line;
        EXPECT_EQ(listing(folder), before) << refusal.line;
    }
}

TEST_F(Program, WigglesFramesAreThePipelines)
{
    ok("wiggle @in.tif -o @new/frames --bits 16 --set wiggleFrames=5 --set wiggleCircular=1");
    Session session = opened("in.tif");
    session.params.wiggleFrames = 5;
    session.params.wiggleCircular = true;
    RenderPipeline pipeline(session);
    for (int i = 0; i < 5; ++i) {
        zre::Image frame;
        ASSERT_TRUE(pipeline.renderWiggle(i, frame));
        EXPECT_TRUE(zrtest::imagesNear(opened(QString("new/frames/frame_000%1.png").arg(i)).source,
                                       frame, 0.5001 / 65535));
    }
    EXPECT_EQ(listing(folder / "new").size(), 6u);
}

TEST_F(Program, DemoScenesTruthIsTheEngines)
{
    ok("demo-scene -o @scene.xisf --size 80x50 --seed 9 --truth @truth");
    zre::DemoSceneOptions options;
    options.width = 80;
    options.height = 50;
    options.seed = 9;
    const zre::DemoScene scene = zre::makeDemoScene(options);
    EXPECT_TRUE(zrtest::imagesNear(opened("scene.xisf").source, scene.picture, 0));
    EXPECT_TRUE(zrtest::imagesNear(opened("truth/depth.xisf").source, scene.depth, 0));
    EXPECT_TRUE(zrtest::imagesNear(opened("truth/starless.xisf").source, scene.starless, 0));
    const auto bytes = zrtest::readBytes(folder / "truth" / "stars.csv");
    const QStringList rows = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()),
                                               static_cast<qsizetype>(bytes.size()))
                                 .split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(static_cast<std::size_t>(rows.size()), scene.stars.size() + 1);
    const QStringList last = rows.last().split(',');
    ASSERT_EQ(last.size(), 8);
    EXPECT_NEAR(last[1].toDouble(), scene.stars.back().y, 1e-6);
    EXPECT_EQ(last[7].toFloat(), scene.stars.back().b);
}

TEST_F(Program, JsonIsOneObjectALineAndEndsInTheResult)
{
    const char* const lines[] = {
        "still @in.tif -o @o.png --json",
        "--json wiggle @in.tif -o @w --set wiggleFrames=2",
        "info @in.tif --json",
        "stars @in.tif -o @stars.csv --json",
        "demo-scene -o @s.xisf --size 32x32 --json",
        "params --json",
    };
    for (const char* line : lines) {
        const Spoken ended = run(line);
        EXPECT_EQ(ended.code, 0) << line << ended.err;
        EXPECT_EQ(ended.err, "") << line;
        int percent = 0;
        QJsonObject last;
        for (const QString& text :
             QString::fromStdString(ended.out).split('\n', Qt::SkipEmptyParts)) {
            QJsonParseError fault;
            last = QJsonDocument::fromJson(text.toUtf8(), &fault).object();
            EXPECT_EQ(fault.error, QJsonParseError::NoError) << text.toStdString();
            if (last["event"] == "progress") {
                EXPECT_GE(last["percent"].toInt(), percent) << line;
                percent = last["percent"].toInt();
            }
        }
        EXPECT_EQ(last["event"], QJsonValue("result")) << line;
    }
    const Spoken failed = run("info @absent.png --json");
    const QString errorLine = QString::fromStdString(failed.out).trimmed().section('\n', -1);
    EXPECT_EQ(QJsonDocument::fromJson(errorLine.toUtf8()).object()["code"], QJsonValue(1));
}

TEST_F(Program, QuietSaysNothingButAnswersAndErrors)
{
    std::ofstream(folder / "p.txt") << "unknownKey=1\n";
    const Spoken still = run("still @in.tif -o @o.png -q --params @p.txt");
    EXPECT_EQ(still.out + still.err, "");
    EXPECT_THAT(run("info @in.tif -q").out, HasSubstr("36 x 24"));
    EXPECT_THAT(run("info @absent.tif -q").err, HasSubstr("absent.tif"));
}

TEST_F(Program, ParameterTextIsReadBackAsTheDefaults)
{
    const Spoken text = run("params --text");
    zre::ZRParams params;
    params.smoothness = 9.0f;
    int outputMode = 0;
    QList<QString> unknown;
    zrproj::paramsFromText(QString::fromStdString(text.out), params, outputMode, unknown);
    EXPECT_TRUE(unknown.isEmpty());
    EXPECT_EQ(params.smoothness, zre::ZRParams().smoothness);
    EXPECT_EQ(outputMode, 2);
}

std::string bytesOf(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(Program, FramesOfAMotionComeInPartsAsInOneRunAndOnlyTheMissingAreRendered)
{
    std::ofstream(folder / "tour.txt") << "zoom 1\nzoomto 2 5\n";
    for (const std::string how : {"--wiggle --set wiggleFrames=6 --stereo hsbs",
                                  "--flyby @tour.txt --stereo anaglyph --bits 16"}) {
        fs::remove_all(folder / "whole");
        fs::remove_all(folder / "parts");
        const QString line = "motion @in.tif --stretch none " + QString::fromStdString(how);
        ok(line + " -o @whole");
        ok(line + " -o @parts --frames 3:");
        const fs::path third = folder / "parts" / "frame_00003.png";
        const auto written = fs::last_write_time(third);
        EXPECT_NE(run(line + " -o @parts --frames :3").code, 0) << "a folder that is not empty";
        fs::resize_file(folder / "parts" / "frame_00004.png", 60);
        ok(line + " -o @parts --resume");
        EXPECT_EQ(fs::last_write_time(third), written) << how;
        EXPECT_EQ(listing(folder / "parts"), listing(folder / "whole"));
        EXPECT_TRUE(fs::exists(folder / "whole" / "frame_00004.png"));
        for (const auto& entry : fs::directory_iterator(folder / "whole"))
            EXPECT_EQ(bytesOf(entry.path()), bytesOf(folder / "parts" / entry.path().filename()))
                << how << entry.path();
    }
}

TEST_F(Program, FramesAreFittedAsAVideoIs)
{
    const QString line = "motion @in.tif --stretch none --wiggle --set wiggleFrames=2 -o ";
    ok(line + "@frames --size 20x20");
    const QImage frame(QString::fromStdString((folder / "frames" / "frame_00001.png").string()));
    EXPECT_EQ(frame.size(), QSize(20, 20));
    for (const int y : {0, 3, 16, 19})
        EXPECT_EQ(frame.pixelColor(10, y).value(), 0) << y;
    EXPECT_GT(frame.pixelColor(10, 10).value(), 0);
    ok(line + "@large --size 200x100");
    const QImage large(QString::fromStdString((folder / "large" / "frame_00000.png").string()));
    ok(line + "@whole");
    const QImage whole(QString::fromStdString((folder / "whole" / "frame_00000.png").string()));
    EXPECT_EQ(large.copy(82, 38, 36, 24).convertToFormat(QImage::Format_RGB32),
              whole.convertToFormat(QImage::Format_RGB32))
        << "never enlarged";
}

TEST_F(Program, AScriptForAPictureOfAnotherSizeFliesTheSamePath)
{
    std::ofstream(folder / "own.txt") << "zoom 3\nmoveto 9 12 2\nmoveto 27 6 2\n";
    std::ofstream(folder / "large.txt") << "zoom 3\nmoveto 900 600 2\nmoveto 2700 300 2\n";
    ok("motion @in.tif --stretch none --flyby @own.txt -o @own --frames :4");
    ok("motion @in.tif --stretch none --flyby @large.txt --script-size 3600x1200 -o @large "
       "--frames :4");
    for (const auto& entry : fs::directory_iterator(folder / "own"))
        EXPECT_EQ(bytesOf(entry.path()), bytesOf(folder / "large" / entry.path().filename()))
            << entry.path();
    EXPECT_EQ(listing(folder / "own").size(), 4u);
}

TEST_F(Program, VideosHaveTheSizeFramesAndRateAskedFor)
{
    const std::string probe = "/usr/bin/ffprobe";
    if (!fs::exists(probe))
        GTEST_SKIP() << "ffmpeg is not installed";
    const auto shape = [&](const char* file) {
        return zrtest::runProgramFile(probe, {"-v", "error", "-select_streams", "v",
                                              "-count_frames", "-show_entries",
                                              "stream=width,height,r_frame_rate,nb_read_frames",
                                              "-of", "csv=p=0", (folder / file).string()})
            .output;
    };
    const QString line = "motion @in.tif --stretch none --wiggle --set wiggleFrames=5 --fps 12 -o ";
    const std::array cases{
        std::array{"flat.mp4", "", "36,24,12/1,5\n"},
        std::array{"part.mp4", "--frames 1:4 --stereo sbs", "72,24,12/1,3\n"},
        std::array{"box.mp4", "--stereo tb --size 64x48", "64,48,12/1,5\n"},
        std::array{"vr.mp4", "--vr180 --size 18x18", "36,12,12/1,5\n"},
        std::array{"apple.mp4", "--apple-spatial", "72,24,12/1,5\n"},
    };
    for (const auto& [file, options, expected] : cases) {
        const fs::path target = folder / file;
        ok(line + "@" + file + " " + options);
        EXPECT_EQ(shape(file).substr(0, std::string(expected).size() - 1),
                  std::string(expected).substr(0, std::string(expected).size() - 1));
    }
    EXPECT_THAT(bytesOf(folder / "vr.mp4"), HasSubstr("st3d"));
    EXPECT_THAT(bytesOf(folder / "apple.mp4"), HasSubstr("vexu"));
    for (const QString refused :
         {"--wiggle -o @a.gif --stereo sbs", "--wiggle -o @a.gif --vr180",
          "--wiggle -o @a.mp4 --resume", "-o @a.mp4",
          "--wiggle -o @dir "
          "--frames 4:2",
          "--wiggle -o @dir --script-size 36x24", "--flyby @tour.txt -o @dir --script-size 36",
          "--wiggle --flyby @tour.txt -o @dir"})
        EXPECT_EQ(run("motion @in.tif " + refused).code, 2) << refused.toStdString();
}

TEST_F(Program, AScriptIsCheckedByLineAndGivesACameraForEachFrame)
{
    // Five frames, led on until the wiggle of thirty frames has come full circle.
    std::ofstream(folder / "good.txt") << "videofps 10\nmoveto 18 12 3\nhold 2\n";
    std::ofstream(folder / "bad.txt") << "hold 5\n\nfrobnicate 3\n";
    const Spoken good = run("script check @good.txt --size 36x24 --json");
    EXPECT_EQ(good.code, 0) << good.err << good.out;
    EXPECT_THAT(good.out, HasSubstr("\"frames\":30"));
    const Spoken bad = run("script check @bad.txt");
    EXPECT_EQ(bad.code, 1);
    EXPECT_THAT(bad.out, HasSubstr("bad.txt:3: "));
    std::ofstream(folder / "drawn.txt") << "path_start x=1 y=1 zoom=1 ease=in\nfrobnicate\n";
    EXPECT_THAT(run("script check @drawn.txt").out, HasSubstr("drawn.txt:2: "))
        << "the file's line";
    const Spoken frames = run("script frames @good.txt --size 36x24 --json");
    const QStringList lines = QString::fromStdString(frames.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 30);
    const QJsonObject last = QJsonDocument::fromJson(lines.back().toUtf8()).object();
    EXPECT_EQ(last["frame"].toInt(), 29);
    EXPECT_EQ(last["cx"].toDouble(), 18.0);
    EXPECT_EQ(last["cy"].toDouble(), 12.0);
    EXPECT_EQ(run("script").code, 2);
    EXPECT_EQ(run("script polish @good.txt").code, 2);
}

} // namespace
} // namespace zrrender
