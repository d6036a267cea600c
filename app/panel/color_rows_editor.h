#pragma once

#include <array>
#include <string>
#include <vector>

#include <QColor>

#include "app/panel/row_binding.h"
#include "engine/depth/color_depth_rows.h"

class ColorSwatch;
class ParamSlider;
class QCheckBox;
class QGridLayout;
class QLabel;
class QToolButton;
class WheelGuard;

/// The table of colours that paint depth: a line each with switch, colour, tolerance and depth.
class ColorRowsEditor final : public RowBinding
{
    Q_OBJECT

public:
    static constexpr int kRows = 10;

    /// Builds the lines at the foot of `grid`.
    ColorRowsEditor(QGridLayout& grid, WheelGuard& guard, QWidget* parent);

    void load(const zre::ZRParams& params) override;
    void store(zre::ZRParams& params) const override { params.colorDepthEntries = m_text; }
    void follow(const zre::ZRParams& params, const PanelFacts&) override;
    void refreshTexts() override;

    int activeRows() const;
    /// Gives line `row` a colour and switches it on.
    void setColor(int row, const QColor& color);

signals:
    /// The user wants to choose the colour of a line by its numbers, or to take it from the
    /// picture.
    void chooseColorRequested(int row, const QColor& current);
    void pickColorRequested(int row);

private:
    struct Share
    {
        ParamSlider* slider;
        QLabel* text;
    };
    struct Line
    {
        QCheckBox* enabled;
        ColorSwatch* swatch;
        QToolButton* pick;
        Share tolerance;
        Share depth;
    };

    void addTitles(QGridLayout& grid, QWidget* parent);
    void addLine(int row, QGridLayout& grid, WheelGuard& guard, QWidget* parent);
    void addShare(int row, Share& share, QGridLayout& grid, int column, WheelGuard& guard,
                  QWidget* parent);
    void show(int row);
    void changed(int row, const QString& what, bool continues);

    std::array<Line, kRows> m_lines{};
    std::vector<zre::ColorDepthRow> m_rows; ///< those shown, and any further ones of a file
    std::string m_text; ///< as loaded until a line changes, so that loading alone changes nothing
    bool m_percent = true;
};
