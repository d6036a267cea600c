#pragma once

#include <QElapsedTimer>
#include <QSlider>

/// A slider that knows which of its changes belong to one gesture: a drag, a held key, a turn of
/// the wheel.
class ParamSlider final : public QSlider
{
    Q_OBJECT

public:
    explicit ParamSlider(QWidget* parent);

signals:
    /// The value changed; `continues` when the change goes on with the gesture of the last one.
    void moved(int value, bool continues);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void onValueChanged(int value);

    bool m_pressed = false;
    bool m_continues = false;
    QElapsedTimer m_sinceWheel;
};

/// Leaves the wheel over a control to the panel behind it, unless the control has the focus.
class WheelGuard final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    /// Guards `control` for the guard's lifetime.
    void guard(QWidget& control);
    bool eventFilter(QObject* watched, QEvent* event) override;
};
