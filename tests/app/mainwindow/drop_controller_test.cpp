#include "app/mainwindow/drop_controller.h"

#include <gtest/gtest.h>

#include "app/mainwindow/dropped_file.h"
#include "tests/app/mainwindow/fake_host.h"
#include "tests/support/testkit.h"

namespace {

QUrl touched(const std::string& name)
{
    const auto path = zrtest::scratchFolder() / name;
    zrtest::writeBytes(path, {0});
    return QUrl::fromLocalFile(QString::fromStdString(path.string()));
}

struct Drops : testing::Test
{
    FakeHost host;
    QStringList opened;
    DropController drops{host, opener("image"), opener("depth"), opener("profile"),
                         [this](const QString& stars, const QString& starless) {
                             opened << "pair " + stars.section("/", -1) + " " +
                                           starless.section("/", -1);
                         }};

    DropController::Open opener(const char* kind)
    {
        return [this, kind](const QString& path) {
            opened << QString("%1 %2").arg(kind, path.section('/', -1));
        };
    }
    void openAnImage() { host.document.installSource("a.png", zrtest::noise(4, 4, 1, 1), {}, {}); }
};

} // namespace

TEST(DroppedFile, KindFollowsFromNameAndFromWhatIsOpen)
{
    struct Case
    {
        const char* name;
        DropKind beside; ///< an open image
        DropKind alone;
    };
    using K = DropKind;
    const Case cases[] = {
        {"m42.tif", K::Image, K::Image},
        {"M42_depth.xisf", K::DepthMap, K::Image},
        {"depth.png", K::DepthMap, K::Image},
        {"m42-Depth-Map.PNG", K::DepthMap, K::Image},
        {"m42depth.png", K::DepthMap, K::Image},
        {"nebuladepth.png", K::ImageOrDepthMap, K::Image},
        {"m42_depth_anaglyph.png", K::ImageOrDepthMap, K::Image},
        {"zmap.tif", K::ImageOrDepthMap, K::Image},
        {"m42 disparity.tif", K::ImageOrDepthMap, K::Image},
        {"schizmapped.tif", K::Image, K::Image},
        {"rows.ZRCOL", K::ColorProfile, K::Nothing},
        {"depth.txt", K::Nothing, K::Nothing},
    };
    for (const Case& c : cases) {
        const QUrl url = touched(c.name);
        EXPECT_EQ(droppedFile({url}, true).kind, c.beside) << c.name;
        EXPECT_EQ(droppedFile({url}, false).kind, c.alone) << c.name;
    }
    EXPECT_EQ(droppedFile({QUrl("https://example.org/one.png")}, true).kind, K::Nothing);
    EXPECT_EQ(droppedFile({}, true).kind, K::Nothing);
}

TEST_F(Drops, TheFirstUsableFileIsTakenAndTheOfferNamesIt)
{
    const QList<QUrl> urls{touched("notes.txt"), touched("one.png"), touched("two_depth.png")};
    EXPECT_TRUE(drops.offer(urls).contains("one.png"));
    drops.take(urls);
    EXPECT_EQ(opened, QStringList("image one.png"));
    EXPECT_TRUE(drops.offer({touched("notes.txt")}).isEmpty());
    drops.take({touched("notes.txt")});
    EXPECT_EQ(opened.size(), 1);
}

TEST_F(Drops, TwoLayersByTheirNamesOpenAsAPairAmongOtherFiles)
{
    const QList<QUrl> urls{touched("whole.png"), touched("m8_stars.png"),
                           touched("M8-starless.tif")};
    EXPECT_EQ(drops.offer(urls), "Open M8-starless.tif with its stars, m8_stars.png");
    drops.take(urls);
    EXPECT_EQ(opened, QStringList("pair m8_stars.png M8-starless.tif"));
    EXPECT_TRUE(host.script.questions.isEmpty());
}

TEST_F(Drops, TwoImagesOfNoTellingNamesAreAskedAbout)
{
    const QList<QUrl> urls{touched("left.png"), touched("right & wrong.png")};
    EXPECT_TRUE(drops.offer(urls).contains("left.png and right & wrong.png"));
    host.script.choices = {0, 1, 2};
    for (int i = 0; i < 4; ++i)
        drops.take(urls);
    EXPECT_EQ(opened, QStringList({"pair right & wrong.png left.png",
                                   "pair left.png right & wrong.png", "image left.png"}));
    drops.take({touched("left.png"), touched("left_depth.png")}); // no layer of stars
    EXPECT_EQ(opened.back(), "image left.png");
    EXPECT_EQ(host.script.questions.size(), 4);
}

TEST_F(Drops, AnUnclearNameIsAskedAboutAndCancelOpensNothing)
{
    openAnImage();
    const QList<QUrl> urls{touched("deepdepth.png")};
    drops.take(urls);
    EXPECT_TRUE(opened.isEmpty());
    host.script.choices = {0, 1};
    drops.take(urls);
    drops.take(urls);
    EXPECT_EQ(opened, QStringList({"depth deepdepth.png", "image deepdepth.png"}));
    EXPECT_EQ(host.script.questions.size(), 3);
}

TEST_F(Drops, NothingIsOfferedWhileWorkIsUnderWay)
{
    const QList<QUrl> urls{touched("busy.png")};
    host.busyRun([&] { EXPECT_TRUE(drops.offer(urls).isEmpty()); });
}
