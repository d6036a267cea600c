#pragma once

#include <QDialog>
#include <QSize>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

/// What the user wants of a video.
struct ExportResults
{
    int format = 0;   ///< a row of `kVideoFormats`
    int stereo3d = 0; ///< a row of `kStereoFormats`
    int width = 0;    ///< of the box that the frames are fitted into; 0 keeps their size
    int height = 0;   ///< likewise
    int fps = 24;     ///< 1 to 120
    bool accepted = false;
};

/// Asks how a motion is to be written, beginning with what was chosen last.
class ExportDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `fps` is the motion's own rate; `sourceAspect` the width of the image over its height, 0
    /// when not known.
    ExportDialog(bool flyby, int fps, double sourceAspect, QWidget* parent);

    /// Lets the dialog tell what comes out for `frames` frames of `frame` pixels.
    void setMotion(QSize frame, int frames);

    const ExportResults& results() const { return m_results; }

    void accept() override;

private:
    void buildRows(bool flyby);
    QWidget* buildCustomSize();
    QWidget* buildRate();
    void loadChoices();
    void saveChoices() const;
    ExportResults chosen() const;
    bool isCustom() const;
    void followFormat();
    void followSize();
    void keepAspectToggled(bool on);
    void captureRatio();
    void syncFromWidth();
    void syncFromHeight();
    void tellOutcome();

    int m_ownFps;
    double m_sourceAspect;
    double m_ratio = 1.0; ///< that the custom box keeps
    QSize m_frame;
    int m_frames = 0;
    ExportResults m_results;
    QComboBox* m_format;
    QComboBox* m_stereo;
    QComboBox* m_size;
    QSpinBox* m_width;
    QSpinBox* m_height;
    QCheckBox* m_keepAspect;
    QSpinBox* m_fps;
    QPushButton* m_ownRate;
    QLabel* m_note;
    QLabel* m_outcome;
    QPushButton* m_accept = nullptr; ///< owned by the dialog, as are all widgets
};
