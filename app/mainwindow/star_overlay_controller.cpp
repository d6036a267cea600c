#include "app/mainwindow/star_overlay_controller.h"

#include <tuple>

#include <QLocale>

#include "app/mainwindow/preview_view.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"

/// What decides which stars there are and which of them are drawn.
static auto detectionOf(const zre::ZRParams& p)
{
    return std::tie(p.starSeparationEnabled, p.thresholdSigma, p.minPeak, p.maxRadius,
                    p.starCompanionWipe, p.starClusterSplit, p.backgroundScale, p.aiStarSeparation,
                    p.starMaxRendered);
}

/// Whether the stars of the source lie at their own places in output view `view`.
static bool showsStarsInPlace(int view)
{
    constexpr int kSideBySide = 3;
    return view != kSideBySide;
}

static QString countText(int found, int drawn)
{
    const QLocale english(QLocale::English);
    const QString text =
        found == 1 ? QString("1 star found") : english.toString(found) + " stars found";
    return drawn < found ? text + "  -  " + english.toString(drawn) + " drawn" : text;
}

StarOverlayController::StarOverlayController(ShellHost& host, PreviewView& preview)
    : m_host(host)
    , m_preview(preview)
{
    m_hold.setSingleShot(true);
    m_hold.setInterval(kHoldMs);
    QObject::connect(&m_hold, &QTimer::timeout, &m_hold, [this] { fade(); });
    m_fade.setDuration(kFadeMs);
    m_fade.setStartValue(1.0);
    m_fade.setEndValue(0.0);
    QObject::connect(&m_fade, &QVariantAnimation::valueChanged, &m_preview,
                     [this](const QVariant& value) { m_preview.setStarRings(value.toDouble()); });
}

bool StarOverlayController::detectionChanged() const
{
    return !m_fresh && detectionOf(m_shown) != detectionOf(m_host.session().params);
}

void StarOverlayController::setAlwaysShown(bool shown)
{
    m_alwaysShown = shown;
    m_hold.stop();
    m_fade.stop();
    m_preview.setStarRings(shown ? 1.0 : 0.0);
    if (shown && m_host.session().hasSource())
        pictureShown();
}

void StarOverlayController::showForAWhile()
{
    m_fade.stop();
    m_preview.setStarRings(1.0);
    m_hold.start();
}

void StarOverlayController::fade()
{
    if (!m_alwaysShown)
        m_fade.start();
}

void StarOverlayController::paramsEdited()
{
    if (detectionChanged())
        showForAWhile();
}

void StarOverlayController::pictureShown()
{
    const bool changed = detectionChanged();
    m_shown = m_host.session().params;
    m_fresh = false;
    RenderPipeline& pipeline = m_host.pipeline();
    if (changed || m_alwaysShown)
        m_host.busyRun([&] { pipeline.prepareInputs(); }); // some views need no stars
    const std::vector<zre::Star>* stars = pipeline.activeStars();
    const bool inPlace = showsStarsInPlace(m_host.session().outputMode);
    m_preview.setStarMarks(stars && inPlace ? starMarks(*stars) : std::vector<StarMark>());
    if (!changed)
        return;
    if (m_shown.starSeparationEnabled)
        m_host.showStatus(countText(stars ? static_cast<int>(stars->size()) : 0,
                                    stars ? pipeline.starsShown() : 0));
    showForAWhile();
}

void StarOverlayController::documentReplaced()
{
    m_fresh = true;
    m_hold.stop();
    m_fade.stop();
    m_preview.setStarMarks({});
    m_preview.setStarRings(m_alwaysShown ? 1.0 : 0.0);
}
