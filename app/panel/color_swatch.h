#pragma once

#include <QAbstractButton>
#include <QColor>

/// A button that shows a colour.
class ColorSwatch final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ColorSwatch(QWidget* parent);

    const QColor& color() const { return m_color; }
    void setColor(const QColor& color);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};
