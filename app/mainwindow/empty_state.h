#pragma once

#include <QWidget>

class QAction;

/// What stands in the preview before an image is open: how to begin, and buttons that do so.
class EmptyState final : public QWidget
{
public:
    EmptyState(QAction* open, QAction* openScene, QWidget* parent = nullptr);
};
