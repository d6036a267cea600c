#include "app/panel/param_slider.h"

#include <QKeyEvent>
#include <QWheelEvent>

static constexpr qint64 kPauseBetweenTurnsMs = 400;

ParamSlider::ParamSlider(QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
{
    connect(this, &QSlider::sliderPressed, this, [this] { m_continues = false; });
    connect(this, &QSlider::valueChanged, this, &ParamSlider::onValueChanged);
}

void ParamSlider::onValueChanged(int value)
{
    const bool continues = m_continues;
    m_continues = m_pressed || isSliderDown();
    emit moved(value, continues);
}

void ParamSlider::mousePressEvent(QMouseEvent* event)
{
    m_pressed = true;
    m_continues = false;
    QSlider::mousePressEvent(event);
}

void ParamSlider::mouseReleaseEvent(QMouseEvent* event)
{
    QSlider::mouseReleaseEvent(event);
    m_pressed = false;
    m_continues = false;
}

void ParamSlider::keyPressEvent(QKeyEvent* event)
{
    m_continues = event->isAutoRepeat();
    QSlider::keyPressEvent(event);
    m_continues = false;
}

void ParamSlider::wheelEvent(QWheelEvent* event)
{
    m_continues = m_sinceWheel.isValid() && m_sinceWheel.elapsed() < kPauseBetweenTurnsMs;
    QSlider::wheelEvent(event);
    m_continues = false;
    m_sinceWheel.start();
}

void WheelGuard::guard(QWidget& control)
{
    control.setFocusPolicy(Qt::StrongFocus); // the wheel alone takes no focus
    control.installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject* watched, QEvent* event)
{
    const auto* control = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || !control || control->hasFocus())
        return QObject::eventFilter(watched, event);
    event->ignore();
    return true;
}
