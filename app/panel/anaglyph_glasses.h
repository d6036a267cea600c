#pragma once

#include <QWidget>

/// A pair of glasses whose lenses show the tint in which each eye sees white through an anaglyph of
/// the given encoding and channel gains.
class AnaglyphGlasses final : public QWidget
{
    Q_OBJECT

public:
    explicit AnaglyphGlasses(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    /// Paints anew only when one of the four really changed.
    void setState(int mode, double gainR, double gainG, double gainB);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_mode = 0;
    double m_gainR = 1.0;
    double m_gainG = 1.0;
    double m_gainB = 1.0;
};

/// The colour in which one eye sees a light grey picture through `makeAnaglyph`.
QColor lensTint(bool leftEye, int mode, double gainR, double gainG, double gainB);
