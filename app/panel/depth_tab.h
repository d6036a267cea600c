#pragma once

#include "app/panel/panel_tab.h"

class QLabel;
class QPushButton;

/// How the depth is read out of the picture, and the depth map from outside.
class DepthTab final : public PanelTab
{
    Q_OBJECT

public:
    explicit DepthTab(QWidget* parent);

    /// Names the loaded depth map; empty for none.
    void setDepthMapName(const QString& name);

signals:
    void viewDepthMapRequested();
    void loadDepthMapRequested();
    void clearDepthMapRequested();

private:
    void addDepthMapLine(SectionBox& section);

    QLabel* m_depthMapName;
    QPushButton* m_view;
    QPushButton* m_clear;
};
