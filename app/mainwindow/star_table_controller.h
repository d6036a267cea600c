#pragma once

#include <functional>

#include <QPointF>
#include <QString>

#include "app/stars/erasure_edits.h"
#include "app/stars/star_picture.h"

class PreviewView;
class QWidget;
class ShellHost;
class StarTableWindow;

/// The star table: opens it, keeps it up to date with the document and in step with the preview,
/// and makes the edits of its eraser steps of the document's history.
class StarTableController
{
public:
    /// The table stands beside `window`, whose undo and redo work in it too; its star is ringed in
    /// `preview`. Both must outlive the controller. `renderNow` renders with the table in mind.
    StarTableController(ShellHost& host, QWidget& window, PreviewView& preview,
                        std::function<void()> renderNow);

    /// Opens the table, or brings it to the front; nothing without an image.
    void showStarTable();
    void closeStarTable();
    /// An open table shows the stars with their depths: they have to be there in every view.
    bool isOpen() const;
    /// Another picture was rendered: an open table follows.
    void refreshStarTableWindow();
    /// Another document, or none, is open.
    void documentReplaced();
    /// A click into the preview selects the star there in an open table.
    void clickedInPicture(QPointF inPicture);

private:
    startable::Scene scene() const;
    void buildWindow();
    void ring(int star);
    void takeErasures(const startable::Erasures& erasures, const QString& label);
    void setSpotlight(bool on);
    void exportStars();

    ShellHost& m_host;
    QWidget& m_window;
    PreviewView& m_preview;
    std::function<void()> m_renderNow;
    StarTableWindow* m_table = nullptr; ///< owned by the window; made when first shown
    int m_ringed = -1;
};
