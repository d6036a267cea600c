#pragma once

#include <vector>

#include <QDialog>

#include "app/panel/panel_rows.h"
#include "app/panel/param_slider.h"
#include "app/panel/row_binding.h"

class QGridLayout;

/// How the rims of cut-out stars are drawn: soft edges, their glow and softness. What is changed
/// counts at once; cancelling brings back what stood before.
class StarProfileDialog final : public QDialog
{
    Q_OBJECT

public:
    StarProfileDialog(const zre::ZRParams& initial, QWidget* parent);

    /// The record with the dialog's part as it is shown.
    const zre::ZRParams& params() const { return m_params; }

signals:
    /// `params` has changed.
    void edited();

private:
    void showProfile(const zre::ZRParams& params);
    void follow();

    zre::ZRParams m_initial;
    zre::ZRParams m_params;
    WheelGuard m_guard;
    std::vector<RowBinding*> m_bindings; ///< owned by the dialog
};

/// The button that opens the dialog, as a control of its three parameters. All that is changed
/// until the dialog closes is one gesture.
RowBinding* addStarProfileButton(QGridLayout& grid, Obstacle obstacle, QWidget* parent);
