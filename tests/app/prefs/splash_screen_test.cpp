#include "app/prefs/splash_screen.h"

#include <algorithm>

#include <QCoreApplication>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QMouseEvent>
#include <QStringList>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

/// Mean lightness of an area, 0 to 255.
double lightness(const QImage& picture, const QRect& area)
{
    double sum = 0.0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            sum += picture.pixelColor(x, y).lightness();
    return sum / (area.width() * area.height());
}

} // namespace

TEST(Splash, ItsPictureIsBuiltIn)
{
    SplashScreen splash(false);
    EXPECT_FALSE(QImage(":/splash/splash_photo.jpg").isNull());
    EXPECT_GT(lightness(splash.grab().toImage(), QRect(350, 100, 100, 100)), 40.0);
}

// The canvas keeps its shape: what a window of another shape has beyond it stays dark.
TEST(Splash, TheCanvasFitsAWindowOfAnyShape)
{
    for (const QSize size :
         {QSize(800, 480), QSize(1600, 960), QSize(800, 900), QSize(1500, 480)}) {
        SplashScreen splash(false);
        splash.resize(size);
        const QImage shown = splash.grab().toImage();
        ASSERT_EQ(shown.size(), size);
        const double scale = std::min(size.width() / 800.0, size.height() / 480.0);
        const QRect canvas = QRectF(0, 0, 800 * scale, 480 * scale)
                                 .toRect()
                                 .translated(int(size.width() - 800 * scale) / 2,
                                             int(size.height() - 480 * scale) / 2);
        int brightest = 0;
        for (int y = 0; y < size.height(); y += 7)
            for (int x = 0; x < size.width(); x += 7)
                if (!canvas.adjusted(-2, -2, 2, 2).contains(x, y))
                    brightest = std::max(brightest, shown.pixelColor(x, y).lightness());
        EXPECT_LT(brightest, 20) << size.width() << " x " << size.height();
        const QRect words(canvas.x() + int(50 * scale), canvas.y() + int(335 * scale),
                          int(300 * scale), int(50 * scale));
        EXPECT_GT(lightness(shown, words), 25.0) << "the name is there";
    }
}

// The program may be busy from the first frame on: that frame must already tell its name.
TEST(Splash, TheFirstFrameIsNotDark)
{
    SplashScreen splash(true);
    const QImage shown = splash.grab().toImage();
    EXPECT_GT(lightness(shown, QRect(350, 100, 100, 100)), 20.0);
    EXPECT_GT(lightness(shown, QRect(50, 335, 300, 50)), 12.0);
}

TEST(Splash, ADoubleClickClosesIt)
{
    SplashScreen splash(true);
    splash.show();
    QMouseEvent click(QEvent::MouseButtonDblClick, QPointF(9, 9), splash.mapToGlobal(QPointF(9, 9)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&splash, &click);
    EXPECT_FALSE(splash.isVisible());
}

TEST(Splash, TakesTheFirstLocalFileOfADropAndNothingElse)
{
    SplashScreen splash(false);
    QStringList dropped;
    QObject::connect(&splash, &SplashScreen::fileDropped,
                     [&dropped](const QString& path) { dropped << path; });
    QMimeData mime;
    const auto drop = [&] {
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QCoreApplication::sendEvent(&splash, &enter);
        if (enter.isAccepted()) {
            QDropEvent event({10, 10}, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(&splash, &event);
        }
        return enter.isAccepted();
    };
    mime.setUrls({QUrl("https://example.org/m42.png")});
    EXPECT_FALSE(drop());
    mime.setUrls({QUrl("https://example.org/m42.png"), QUrl::fromLocalFile("/p/m 42.png")});
    EXPECT_TRUE(drop());
    EXPECT_EQ(dropped, QStringList("/p/m 42.png"));
}
