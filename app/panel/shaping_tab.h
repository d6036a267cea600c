#pragma once

#include "app/panel/panel_tab.h"

class ColorRowsEditor;

/// Depth by hand: the object put where it is known to be, and colours that paint depth.
class ShapingTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit ShapingTab(QWidget* parent);

    ColorRowsEditor& colorRows() { return *m_colorRows; }
    const ColorRowsEditor& colorRows() const { return *m_colorRows; }

signals:
    void loadColorProfileRequested();
    void saveColorProfileRequested();

private:
    void addProfileButtons(SectionBox& section);

    ColorRowsEditor* m_colorRows = nullptr;
};
