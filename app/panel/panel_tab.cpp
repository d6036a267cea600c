#include "app/panel/panel_tab.h"

#include <QScrollBar>
#include <QVBoxLayout>

#include "app/panel/section_box.h"

PanelTab::PanelTab(const QString& title, QWidget* parent)
    : QScrollArea(parent)
    , m_title(title)
{
    auto* page = new QWidget(this);
    m_column = new QVBoxLayout(page);
    m_column->setContentsMargins(4, 6, 4, 6);
    m_column->setSpacing(8);
    m_column->addStretch();
    setWidget(page);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
}

QSize PanelTab::minimumSizeHint() const
{
    const int width = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
    return {width, QScrollArea::minimumSizeHint().height()};
}

SectionBox& PanelTab::addSection(const SectionRow& row,
                                 const std::function<void(SectionBox&)>& above)
{
    auto* section = new SectionBox(row, widget());
    m_column->insertWidget(m_column->count() - 1, section); // above the stretch at the foot
    m_sections.push_back(section);
    connect(section, &SectionBox::edited, this, &PanelTab::edited);
    if (above)
        above(*section);
    section->addRows();
    return *section;
}
