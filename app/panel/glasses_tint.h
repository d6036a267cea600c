#pragma once

#include <vector>

#include <QWidget>

class AnaglyphGlasses;
class ParamSlider;
class QGridLayout;
class RowBinding;
class WheelGuard;
struct TintRow;

/// The tint of the user's glasses: two sliders over settings, and a picture of what they do. It
/// belongs to the user and reaches only the screen, never a file or a document.
class GlassesTint final : public QWidget
{
    Q_OBJECT

public:
    GlassesTint(WheelGuard& guard, QWidget* parent);

    /// Follows the encoding in the parameter record; owned by this widget.
    RowBinding* binding() { return m_binding; }

signals:
    void tintChanged();

private:
    void addSlider(const TintRow& row, QGridLayout& grid, WheelGuard& guard);
    void reset();
    void showTint();
    void showMode(int mode);

    AnaglyphGlasses* m_glasses;
    std::vector<ParamSlider*> m_sliders; ///< in the order of the rows
    RowBinding* m_binding;
    int m_mode = 0;
};
