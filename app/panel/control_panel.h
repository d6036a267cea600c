#pragma once

#include <optional>
#include <vector>

#include <QWidget>

#include "app/panel/panel_facts.h"
#include "engine/params/params.h"

class DepthTab;
struct DepthHistogram;
class PanelTab;
class QTabWidget;
class ShapingTab;

/// The controls of the window: a view of the parameter record.
///
/// The panel holds no record of its own: `syncUiFromParams` shows one, `syncParamsFromUi` writes
/// what is shown. What no control shows stays as it is, and what nobody has touched comes back bit
/// for bit as it was loaded.
class ControlPanel final : public QWidget
{
    Q_OBJECT

public:
    explicit ControlPanel(QWidget* parent = nullptr);

    /// Writes every control into `params`.
    void syncParamsFromUi(zre::ZRParams& params) const;
    /// Shows `params` in the controls, numbers bound to their ranges. Emits nothing.
    void syncUiFromParams(const zre::ZRParams& params);

    /// Lets "Max stars" reach from one star to all that were found.
    void updateMaxStarsRange(int starsFound);
    /// Greys out what the source of the stars ignores: `aiStars` when the learned model separated
    /// them, `starsLayer` when a loaded layer holds them.
    void updateStarControlsEnabled(bool aiStars, bool starsLayer);

    /// The flyby frame reaches up to the picture's size; 0 by 0 without a picture.
    void refreshFlybyFrameBoxes(int imageWidth, int imageHeight);

    /// The title of the tab in front.
    QString currentTab() const;
    /// Colour rows that are switched on.
    int activeColorRows() const;
    /// Switches the sections that need an image on or off.
    void setImageGatedSectionsEnabled(bool enabled);
    /// Names the loaded depth map; empty for none.
    void setDepthMapName(const QString& name);
    /// Shows how depth and disparity are spread; nothing: no depth was made yet.
    void setDepthHistogram(const std::optional<DepthHistogram>& histogram);
    /// The answer to `pickColorRequested` and `chooseColorRequested`: gives the row its colour and
    /// switches it on. A row that does not exist is ignored.
    void setPickedColor(int row, const QColor& color);
    /// Shows all values anew, after the setting for percent or raw numbers has changed, and what
    /// this machine can use.
    void refreshValueTexts();

signals:
    /// The user changed the control that `label` names. All changes of one gesture, as a drag of a
    /// slider, carry the same number.
    void paramsEdited(const QString& label, int gesture);
    /// The tint of the glasses changed, which is a setting and no parameter.
    void glassesTintChanged();

    void viewDepthMapRequested();
    void loadDepthMapRequested();
    void clearDepthMapRequested();
    void loadColorProfileRequested();
    void saveColorProfileRequested();
    /// The user wants the row's colour from the next click in the preview.
    void pickColorRequested(int row);
    /// The user wants to choose the row's colour in a dialog.
    void chooseColorRequested(int row, const QColor& current);

private:
    void addTab(PanelTab* tab);
    /// Leaves the first in front for a title that no tab has.
    void selectTab(const QString& title);
    void alignColumns();
    void onEdited(const QString& label, bool continues);
    void updateGates();

    QTabWidget* m_tabs;
    DepthTab* m_depth;
    ShapingTab* m_shaping;
    std::vector<PanelTab*> m_pages; ///< owned by the tabs
    PanelFacts m_facts;
    QString m_lastEdited;
    int m_gesture = 0;
};
