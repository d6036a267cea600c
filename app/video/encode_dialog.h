#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "app/export/video_encoder.h"

class QLabel;
class QProgressBar;

/// Stands above the program while a video is made: how far it is, the frame just written, and a
/// button to cancel.
class EncodeDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Without `frames` nothing can be told of the way, and the bar only moves.
    EncodeDialog(const QString& title, const QString& text, int frames, QWidget* parent);
    ~EncodeDialog() override;

    /// Shows how far the work is and lets the user act; false once the user has cancelled.
    bool advance(const VideoProgress& progress);

    /// "Cancel", the escape key or the button of the frame.
    void reject() override;

private:
    void showFrame(const QImage& frame);

    QLabel* m_picture;
    QProgressBar* m_bar;
    QLabel* m_progress;
    QLabel* m_longWait;
    QElapsedTimer m_elapsed;
    QElapsedTimer m_sinceShown; ///< invalid before the first frame
    bool m_cancelled = false;
};
