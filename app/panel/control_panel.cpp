#include "app/panel/control_panel.h"

#include <algorithm>
#include <utility>

#include <QTabWidget>
#include <QVBoxLayout>

#include "app/panel/color_rows_editor.h"
#include "app/panel/depth_histogram.h"
#include "app/panel/depth_tab.h"
#include "app/panel/post_tab.h"
#include "app/panel/section_box.h"
#include "app/panel/shaping_tab.h"
#include "app/panel/stars_tab.h"
#include "app/panel/stereo_tab.h"
#include "app/persist/appcfg.h"

ControlPanel::ControlPanel(QWidget* parent)
    : QWidget(parent)
    , m_tabs(new QTabWidget(this))
    , m_depth(new DepthTab(m_tabs))
    , m_shaping(new ShapingTab(m_tabs))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tabs);
    m_tabs->setDocumentMode(true);
    auto* stereo = new StereoTab(m_tabs);
    for (PanelTab* tab : std::initializer_list<PanelTab*>{new StarsTab(m_tabs), m_depth, m_shaping,
                                                          stereo, new PostTab(m_tabs)})
        addTab(tab);
    connect(stereo, &StereoTab::glassesTintChanged, this, &ControlPanel::glassesTintChanged);
    connect(m_depth, &DepthTab::viewDepthMapRequested, this, &ControlPanel::viewDepthMapRequested);
    connect(m_depth, &DepthTab::loadDepthMapRequested, this, &ControlPanel::loadDepthMapRequested);
    connect(m_depth, &DepthTab::clearDepthMapRequested, this,
            &ControlPanel::clearDepthMapRequested);
    connect(m_shaping, &ShapingTab::loadColorProfileRequested, this,
            &ControlPanel::loadColorProfileRequested);
    connect(m_shaping, &ShapingTab::saveColorProfileRequested, this,
            &ControlPanel::saveColorProfileRequested);
    const ColorRowsEditor& rows = m_shaping->colorRows();
    connect(&rows, &ColorRowsEditor::pickColorRequested, this, &ControlPanel::pickColorRequested);
    connect(&rows, &ColorRowsEditor::chooseColorRequested, this,
            &ControlPanel::chooseColorRequested);
    alignColumns();
    syncUiFromParams({});
    selectTab(appcfg::lastTab());
    connect(m_tabs, &QTabWidget::currentChanged, this,
            [this] { appcfg::setLastTab(currentTab()); });
}

void ControlPanel::selectTab(const QString& title)
{
    for (PanelTab* tab : m_pages)
        if (tab->title() == title)
            m_tabs->setCurrentWidget(tab);
}

void ControlPanel::addTab(PanelTab* tab)
{
    m_pages.push_back(tab);
    m_tabs->addTab(tab, tab->title());
    connect(tab, &PanelTab::edited, this, &ControlPanel::onEdited);
}

void ControlPanel::alignColumns()
{
    int width = 0;
    for (const PanelTab* tab : m_pages)
        for (const SectionBox* section : tab->sections())
            width = std::max(width, section->labelWidth());
    for (const PanelTab* tab : m_pages)
        for (SectionBox* section : tab->sections())
            section->setLabelWidth(width);
}

void ControlPanel::onEdited(const QString& label, bool continues)
{
    if (!continues || label != m_lastEdited)
        ++m_gesture;
    m_lastEdited = label;
    updateGates();
    emit paramsEdited(label, m_gesture);
}

void ControlPanel::syncParamsFromUi(zre::ZRParams& params) const
{
    for (const PanelTab* tab : m_pages)
        for (const SectionBox* section : tab->sections())
            section->store(params);
}

void ControlPanel::syncUiFromParams(const zre::ZRParams& params)
{
    for (const PanelTab* tab : m_pages)
        for (SectionBox* section : tab->sections())
            section->load(params);
    updateGates();
}

void ControlPanel::updateGates()
{
    zre::ZRParams params;
    syncParamsFromUi(params);
    for (const PanelTab* tab : m_pages)
        for (SectionBox* section : tab->sections())
            section->follow(params, m_facts);
}

void ControlPanel::updateMaxStarsRange(int starsFound)
{
    if (std::exchange(m_facts.starsFound, starsFound) != starsFound)
        updateGates();
}

void ControlPanel::updateStarControlsEnabled(bool aiStars, bool starsLayer)
{
    const PanelFacts before = m_facts;
    m_facts.aiStars = aiStars;
    m_facts.starsLayer = starsLayer;
    if (!(before == m_facts))
        updateGates();
}

void ControlPanel::setDepthHistogram(const std::optional<DepthHistogram>& histogram)
{
    findChild<DepthHistogramView*>()->setHistogram(histogram);
}

void ControlPanel::refreshFlybyFrameBoxes(int imageWidth, int imageHeight)
{
    m_facts.imageWidth = imageWidth;
    m_facts.imageHeight = imageHeight;
    updateGates();
}

QString ControlPanel::currentTab() const
{
    return m_tabs->tabText(m_tabs->currentIndex());
}

int ControlPanel::activeColorRows() const
{
    return m_shaping->colorRows().activeRows();
}

void ControlPanel::setImageGatedSectionsEnabled(bool enabled)
{
    m_facts.imageOpen = enabled;
    updateGates();
    for (const PanelTab* tab : m_pages)
        for (SectionBox* section : tab->sections())
            section->setImageOpen(enabled);
}

void ControlPanel::setDepthMapName(const QString& name)
{
    m_depth->setDepthMapName(name);
}

void ControlPanel::setPickedColor(int row, const QColor& color)
{
    m_shaping->colorRows().setColor(row, color);
}

void ControlPanel::refreshValueTexts()
{
    for (const PanelTab* tab : m_pages)
        for (SectionBox* section : tab->sections())
            section->refreshTexts();
    updateGates();
}
