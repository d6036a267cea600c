#pragma once

#include <QSize>
#include <QWidget>

class QComboBox;
class QGridLayout;
class QSpinBox;
class RowBinding;
class WheelGuard;

/// The frame of a flyby in source pixels: two boxes, the usual ratios, and the way back to the
/// whole picture.
class FlybyFrameBoxes final : public QWidget
{
    Q_OBJECT

public:
    FlybyFrameBoxes(WheelGuard& guard, QWidget* parent);

    /// The view of the two parameters, owned by this widget.
    RowBinding* binding() const { return m_binding; }

    /// The frame as the parameters hold it: 0 by 0 for the whole picture.
    QSize frame() const { return m_frame; }
    void setFrame(QSize frame);
    /// The size of the open picture: the boxes reach up to it. Empty for none.
    void refreshFlybyFrameBoxes(QSize image);

private:
    QSpinBox* addBox(const char* name, const char* label, const char* help, QGridLayout& grid,
                     WheelGuard& guard);
    QSize shownFrame() const;
    void showFrame();
    void take(QSize frame, const char* label);
    void takeRatio(int row);

    QSpinBox* m_width;
    QSpinBox* m_height;
    QComboBox* m_ratio = nullptr;
    RowBinding* m_binding;
    QSize m_frame{0, 0};
    QSize m_image{0, 0};
};

/// The largest frame of a ratio within a picture, at least 16 pixels a side where that has them.
QSize largestFrame(int ratioWidth, int ratioHeight, QSize image);
