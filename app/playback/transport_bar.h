#pragma once

#include <QWidget>

class QLabel;
class QSlider;
class QToolButton;

/// The controls of a motion that plays: play and pause, stop, the timeline and where it stands.
class TransportBar final : public QWidget
{
    Q_OBJECT

public:
    explicit TransportBar(QWidget* parent);

    /// Shows that the motion named `what` plays, or that nothing does.
    void setTransportActive(bool active, const QString& what);
    void setPaused(bool paused);
    /// Frame `frame`, counted from 0, of `count` at `fps` frames a second.
    void updateTimeline(int frame, int count, int fps);
    /// Redraws the buttons for the theme.
    void applyIconColors();

signals:
    void playClicked();
    void stopClicked();
    /// The user takes hold of the timeline, or lets go of it.
    void scrubbing(bool held);
    /// The user wants to see this frame.
    void frameWanted(int frame);

private:
    void drawPlayButton();

    QToolButton* m_play;
    QToolButton* m_stop;
    QSlider* m_timeline;
    QLabel* m_frame;
    QLabel* m_rate;
    int m_digits = 0; ///< of the number of frames
    bool m_active = false;
    bool m_paused = false;
};
