#include "app/video/encode_dialog.h"

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>

#include <gtest/gtest.h>

#include "app/video/encode_progress.h"

TEST(EncodeProgress, RateAndTimeLeftComeWithTheFrames)
{
    struct Case
    {
        int done;
        int frames;
        double seconds;
        const char* text;
    };
    const Case cases[]{
        {0, 40, 60.0, "0 of 40 frames"},
        {3, 40, 1.0, "3 of 40 frames"},
        {10, 40, 4.0, "10 of 40 frames  -  2.5 frames a second  -  12 s left"},
        {1, 5, 30.0, "1 of 5 frames  -  0.033 frames a second  -  2 min 0 s left"},
        {100, 2500, 5.0, "100 of 2500 frames  -  20 frames a second  -  2 min 0 s left"},
        {100, 100000, 10.0, "100 of 100000 frames  -  10 frames a second  -  2 h 46 min left"},
        {40, 40, 9.0, "40 of 40 frames  -  finishing the file"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(encodeProgressText(each.done, each.frames, each.seconds), each.text);
}

TEST(EncodeDialog, ShowsTheFrameJustWrittenUntilTheUserCancels)
{
    EncodeDialog dialog("Exporting video", "Encoding flyby...", 12, nullptr);
    QImage frame(3000, 1000, QImage::Format_RGB32);
    frame.fill(Qt::red);
    EXPECT_TRUE(dialog.advance({5, 12, &frame}));
    EXPECT_EQ(dialog.findChild<QProgressBar*>()->value(), 5);
    const QImage shown = dialog.findChild<QLabel*>("encodePicture")->pixmap().toImage();
    EXPECT_EQ(shown.size(), QSize(400, 133)) << "unshaped";
    EXPECT_EQ(shown.pixelColor(200, 60), QColor(Qt::red));
    const auto press = [&](Qt::Key key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(dialog.focusWidget() ? dialog.focusWidget() : &dialog, &event);
    };
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    EXPECT_TRUE(dialog.advance({5, 12, nullptr})) << "left over from the file dialog";
    press(Qt::Key_Escape);
    EXPECT_TRUE(dialog.isVisible()) << "until the encoder is gone";
    EXPECT_FALSE(dialog.advance({6, 12, nullptr}));
}
