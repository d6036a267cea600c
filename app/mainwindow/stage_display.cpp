#include "app/mainwindow/stage_display.h"

#include <QLabel>
#include <QPainter>
#include <QProgressDialog>
#include <QStatusBar>

namespace {

/// Work shorter than this brings up no dialog: one that flashes by tells nothing.
constexpr int kProgressDelayMs = 500;

/// A line of text that gives way to a narrow window instead of widening it.
class ElidedLabel final : public QLabel
{
public:
    ElidedLabel()
    {
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        setTextFormat(Qt::PlainText);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.drawText(contentsRect(), Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width()));
    }
};

} // namespace

// Labels instead of QStatusBar::showMessage: a menu that is merely looked at would wipe its text.
StageDisplay::StageDisplay(QStatusBar& bar, QWidget& window)
    : m_window(window)
    , m_text(new ElidedLabel)
    , m_zoom(new QLabel)
    , m_readout(new QLabel)
{
    m_text->setObjectName("statusText");
    m_zoom->setObjectName("zoomText");
    m_text->setContentsMargins(6, 0, 6, 0);
    m_zoom->setContentsMargins(6, 0, 6, 0);
    bar.addWidget(m_text, 1);
    m_readout->setObjectName("readoutText");
    m_readout->setContentsMargins(6, 0, 6, 0);
    bar.addPermanentWidget(m_readout);
    bar.addPermanentWidget(m_zoom);
}

StageDisplay::~StageDisplay() = default;

void StageDisplay::show(const QString& text)
{
    if (text == m_text->text())
        return;
    m_text->setText(text);
    m_text->setToolTip(text);
    m_text->repaint();
}

void StageDisplay::showZoom(const QString& text)
{
    m_zoom->setText(text);
}

void StageDisplay::showReadout(const QString& text)
{
    m_readout->setText(text);
}

void StageDisplay::stage(int percent, const QString& text)
{
    if (m_progress) {
        if (m_firstPercent < 0)
            m_firstPercent = percent;
        m_progress->setLabelText(
            text + timeLeftText(m_elapsed.elapsed(), percent - m_firstPercent, 100 - percent));
        m_progress->setValue(percent);
    } else {
        show(QString("%1  %2 %").arg(text).arg(percent));
    }
}

void StageDisplay::installProgress(const QString& title, const QString& text)
{
    m_progress = std::make_unique<QProgressDialog>(text, QString(), 0, 100, &m_window);
    m_progress->setWindowTitle(title);
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    m_progress->setMinimumDuration(kProgressDelayMs);
    m_progress->setValue(0);
    m_elapsed.start();
    m_firstPercent = -1;
}

QString timeLeftText(qint64 elapsedMs, int done, int left)
{
    constexpr qint64 kToldAfterMs = 3000; // an estimate from less would jump about
    if (elapsedMs < kToldAfterMs || done <= 0 || left <= 0)
        return {};
    const qint64 seconds = (elapsedMs * left / done + 999) / 1000;
    return seconds < 90 ? QString("\nAbout %1 s left").arg(seconds)
                        : QString("\nAbout %1 min left").arg((seconds + 30) / 60);
}

void StageDisplay::removeProgress()
{
    m_progress.reset();
}

QString StageDisplay::text() const
{
    return m_text->text();
}
