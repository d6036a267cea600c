#include "app/panel/depth_tab.h"

#include <array>
#include <string>

#include <QFile>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/section_box.h"
#include "engine/depth/blend_modes.h"
#include "engine/inference/ai_depth.h"

namespace {

using P = zre::ZRParams;

constexpr int kNameWidth = 280; ///< of the shown name of the depth map, pixels

constexpr std::array kChannels{"Red", "Green", "Blue"};

constexpr std::array kCombine = [] {
    std::array<const char*, zre::kBlendModes.size()> labels{};
    for (std::size_t i = 0; i < labels.size(); ++i)
        labels[i] = zre::kBlendModes[i].label;
    return labels;
}();

constexpr Obstacle kLuminance = unlessOn<&P::luminanceEnabled>;
constexpr Obstacle kNarrowband = unlessOn<&P::narrowbandEnabled>;
constexpr Obstacle kDepthMap = unlessOn<&P::depthMapEnabled>;

QString withoutDepthModel()
{
    std::string why;
    if (zre::AiDepth::available(&why))
        return {};
    return "Not in use: " + QFile::decodeName(why.c_str());
}

constexpr std::array kFilterRows{
    PanelRow{SliderRow{"smoothness", "Smoothness", 0.1, &P::smoothness, "px"}},
    PanelRow{SliderRow{"edgePreservation", "Edge preservation", 0.01, &P::edgePreservation}},
    PanelRow{SliderRow{"depthGamma", "Depth gamma", 0.01, &P::depthGamma}},
};

constexpr std::array kImageRows{
    PanelRow{SliderRow{"luminanceWeight", "Luminance weight", 0.01, &P::luminanceWeight, "",
                       kLuminance}},
    PanelRow{SliderRow{"structureWeight", "Structure weight", 0.01, &P::structureWeight, "",
                       kLuminance}},
    PanelRow{
        SliderRow{"structureScale", "Structure scale", 0.1, &P::structureScale, "px", kLuminance}},
    PanelRow{SliderRow{"aiDepthWeight", "Landscape AI Depth", 0.01, &P::aiDepthWeight, "",
                       kLuminance, withoutDepthModel}},
    PanelRow{CheckRow{"invertDepth", "Invert depth (swap near / far)", &P::invertDepth}},
};

constexpr std::array kNarrowbandRows{
    PanelRow{SliderRow{"narrowbandWeight", "Narrowband weight", 0.01, &P::narrowbandWeight, "",
                       kNarrowband}},
    PanelRow{ComboRow{"nearChannel", "Near channel (foreground)", &P::nearChannel, kChannels,
                      kNarrowband}},
    PanelRow{
        ComboRow{"farChannel", "Far channel (background)", &P::farChannel, kChannels, kNarrowband}},
};

constexpr std::array kDepthMapRows{
    PanelRow{SliderRow{"depthMapBlend", "Blend", 0.01, &P::depthMapBlend, "", kDepthMap}},
    PanelRow{ComboRow{"depthMapMode", "Combine", &P::depthMapMode, kCombine, kDepthMap}},
    PanelRow{
        SliderRow{"paintedSmoothness", "Smoothness", 0.1, &P::paintedSmoothness, "px", kDepthMap}},
    PanelRow{SliderRow{"paintedGamma", "Gamma", 0.01, &P::paintedGamma, "", kDepthMap}},
};

constexpr SectionRow kFilters{"Depth filters", true, kFilterRows};
constexpr SectionRow kImage{
    "Image depth", true, kImageRows, {"luminanceEnabled", &P::luminanceEnabled}};
constexpr SectionRow kNarrow{
    "Narrowband depth", true, kNarrowbandRows, {"narrowbandEnabled", &P::narrowbandEnabled}};
constexpr SectionRow kExternal{
    "External depth map", true, kDepthMapRows, {"depthMapEnabled", &P::depthMapEnabled}};

} // namespace

DepthTab::DepthTab(QWidget* parent)
    : PanelTab("Depth", parent)
{
    addSection(kFilters);
    addSection(kImage);
    addSection(kNarrow);
    addSection(kExternal, [this](SectionBox& section) { addDepthMapLine(section); });
    setDepthMapName({});
}

void DepthTab::addDepthMapLine(SectionBox& section)
{
    m_depthMapName = new QLabel(&section.body());
    m_depthMapName->setObjectName("depthMapName");
    m_depthMapName->setTextInteractionFlags(Qt::NoTextInteraction);
    section.grid().addWidget(m_depthMapName, section.grid().rowCount(), 0, 1, kColumns);
    auto* line = new QHBoxLayout;
    line->setSpacing(6);
    const auto add = [&](const char* text, const char* name, const char* help) {
        auto* button = new QPushButton(text, &section.body());
        button->setObjectName(name);
        button->setToolTip(help);
        button->setAccessibleName(QString("External depth map, ") + text);
        line->addWidget(button);
        return button;
    };
    m_view = add("View", "depthMap.view", "Show the loaded depth map.");
    const QPushButton* load =
        add("Load...", "depthMap.load", "Use a picture as depth map: white is near.");
    m_clear = add("Clear", "depthMap.clear", "Go on without a depth map from outside.");
    section.grid().addLayout(line, section.grid().rowCount(), 0, 1, kColumns);
    connect(m_view, &QPushButton::clicked, this, &DepthTab::viewDepthMapRequested);
    connect(load, &QPushButton::clicked, this, &DepthTab::loadDepthMapRequested);
    connect(m_clear, &QPushButton::clicked, this, &DepthTab::clearDepthMapRequested);
}

void DepthTab::setDepthMapName(const QString& name)
{
    const QString shown = name.isEmpty() ? QString("None") : name;
    m_depthMapName->setText(
        m_depthMapName->fontMetrics().elidedText("Current: " + shown, Qt::ElideMiddle, kNameWidth));
    m_depthMapName->setToolTip(name);
    m_view->setEnabled(!name.isEmpty());
    m_clear->setEnabled(!name.isEmpty());
}
