#pragma once

#include <functional>

#include <QWidget>

class QAction;
class QHBoxLayout;
class QToolButton;

/// What stands in the preview before an image is open: how to begin, buttons that do so, and the
/// images and pairs opened last.
class EmptyState final : public QWidget
{
public:
    struct Actions
    {
        QAction* openImage;
        QAction* openPair;
        QAction* openScene;
    };
    /// Opens an entry of the list of recent files.
    using Open = std::function<void(const QString& entry)>;
    struct OpenRecent
    {
        Open image;
        Open pair;
    };

    EmptyState(const Actions& actions, OpenRecent openRecent, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// A caption above tiles in a row.
    struct Group
    {
        QWidget* box; ///< hidden while there are no tiles
        QHBoxLayout* tiles;
    };

    static Group groupTitled(const QString& title);
    void showRecent();
    void fill(const Group& group, const QStringList& entries, const Open& open);
    QToolButton* tileOf(const QString& entry, const Open& open);

    OpenRecent m_openRecent;
    Group m_images;
    Group m_pairs;
};
