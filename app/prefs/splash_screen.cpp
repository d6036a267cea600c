#include "app/prefs/splash_screen.h"

#include <algorithm>
#include <random>

#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <QScreen>

#include "app/prefs/splash_canvas.h"
#include "app/prefs/splash_fonts.h"

// Named outside any namespace, so that a program that links the static library has the picture.
static void registerResources()
{
    Q_INIT_RESOURCE(prefs);
}

static constexpr int kTickMs = 16;
static constexpr int kSpeckCount = 90;
static constexpr qreal kEndSeconds = 2.5;

SplashScreen::SplashScreen(bool animated, QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
    , m_still(!animated)
{
    registerResources();
    splash::loadFonts();
    m_photo.load(":/splash/splash_photo.jpg");
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    setAccessibleName(QGuiApplication::applicationDisplayName());
    QSize size(splash::kWidth, splash::kHeight);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect room = screen->availableGeometry();
        if (size.width() > room.width() || size.height() > room.height())
            size.scale(room.size(), Qt::KeepAspectRatio);
        move(room.center() - QPoint(size.width() / 2, size.height() / 2));
    }
    resize(size);
    m_clock.start();
    connect(&m_ticks, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    if (animated)
        m_ticks.start(kTickMs);
}

void SplashScreen::stopAnimating()
{
    m_ticks.stop();
}

qreal SplashScreen::elapsedSeconds() const
{
    return m_still ? kEndSeconds : static_cast<qreal>(m_clock.elapsed()) / 1000.0;
}

std::vector<SplashScreen::Speck> SplashScreen::scatterSpecks()
{
    std::mt19937 random(20);
    const auto between = [&random](qreal low, qreal high) {
        return low + (high - low) * static_cast<qreal>(random()) / static_cast<qreal>(random.max());
    };
    std::vector<Speck> specks;
    specks.reserve(kSpeckCount);
    for (int i = 0; i < kSpeckCount; ++i)
        specks.push_back({between(-1.0, 1.0), between(-0.7, 0.7), between(0.0, 1.0),
                          between(0.05, 0.16), between(0.5, 1.3)});
    return specks;
}

void SplashScreen::paintEvent(QPaintEvent*)
{
    const qreal t = elapsedSeconds();
    const qreal a = std::min(1.0, t / 1.1);
    const qreal b = std::clamp((t - 0.25) / 1.4, 0.0, 1.0);

    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(rect(), splash::kGround);
    const qreal scale =
        std::min(height() / qreal(splash::kHeight), width() / qreal(splash::kWidth));
    painter.translate((width() - scale * splash::kWidth) / 2,
                      (height() - scale * splash::kHeight) / 2);
    painter.scale(scale, scale);
    painter.setClipRect(QRectF(0, 0, splash::kWidth, splash::kHeight));

    paintPhoto(painter, t, a);
    paintScrimAndVignette(painter);
    paintSpecks(painter, t, a);
    paintFlightPath(painter, t, b);
    paintMark(painter, a);
    paintWordmark(painter, a);
    paintTagline(painter, b);
    paintLoader(painter, t);
    paintCorner(painter, b);
}

void SplashScreen::mouseDoubleClickEvent(QMouseEvent*)
{
    close();
}

void SplashScreen::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); }))
        event->acceptProposedAction();
}

void SplashScreen::dropEvent(QDropEvent* event)
{
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) {
            event->acceptProposedAction();
            emit fileDropped(url.toLocalFile());
            return;
        }
}
