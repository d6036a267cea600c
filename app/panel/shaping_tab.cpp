#include "app/panel/shaping_tab.h"

#include <array>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>

#include "app/panel/color_rows_editor.h"
#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/section_box.h"

namespace {

using P = zre::ZRParams;

/// What keeps the anchor from working at all.
const char* unlessAnchored(const P& params, const PanelFacts&)
{
    if (!params.resolveDistance)
        return "";
    return params.starSeparationEnabled ? nullptr
                                        : "it works on a picture without stars; switch \"Star "
                                          "separation\" on in the Stars tab.";
}
const char* unlessDepthKnown(const P& params, const PanelFacts& facts)
{
    const char* obstacle = unlessAnchored(params, facts);
    return obstacle || params.manualAnchorOn ? obstacle : "";
}
const char* unlessFloorGiven(const P& params, const PanelFacts& facts)
{
    const char* obstacle = unlessDepthKnown(params, facts);
    return obstacle || !params.floorAuto ? obstacle : "";
}

constexpr std::array kStructureRows{
    PanelRow{CheckRow{"manualAnchorOn", "Use this distance", &P::manualAnchorOn, unlessAnchored}},
    PanelRow{SliderRow{"manualAnchorDepth", "Object depth", 0.01, &P::manualAnchorDepth, "",
                       unlessDepthKnown}},
    PanelRow{
        SliderRow{"objectFit", "Match object distance", 0.01, &P::objectFit, "", unlessDepthKnown}},
    PanelRow{SliderRow{"objectThickness", "Object thickness", 0.01, &P::objectThickness, "",
                       unlessDepthKnown}},
    PanelRow{CheckRow{"floorAuto", "Find the background floor", &P::floorAuto, unlessDepthKnown}},
    PanelRow{SliderRow{"backgroundFloor", "Background floor", 0.01, &P::backgroundFloor, "",
                       unlessFloorGiven}},
};

constexpr Obstacle kColors = unlessOn<&P::colorDepthEnabled>;

constexpr std::array kColorRows{
    PanelRow{SliderRow{"colorDepthWeight", "Weight", 0.01, &P::colorDepthWeight, "", kColors}},
    PanelRow{SliderRow{"colorDepthGamma", "Gamma", 0.01, &P::colorDepthGamma, "", kColors}},
    PanelRow{SliderRow{"colorDepthSmoothness", "Smoothness", 0.1, &P::colorDepthSmoothness, "px",
                       kColors}},
    PanelRow{
        SliderRow{"colorDepthGaussian", "Gaussian", 0.1, &P::colorDepthGaussian, "px", kColors}},
};

constexpr SectionRow kStructure{
    "Structure depth", true, kStructureRows, {"resolveDistance", &P::resolveDistance}};
constexpr SectionRow kColorDepth{
    "Color depth", true, kColorRows, {"colorDepthEnabled", &P::colorDepthEnabled}};

} // namespace

ShapingTab::ShapingTab(QWidget* parent)
    : PanelTab("Shaping", parent)
{
    addSection(kStructure);
    SectionBox& section = addSection(kColorDepth, [this](SectionBox& box) {
        m_colorRows = new ColorRowsEditor(box.grid(), box.wheelGuard(), &box.body());
        box.addBinding(m_colorRows);
    });
    addProfileButtons(section);
}

void ShapingTab::addProfileButtons(SectionBox& section)
{
    auto* line = new QHBoxLayout;
    line->setSpacing(6);
    const auto add = [&](const char* text, const char* name, const char* help) {
        auto* button = new QPushButton(text, &section.body());
        button->setObjectName(name);
        button->setToolTip(help);
        line->addWidget(button);
        return button;
    };
    const QPushButton* load = add("Load profile...", "colorProfile.load",
                                  "Take the colors and sliders above from a file.");
    const QPushButton* save = add("Save profile...", "colorProfile.save",
                                  "Keep the colors and sliders above for another image.");
    section.grid().addLayout(line, section.grid().rowCount(), 0, 1, kColumns);
    connect(load, &QPushButton::clicked, this, &ShapingTab::loadColorProfileRequested);
    connect(save, &QPushButton::clicked, this, &ShapingTab::saveColorProfileRequested);
}
