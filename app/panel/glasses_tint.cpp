#include "app/panel/glasses_tint.h"

#include <array>
#include <cmath>
#include <functional>

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include "app/panel/anaglyph_glasses.h"
#include "app/panel/param_slider.h"
#include "app/panel/reset_label.h"
#include "app/panel/row_binding.h"
#include "app/persist/appcfg.h"

/// One setting of the tint, -1 to 1 in hundredths.
struct TintRow
{
    const char* name;
    const char* label;
    const char* help;
    double (*get)();
    void (*set)(double);
};

namespace {

constexpr int kSteps = 100; ///< of a slider on either side of neutral

constexpr std::array kTintRows{
    TintRow{"tint.cyanHue", "Cyan hue",
            "Turns the cyan of the right lens toward green (left) or blue (right).",
            appcfg::anaglyphCyanHue, appcfg::setAnaglyphCyanHue},
    TintRow{"tint.balance", "Red / cyan",
            "Evens out the brightness of the two lenses: more red (left) or more cyan (right).",
            appcfg::anaglyphBalance, appcfg::setAnaglyphBalance},
};

/// Tells the glasses which encoding they show; no parameter is its own.
class ModeFollower final : public RowBinding
{
public:
    ModeFollower(std::function<void(int)> show, QObject* parent)
        : RowBinding(parent)
        , m_show(std::move(show))
    {
    }
    void load(const zre::ZRParams&) override {}
    void store(zre::ZRParams&) const override {}
    void follow(const zre::ZRParams& params, const PanelFacts&) override
    {
        m_show(params.anaglyphMode);
    }

private:
    std::function<void(int)> m_show;
};

} // namespace

GlassesTint::GlassesTint(WheelGuard& guard, QWidget* parent)
    : QWidget(parent)
    , m_glasses(new AnaglyphGlasses(this))
    , m_binding(new ModeFollower([this](int mode) { showMode(mode); }, this))
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 6, 0, 0);
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(5);
    auto* title = new QLabel("Glasses tint - put the glasses on and even out the two lenses", this);
    title->setWordWrap(true);
    grid->addWidget(title, 0, 0, 1, 2);
    grid->addWidget(m_glasses, 1, 0, 1, 2);
    m_glasses->setAccessibleName("Tint of the two lenses");
    m_glasses->setToolTip("The tint in which each eye sees a grey picture.");
    for (const TintRow& row : kTintRows)
        addSlider(row, *grid, guard);
    auto* back = new QPushButton("Reset tint", this);
    back->setObjectName("tint.reset");
    back->setToolTip("Back to the neutral tint. It changes the picture on the screen only, never "
                     "a file.");
    grid->addWidget(back, grid->rowCount(), 0, 1, 2);
    connect(back, &QPushButton::clicked, this, &GlassesTint::reset);
    showTint();
}

void GlassesTint::addSlider(const TintRow& row, QGridLayout& grid, WheelGuard& guard)
{
    const int line = grid.rowCount();
    auto* label = new ResetLabel(row.label, this);
    auto* slider = new ParamSlider(this);
    slider->setObjectName(row.name);
    slider->setAccessibleName(QString("Glasses tint, ") + row.label);
    slider->setRange(-kSteps, kSteps);
    slider->setValue(static_cast<int>(std::lround(row.get() * kSteps)));
    slider->setToolTip(QString("<p>%1</p><p>It changes the picture on the screen only, never a "
                               "file. Double-click the name for neutral.</p>")
                           .arg(row.help));
    label->setToolTip(slider->toolTip());
    label->setBuddy(slider);
    guard.guard(*slider);
    grid.addWidget(label, line, 0);
    grid.addWidget(slider, line, 1);
    connect(label, &ResetLabel::resetAsked, slider, [slider] { slider->setValue(0); });
    connect(slider, &ParamSlider::moved, this, [this, &row](int step) {
        row.set(step / double(kSteps));
        showTint();
        emit tintChanged();
    });
    m_sliders.push_back(slider);
}

void GlassesTint::reset()
{
    for (ParamSlider* slider : m_sliders)
        slider->setValue(0);
}

void GlassesTint::showTint()
{
    double r = 1.0;
    double g = 1.0;
    double b = 1.0;
    appcfg::anaglyphTrim(r, g, b);
    m_glasses->setState(m_mode, r, g, b);
}

void GlassesTint::showMode(int mode)
{
    m_mode = mode;
    showTint();
}
