#pragma once

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;

/// Stands above the window while frames are built. It comes up when that takes longer than a
/// moment, and tells when it will take long.
class BuildDialog final : public QDialog
{
    Q_OBJECT

public:
    BuildDialog(const QString& title, QWidget* parent);
    ~BuildDialog() override;

    /// Shows how far the work is and lets the user act; false once the user has cancelled.
    bool advance(int done, int planned);

    /// "Cancel", the escape key or the button of the frame.
    void reject() override { m_cancelled = true; }

private:
    static constexpr int kDelayMs = 250;

    QProgressBar* m_bar;
    QLabel* m_longWait;
    QElapsedTimer m_elapsed;
    bool m_cancelled = false;
};
