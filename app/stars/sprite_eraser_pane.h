#pragma once

#include <functional>
#include <optional>

#include <QWidget>

#include "app/stars/erasure_edits.h"
#include "app/stars/star_picture.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSpinBox;
class StarSpriteView;

/// The sprite of one star, and the eraser with its settings. It edits nothing itself: it says what
/// the list of erasures is to be.
class SpriteEraserPane final : public QWidget
{
    Q_OBJECT

public:
    /// `scene` gives the document as it is.
    SpriteEraserPane(std::function<startable::Scene()> scene, QWidget* parent);

    /// Shows another star; -1 none.
    void showStar(int index);
    /// The document changed: shows the same star, star `index` now, as it is.
    void refresh(int index);

signals:
    /// The user wants `erasures` as the list of the document, by the one step `label`.
    void erasuresEdited(const startable::Erasures& erasures, const QString& label);

private:
    QWidget* buildLookBar();
    QWidget* buildEraserBar();
    QWidget* buildButtons();
    void showPicture(bool same);
    void showErasures();
    void chooseMode(int mode);
    void setRadius(double radius);
    void erase(QPointF place);
    void selectErasure(int index);
    void deleteSelected();
    void clearStar();
    void clearAll();
    int selectedIndex() const;

    std::function<startable::Scene()> m_scene;
    int m_star = -1;
    QRect m_shown; ///< what is seen of the image
    startable::Erasures m_erasures;
    std::optional<zre::StarErasure> m_selected; ///< its mode may be out of date
    startable::Eraser m_eraser;
    StarSpriteView* m_view; ///< children, as all that follow
    QComboBox* m_look;
    QCheckBox* m_smooth;
    QCheckBox* m_brighten;
    QComboBox* m_mode;
    QLabel* m_meaning;
    QDoubleSpinBox* m_radius;
    QSpinBox* m_feather;
    QPushButton* m_delete;
    QPushButton* m_clearStar;
    QPushButton* m_clearAll;
};
