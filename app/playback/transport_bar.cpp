#include "app/playback/transport_bar.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>

#include "app/prefs/theme_manager.h"
#include "app/prefs/toolbar_icons.h"
#include "app/prefs/toolbar_style.h"

static constexpr int kIconSide = 18;

static QToolButton* makeButton(const char* name, const char* toolTip, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setAutoRaise(true);
    button->setIconSize({kIconSide, kIconSide});
    button->setToolTip(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

/// Makes the label wide enough for `widest`, so that the timeline does not move as numbers grow.
static void reserve(QLabel& label, const QString& widest)
{
    label.setMinimumWidth(label.fontMetrics().horizontalAdvance(widest));
}

static QLabel* makeReadout(const char* name, const QString& widest, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    reserve(*label, widest);
    return label;
}

TransportBar::TransportBar(QWidget* parent)
    : QWidget(parent)
    , m_play(makeButton("transport.play", "", this))
    , m_stop(makeButton("transport.stop", "Stop (Esc)", this))
    , m_timeline(new QSlider(Qt::Horizontal, this))
    , m_frame(makeReadout("transport.frame", "888 / 888", this))
    , m_rate(makeReadout("transport.rate", "888 fps", this))
{
    setObjectName("transportBar");
    m_timeline->setObjectName("transport.timeline");
    m_timeline->setAccessibleName("Timeline");
    m_timeline->setToolTip("Drag to look at single frames");
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 3, 10, 3);
    layout->setSpacing(6);
    layout->addWidget(m_play);
    layout->addWidget(m_stop);
    layout->addWidget(m_timeline, 1);
    layout->addWidget(m_frame);
    layout->addWidget(m_rate);
    connect(m_play, &QToolButton::clicked, this, &TransportBar::playClicked);
    connect(m_stop, &QToolButton::clicked, this, &TransportBar::stopClicked);
    connect(m_timeline, &QSlider::sliderPressed, this, [this] { emit scrubbing(true); });
    connect(m_timeline, &QSlider::sliderReleased, this, [this] { emit scrubbing(false); });
    connect(m_timeline, &QSlider::valueChanged, this, &TransportBar::frameWanted);
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, this,
            &TransportBar::applyIconColors);
    setTransportActive(false, {});
    applyIconColors();
}

void TransportBar::setTransportActive(bool active, const QString& what)
{
    m_active = active;
    m_paused = false;
    m_stop->setEnabled(active);
    m_timeline->setEnabled(active);
    if (!active)
        updateTimeline(0, 0, 0);
    setAccessibleName(active ? "Playing " + what : QString("Playback"));
    drawPlayButton();
}

void TransportBar::setPaused(bool paused)
{
    m_paused = paused;
    drawPlayButton();
}

void TransportBar::updateTimeline(int frame, int count, int fps)
{
    const QSignalBlocker quiet(m_timeline);
    m_timeline->setRange(0, qMax(0, count - 1));
    m_timeline->setPageStep(qMax(1, count / 10));
    m_timeline->setValue(frame);
    m_frame->setText(count > 0 ? QString("%1 / %2").arg(frame + 1).arg(count) : QString());
    if (const auto digits = static_cast<int>(QString::number(count).size()); digits != m_digits) {
        m_digits = digits;
        reserve(*m_frame, QString("%1 / %1").arg(QString(qMax(3, digits), '8')));
    }
    m_rate->setText(count > 0 ? QString("%1 fps").arg(fps) : QString());
}

void TransportBar::applyIconColors()
{
    const bool dark = ThemeManager::instance().effectiveDark();
    m_stop->setIcon(ToolbarStyle::svgPixmap(toolbarIconFor("stopPlayback"), kIconSide, dark));
    drawPlayButton();
}

void TransportBar::drawPlayButton()
{
    const bool plays = m_active && !m_paused;
    const bool dark = ThemeManager::instance().effectiveDark();
    const char* icon = toolbarIconFor(plays ? "pausePlayback" : "playWiggle");
    m_play->setIcon(ToolbarStyle::svgPixmap(icon, kIconSide, dark));
    m_play->setAccessibleName(plays ? "Pause" : "Play");
    m_play->setToolTip(m_play->accessibleName() + (m_active ? " (K)" : ""));
}
