#pragma once

#include <QLabel>

/// The name of a control; a double click asks for the control's default.
class ResetLabel final : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

signals:
    void resetAsked();

protected:
    void mouseDoubleClickEvent(QMouseEvent*) override { emit resetAsked(); }
};
