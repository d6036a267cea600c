#pragma once

#include "app/panel/panel_tab.h"

/// How stars are found, what depth they get and how they are drawn.
class StarsTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit StarsTab(QWidget* parent);
};
