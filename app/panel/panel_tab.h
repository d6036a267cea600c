#pragma once

#include <functional>
#include <vector>

#include <QScrollArea>

class QVBoxLayout;
class SectionBox;
struct SectionRow;

/// One page of the panel: sections below each other, which scroll.
class PanelTab : public QScrollArea
{
    Q_OBJECT

public:
    PanelTab(const QString& title, QWidget* parent);

    const QString& title() const { return m_title; }
    const std::vector<SectionBox*>& sections() const { return m_sections; }
    /// Wide enough for the sections and the scroll bar; a page scrolls in height only.
    QSize minimumSizeHint() const override;

signals:
    /// The user changed the control that `label` names; `continues` when within one gesture.
    void edited(const QString& label, bool continues);

protected:
    /// Adds a section at the foot of the page: what `above` adds to it, then its rows.
    SectionBox& addSection(const SectionRow& row,
                           const std::function<void(SectionBox&)>& above = {});

private:
    QString m_title;
    QVBoxLayout* m_column;
    std::vector<SectionBox*> m_sections; ///< owned by the page
};
