#pragma once

#include "app/panel/panel_tab.h"

/// The grade of the finished picture.
class PostTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit PostTab(QWidget* parent);
};
