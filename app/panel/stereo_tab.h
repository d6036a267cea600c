#pragma once

#include "app/panel/panel_tab.h"

/// How depth becomes two eyes, and the two eyes an anaglyph.
class StereoTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit StereoTab(QWidget* parent);

signals:
    /// The tint of the user's glasses changed, which is a setting and no parameter.
    void glassesTintChanged();
};
