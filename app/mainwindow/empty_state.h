#pragma once

#include <functional>

#include <QWidget>

class QAction;
class QHBoxLayout;
class QToolButton;

/// What stands in the preview before an image is open: how to begin, buttons that do so, and the
/// images opened last.
class EmptyState final : public QWidget
{
public:
    EmptyState(QAction* open, QAction* openScene,
               std::function<void(const QString& path)> openRecent, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showRecentImages();
    QToolButton* tileOf(const QString& path);

    std::function<void(const QString&)> m_openRecent;
    QWidget* m_recent;    ///< a child, hidden while there are none
    QHBoxLayout* m_tiles; ///< of `m_recent`
};
