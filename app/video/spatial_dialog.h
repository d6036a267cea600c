#pragma once

#include <QDialog>
#include <QSize>

#include "app/video/spatial_words.h"

class QButtonGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

/// What the user wants of a spatial file.
struct SpatialChoice
{
    SpatialContent content = SpatialContent::Still;
    SpatialStill still = SpatialStill::Png;
    int width = 0; ///< of the pair; 0 keeps its size

    bool isVideo() const { return content != SpatialContent::Still || still == SpatialStill::Mp4; }
};

/// Asks what a VR180 or Apple spatial file is to hold.
class SpatialDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Sizes of one eye as it is drawn.
    struct Eyes
    {
        QSize still; ///< and of the parallax motion
        QSize flyby; ///< empty without a flight
    };

    SpatialDialog(const SpatialWords& words, const Eyes& eyes, QWidget* parent);

    SpatialChoice choice() const;

private:
    void buildContents();
    void buildStills();
    void buildSizes();
    void follow();
    QSize pairSize() const;

    const SpatialWords& m_words;
    Eyes m_eyes;
    QButtonGroup* m_contents;
    QButtonGroup* m_stills;
    QGroupBox* m_stillBox = nullptr; ///< owned by the dialog, as are all widgets
    QComboBox* m_size = nullptr;
    QLabel* m_outcome = nullptr;
    QPushButton* m_accept = nullptr;
};
