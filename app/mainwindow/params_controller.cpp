#include "app/mainwindow/params_controller.h"

#include <utility>

#include <QColor>

#include "app/mainwindow/depth_map_controller.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/panel/control_panel.h"
#include "app/panel/depth_histogram.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"

ParamsController::ParamsController(ShellHost& host, std::function<void()> changed)
    : m_host(host)
    , m_changed(std::move(changed))
    , m_history([this](const zre::ZRParams& params) { apply(params); })
{
}

ControlPanel& ParamsController::buildControlPanel(QWidget* parent)
{
    m_panel = new ControlPanel(parent);
    QObject::connect(m_panel, &ControlPanel::paramsEdited, &m_context,
                     [this](const QString& label, int gesture) { onEdited(label, gesture); });
    QObject::connect(m_panel, &ControlPanel::glassesTintChanged, &m_context,
                     [this] { m_changed(); });
    QObject::connect(m_panel, &ControlPanel::chooseColorRequested, &m_context,
                     [this](int row, const QColor& current) { chooseColor(row, current); });
    documentReplaced();
    return *m_panel;
}

void ParamsController::syncParamsFromUi()
{
    m_panel->syncParamsFromUi(m_host.session().params);
}

void ParamsController::syncUiFromParams()
{
    m_panel->syncUiFromParams(m_host.session().params);
    m_panel->setDepthMapName(depthMapName(m_host.session()));
}

int ParamsController::activeColorRows() const
{
    return m_panel->activeColorRows();
}

void ParamsController::syncStarControls()
{
    const RenderPipeline& pipeline = m_host.pipeline();
    const std::vector<zre::Star>* stars = pipeline.activeStars();
    m_panel->updateMaxStarsRange(stars ? static_cast<int>(stars->size()) : 0);
    m_panel->updateStarControlsEnabled(pipeline.starDetector() == "AI", m_host.session().hasPair());
}

void ParamsController::setImageGatedSectionsEnabled(bool enabled)
{
    m_panel->setImageGatedSectionsEnabled(enabled);
}

void ParamsController::refreshValueTexts()
{
    m_panel->refreshValueTexts();
}

void ParamsController::setPickedColor(int row, const QColor& color)
{
    m_panel->setPickedColor(row, color);
}

void ParamsController::documentReplaced()
{
    m_history.clear();
    const zre::Image& picture = m_host.session().source;
    m_panel->refreshFlybyFrameBoxes(picture.width, picture.height);
    syncUiFromParams();
    m_panel->updateMaxStarsRange(0); // none have been looked for
    m_panel->updateStarControlsEnabled(false, m_host.session().hasPair());
    m_panel->setDepthHistogram({});
    setImageGatedSectionsEnabled(m_host.session().hasSource());
}

void ParamsController::showDepth(const zre::Image& depth)
{
    m_panel->setDepthHistogram(depthHistogram(depth, m_host.session().params));
}

void ParamsController::takeStep(const zre::ZRParams& params, const QString& label)
{
    const zre::ZRParams before = std::exchange(m_host.session().params, params);
    m_history.record(before, params, label, ParamHistory::kOwnStep);
    syncUiFromParams();
}

void ParamsController::onEdited(const QString& label, int gesture)
{
    const zre::ZRParams before = m_host.session().params;
    syncParamsFromUi();
    m_history.record(before, m_host.session().params, label, gesture);
    m_changed();
}

void ParamsController::chooseColor(int row, const QColor& current)
{
    const QColor chosen = m_host.prompter().chooseColor("Pick a color", current);
    if (chosen.isValid())
        setPickedColor(row, chosen);
}

void ParamsController::apply(const zre::ZRParams& params)
{
    zre::ZRParams& live = m_host.session().params;
    const bool starless = live.sourceIsStarless; // said of the images, not chosen by the user
    live = params;
    live.sourceIsStarless = starless;
    syncUiFromParams();
    m_changed();
}
