#pragma once

#include <functional>

#include <QPointF>
#include <QWidget>

#include "app/stars/erasure_edits.h"
#include "app/stars/star_filter.h"
#include "app/stars/star_picture.h"
#include "app/stars/star_table_model.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSplitter;
class QStackedWidget;
class QTableView;
class SpriteEraserPane;

/// The stars of the document in a table, with the sprite of the one selected and the eraser.
class StarTableWindow final : public QWidget
{
    Q_OBJECT

public:
    /// `scene` gives the document as it is. A window of its own, beside `parent`.
    StarTableWindow(std::function<startable::Scene()> scene, QWidget* parent);

    /// Shows the document as it is now. The star selected stays selected, found again by its place
    /// where the list was made anew; what is seen of the table stays too.
    void refresh();
    /// What stands in the place of a table without stars.
    void setEmptyText(const QString& text);

    /// The index of the star selected; -1 for none.
    int selectedStar() const;
    /// Selects a star and shows its row; a filter that hides it is lifted. -1 selects none.
    void selectStar(int index);
    const StarTableModel& stars() const { return m_stars; }

signals:
    /// Another star is selected, or none (-1), or the one selected has moved.
    void starSelected(int index);
    void erasuresEdited(const startable::Erasures& erasures, const QString& label);
    void exportRequested();
    void spotlightChanged(bool on);
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* buildFilterBar();
    QWidget* buildTable();
    QWidget* buildFoot();
    void applyFilter();
    void showCount();
    void showKnownColumns(bool solved);
    void onSelectionChanged();

    std::function<startable::Scene()> m_scene;
    StarTableModel m_stars;
    StarFilter m_filter;
    bool m_refreshing = false;
    QPointF m_selectedPlace; ///< of the star selected, image pixels
    QLineEdit* m_conditions; ///< children, as all that follow
    QLabel* m_complaint;
    QComboBox* m_shown;
    QPushButton* m_export;
    QStackedWidget* m_pages;
    QTableView* m_table;
    QLabel* m_empty;
    SpriteEraserPane* m_pane;
    QSplitter* m_splitter;
    QLabel* m_count;
    QCheckBox* m_spotlight;
};
