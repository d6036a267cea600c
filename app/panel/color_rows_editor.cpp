#include "app/panel/color_rows_editor.h"

#include <algorithm>
#include <cmath>

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QToolButton>

#include "app/panel/color_swatch.h"
#include "app/panel/panel_icons.h"
#include "app/panel/param_slider.h"
#include "app/panel/row_controls.h"
#include "app/persist/appcfg.h"

namespace {

/// The columns of the table.
enum Column
{
    kSwitch,
    kSwatch,
    kPick,
    kTolerance,
    kDepth = kTolerance + 2
};

constexpr int kSteps = 100; ///< of a slider from 0 to 1
constexpr float kFirstTolerance = 0.2f;
constexpr float kFirstDepth = 0.5f;

/// What an unused line offers: the hues of the colour wheel, switched off.
zre::ColorDepthRow unusedRow(int row)
{
    const QColor hue =
        QColor::fromHsvF(static_cast<float>(row) / ColorRowsEditor::kRows, 0.8f, 0.8f);
    return {false, hue.redF(), hue.greenF(), hue.blueF(), kFirstTolerance, kFirstDepth};
}

float bound(float value)
{
    return value >= 0.0f ? std::min(value, 1.0f) : 0.0f; // a NaN becomes 0
}

QColor colorOf(const zre::ColorDepthRow& row)
{
    return QColor::fromRgbF(bound(row.r), bound(row.g), bound(row.b));
}

QString shareText(float value, bool percent)
{
    return percent ? QString("%1 %").arg(std::lround(value * kSteps))
                   : QString::number(static_cast<double>(value), 'f', 2);
}

QString lineName(int row)
{
    return QString("Color %1").arg(row + 1);
}

} // namespace

ColorRowsEditor::ColorRowsEditor(QGridLayout& grid, WheelGuard& guard, QWidget* parent)
    : RowBinding(parent)
{
    auto* table = new QGridLayout;
    table->setHorizontalSpacing(6);
    table->setVerticalSpacing(4);
    grid.addLayout(table, grid.rowCount(), 0, 1, kColumns);
    addTitles(*table, parent);
    for (int row = 0; row < kRows; ++row)
        addLine(row, *table, guard, parent);
    load({});
    refreshTexts();
}

void ColorRowsEditor::addTitles(QGridLayout& grid, QWidget* parent)
{
    const auto add = [&](const char* text, int column, int span) {
        grid.addWidget(new QLabel(text, parent), 0, column, 1, span);
    };
    add("Color", kSwitch, 3);
    add("Tolerance", kTolerance, 2);
    add("Depth", kDepth, 2);
    grid.setColumnStretch(kTolerance, 1);
    grid.setColumnStretch(kDepth, 1);
}

void ColorRowsEditor::addLine(int row, QGridLayout& grid, WheelGuard& guard, QWidget* parent)
{
    Line& line = m_lines[static_cast<std::size_t>(row)];
    line.enabled = new QCheckBox(parent);
    line.enabled->setObjectName(QString("color%1.enabled").arg(row));
    line.enabled->setAccessibleName(lineName(row) + " on");
    line.enabled->setToolTip("Let this color paint its depth. Default: off.");
    line.swatch = new ColorSwatch(parent);
    line.swatch->setObjectName(QString("color%1.swatch").arg(row));
    line.swatch->setAccessibleName(lineName(row) + ", choose");
    line.swatch->setToolTip("Pick a color: the pixels near it get this line's depth.");
    line.pick = new QToolButton(parent);
    line.pick->setObjectName(QString("color%1.pick").arg(row));
    line.pick->setAutoRaise(true);
    line.pick->setFocusPolicy(Qt::StrongFocus);
    line.pick->setIcon(crosshairIcon());
    line.pick->setAccessibleName(lineName(row) + ", take from the picture");
    line.pick->setToolTip("Take the color from the picture: click here, then in the preview.");
    grid.addWidget(line.enabled, row + 1, kSwitch);
    grid.addWidget(line.swatch, row + 1, kSwatch);
    grid.addWidget(line.pick, row + 1, kPick);
    addShare(row, line.tolerance, grid, kTolerance, guard, parent);
    addShare(row, line.depth, grid, kDepth, guard, parent);

    connect(line.enabled, &QCheckBox::clicked, this, [this, row](bool on) {
        m_rows[static_cast<std::size_t>(row)].enabled = on;
        changed(row, on ? "on" : "off", false);
    });
    connect(line.swatch, &ColorSwatch::clicked, this, [this, row] { //
        emit chooseColorRequested(row, colorOf(m_rows[static_cast<std::size_t>(row)]));
    });
    connect(line.pick, &QToolButton::clicked, this, [this, row] { emit pickColorRequested(row); });
}

void ColorRowsEditor::addShare(int row, Share& share, QGridLayout& grid, int column,
                               WheelGuard& guard, QWidget* parent)
{
    const bool depth = column == kDepth;
    const char* what = depth ? "depth" : "tolerance";
    share.slider = new ParamSlider(parent);
    share.slider->setObjectName(QString("color%1.%2").arg(row).arg(what));
    share.slider->setAccessibleName(lineName(row) + ", " + what);
    share.slider->setRange(0, kSteps);
    share.slider->setToolTip(depth ? "The depth that this color gets: 0 far, 100 % near. "
                                     "Default: 50 %."
                                   : "How far a pixel's color may be from this one; the influence "
                                     "fades toward that distance. 0 to 100 %, default 20 %.");
    share.text = new QLabel(parent);
    share.text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    share.text->setFixedWidth(share.text->fontMetrics().horizontalAdvance("100 %"));
    guard.guard(*share.slider);
    grid.addWidget(share.slider, row + 1, column);
    grid.addWidget(share.text, row + 1, column + 1);
    const auto field = depth ? &zre::ColorDepthRow::depth : &zre::ColorDepthRow::tolerance;
    connect(share.slider, &ParamSlider::moved, this,
            [this, row, what, field](int step, bool continues) {
                m_rows[static_cast<std::size_t>(row)].*field = static_cast<float>(step) / kSteps;
                changed(row, what, continues);
            });
}

void ColorRowsEditor::load(const zre::ZRParams& params)
{
    m_text = params.colorDepthEntries;
    zre::parseColorDepthRows(m_text, m_rows);
    for (auto row = static_cast<int>(m_rows.size()); row < kRows; ++row)
        m_rows.push_back(unusedRow(row));
    for (int row = 0; row < kRows; ++row)
        show(row);
}

void ColorRowsEditor::show(int row)
{
    const Line& line = m_lines[static_cast<std::size_t>(row)];
    const zre::ColorDepthRow& values = m_rows[static_cast<std::size_t>(row)];
    line.enabled->setChecked(values.enabled);
    line.swatch->setColor(colorOf(values));
    for (const auto& [share, value] :
         {std::pair{line.tolerance, values.tolerance}, std::pair{line.depth, values.depth}}) {
        const QSignalBlocker quiet(share.slider);
        share.slider->setValue(static_cast<int>(std::lround(bound(value) * kSteps)));
        share.text->setText(shareText(bound(value), m_percent));
    }
}

void ColorRowsEditor::follow(const zre::ZRParams& params, const PanelFacts&)
{
    for (const Line& line : m_lines)
        for (QWidget* each :
             {static_cast<QWidget*>(line.enabled), static_cast<QWidget*>(line.swatch),
              static_cast<QWidget*>(line.pick), static_cast<QWidget*>(line.tolerance.slider),
              static_cast<QWidget*>(line.tolerance.text), static_cast<QWidget*>(line.depth.slider),
              static_cast<QWidget*>(line.depth.text)})
            each->setEnabled(params.colorDepthEnabled);
}

void ColorRowsEditor::refreshTexts()
{
    m_percent = appcfg::showValuesAsPercent();
    for (int row = 0; row < kRows; ++row)
        show(row);
}

int ColorRowsEditor::activeRows() const
{
    return static_cast<int>(
        std::count_if(m_rows.begin(), m_rows.end(), [](const auto& row) { return row.enabled; }));
}

void ColorRowsEditor::setColor(int row, const QColor& color)
{
    if (row < 0 || row >= kRows)
        return;
    zre::ColorDepthRow& values = m_rows[static_cast<std::size_t>(row)];
    values.enabled = true;
    values.r = color.redF();
    values.g = color.greenF();
    values.b = color.blueF();
    changed(row, "color", false);
}

void ColorRowsEditor::changed(int row, const QString& what, bool continues)
{
    m_text = zre::colorDepthRowsText(m_rows);
    show(row);
    emit edited(lineName(row) + ' ' + what, continues);
}
