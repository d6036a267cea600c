#include "app/panel/stars_tab.h"

#include <array>
#include <string>

#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>

#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/section_box.h"
#include "app/panel/star_profile_dialog.h"
#include "engine/inference/starless_ai.h"

namespace {

using P = zre::ZRParams;

constexpr std::array kDepthModels{"Flat", "Brightness", "Scattered"};

constexpr const char* kSeparationOff = "\"Star separation\" is switched off.";

const char* unlessSeparated(const P& params, const PanelFacts&)
{
    return params.starSeparationEnabled ? nullptr : kSeparationOff;
}

/// The light of the stars is measured on the picture itself.
const char* unlessDetected(const P& params, const PanelFacts& facts)
{
    if (!params.starSeparationEnabled)
        return kSeparationOff;
    if (facts.starsLayer)
        return "the stars come from the loaded stars image.";
    return params.aiStarSeparation && facts.aiStars ? "AI Star separation finds the stars."
                                                    : nullptr;
}

const char* unlessOwnImage(const P& params, const PanelFacts& facts)
{
    if (!params.starSeparationEnabled)
        return kSeparationOff;
    return facts.starsLayer ? "the stars come from the loaded stars image." : nullptr;
}

const char* unlessSpread(const P& params, const PanelFacts&)
{
    constexpr int kFlat = 0;
    if (!params.starSeparationEnabled)
        return kSeparationOff;
    return params.starDepthModel == kFlat ? "the depth model \"Flat\" puts all stars on one plane."
                                          : nullptr;
}

QString withoutStarModel()
{
    std::string why;
    if (zre::StarlessAI::available(&why))
        return {};
    return "Not in use: " + QFile::decodeName(why.c_str());
}

int starsFound(const PanelFacts& facts)
{
    return facts.starsFound;
}

constexpr std::array kDetectionRows{
    PanelRow{SliderRow{"thresholdSigma", "Threshold", 0.1, &P::thresholdSigma, "\u03c3",
                       unlessSeparated}},
    PanelRow{SliderRow{"minPeak", "Min brightness", 0.01, &P::minPeak, "", unlessSeparated, nullptr,
                       "Any"}},
    PanelRow{SliderRow{"maxRadius", "Max star radius", 1.0, &P::maxRadius, "px", unlessDetected}},
    PanelRow{SliderRow{"starCompanionWipe", "Remove companions", 0.01, &P::starCompanionWipe, "",
                       unlessSeparated}},
    PanelRow{
        CheckRow{"starClusterSplit", "Split merged stars", &P::starClusterSplit, unlessSeparated}},
    PanelRow{SliderRow{"backgroundScale", "Background scale", 0.1, &P::backgroundScale, "px",
                       unlessDetected}},
    PanelRow{CheckRow{"fillBehindStars", "Fill the picture behind stars", &P::fillBehindStars,
                      unlessDetected}},
};

constexpr std::array kDepthRows{
    PanelRow{CheckRow{"aiStarSeparation", "AI Star separation", &P::aiStarSeparation,
                      unlessOwnImage, withoutStarModel}},
    PanelRow{ComboRow{"starDepthModel", "Depth model", &P::starDepthModel, kDepthModels,
                      unlessSeparated, "Real Star depth"}},
    PanelRow{SliderRow{"starPlane", "Star plane", 0.01, &P::starPlane, "", unlessSeparated}},
    PanelRow{
        SliderRow{"starDepthRange", "Star spread", 0.01, &P::starDepthRange, "", unlessSpread}},
    PanelRow{SliderRow{"starFloatation", "Star floatation", 0.01, &P::starFloatation, "",
                       unlessSeparated}},
    PanelRow{SliderRow{"starPop", "Foreground pop", 0.01, &P::starPop, "", unlessSeparated}},
    PanelRow{SliderRow{"starOcclusion", "Occultation threshold", 0.01, &P::starOcclusion, "",
                       unlessSeparated}},
    PanelRow{SliderRow{"starMaxRendered", "Max stars", 1.0, &P::starMaxRendered, "",
                       unlessSeparated, nullptr, "All", starsFound}},
};

constexpr SectionRow kSeparation{
    "Star separation", true, {}, {"starSeparationEnabled", &P::starSeparationEnabled}};
constexpr SectionRow kDetection{"Star detection", true, kDetectionRows};
constexpr SectionRow kDepth{"Star depth", true, kDepthRows};

/// Says how many stars there are, below the switch.
class StarCount final : public RowBinding
{
public:
    StarCount(QGridLayout& grid, QWidget* parent)
        : RowBinding(parent)
        , m_label(new QLabel(parent))
    {
        m_label->setObjectName("starCount");
        grid.addWidget(m_label, grid.rowCount(), 0, 1, kColumns);
    }

    void load(const P&) override {}
    void store(P&) const override {}
    void follow(const P& params, const PanelFacts& facts) override
    {
        if (!facts.imageOpen)
            m_label->setText("No image is open.");
        else if (!params.starSeparationEnabled)
            m_label->setText("Stars stay part of the picture.");
        else if (facts.starsFound == 1)
            m_label->setText("1 star found");
        else
            m_label->setText(QLocale(QLocale::English).toString(facts.starsFound) + " stars found");
    }

private:
    QLabel* m_label;
};

} // namespace

StarsTab::StarsTab(QWidget* parent)
    : PanelTab("Stars", parent)
{
    SectionBox& separation = addSection(kSeparation);
    separation.addBinding(new StarCount(separation.grid(), &separation.body()));
    addSection(kDetection);
    SectionBox& depth = addSection(kDepth);
    depth.addBinding(addStarProfileButton(depth.grid(), unlessSeparated, &depth.body()));
}
