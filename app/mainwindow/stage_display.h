#pragma once

#include <memory>

#include <QElapsedTimer>
#include <QString>

class QLabel;
class QProgressDialog;
class QStatusBar;
class QWidget;

/// The words at the lower edge of the window: what was done, what is being done, and the zoom.
class StageDisplay
{
public:
    /// Puts its labels into `bar`, which owns them. Dialogs come up above `window`.
    StageDisplay(QStatusBar& bar, QWidget& window);
    ~StageDisplay();

    /// Painted at once, so that the words stand while the work they announce holds the thread.
    void show(const QString& text);
    void showZoom(const QString& text);
    /// What lies under the cursor.
    void showReadout(const QString& text);

    /// The stage of a long step: in the progress dialog while one is installed, else in the bar.
    void stage(int percent, const QString& text);
    void installProgress(const QString& title, const QString& text);
    void removeProgress();

    QString text() const;

private:
    QWidget& m_window;
    QLabel* m_text; ///< owned by the status bar, as is `m_zoom`
    QLabel* m_zoom;
    QLabel* m_readout;
    std::unique_ptr<QProgressDialog> m_progress;
    QElapsedTimer m_elapsed; ///< since the dialog was installed
    int m_firstPercent = -1; ///< that it was told
};

/// How long a step still takes, as a further line of its text, when `done` percent of it took
/// `elapsedMs` and `left` percent are left; empty while that cannot be told.
QString timeLeftText(qint64 elapsedMs, int done, int left);
