#pragma once

#include <vector>

#include <QElapsedTimer>
#include <QPixmap>
#include <QTimer>
#include <QWidget>

class QPainter;

/// The picture that stands while the main window is built: a frameless window, painted on a canvas
/// of 800 by 480 units that fits any size. A double click closes it; files may be dropped on it.
class SplashScreen final : public QWidget
{
    Q_OBJECT

public:
    /// Without `animated` it shows the end of its animation at once.
    explicit SplashScreen(bool animated, QWidget* parent = nullptr);

    void stopAnimating();

signals:
    /// A local file was dropped.
    void fileDropped(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// A mote that flies towards the viewer, in units from the middle of the flight.
    struct Speck
    {
        qreal x;
        qreal y;
        qreal distance; ///< 0 to 1 at the start, 0 is at the viewer
        qreal speed;    ///< distance a second
        qreal size;
    };

    static std::vector<Speck> scatterSpecks();
    qreal elapsedSeconds() const;

    // In units of the canvas; `t` are seconds, `a` and `b` phases from 0 to 1.
    void paintPhoto(QPainter& painter, qreal t, qreal a) const;
    void paintScrimAndVignette(QPainter& painter) const;
    void paintSpecks(QPainter& painter, qreal t, qreal a) const;
    void paintFlightPath(QPainter& painter, qreal t, qreal b) const;
    void paintMark(QPainter& painter, qreal a) const;
    void paintWordmark(QPainter& painter, qreal a) const;
    void paintTagline(QPainter& painter, qreal b) const;
    void paintLoader(QPainter& painter, qreal t) const;
    void paintCorner(QPainter& painter, qreal b) const;

    QPixmap m_photo;
    std::vector<Speck> m_specks = scatterSpecks();
    QElapsedTimer m_clock;
    QTimer m_ticks;
    bool m_still; ///< shows the end of the animation
};
