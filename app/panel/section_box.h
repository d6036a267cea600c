#pragma once

#include <vector>

#include <QWidget>

#include "app/panel/param_slider.h"
#include "app/panel/row_binding.h"

class QCheckBox;
class QGridLayout;
class QToolButton;
struct SectionRow;

/// A titled group of controls, with a switch in its title where the group has one. It folds, and it
/// can be set back as a whole.
class SectionBox final : public QWidget
{
    Q_OBJECT

public:
    /// A box without controls. `row` must outlive it.
    SectionBox(const SectionRow& row, QWidget* parent);

    /// Adds the controls of the section's rows.
    void addRows();

    /// Width of the widest name of a slider, and the width that all names get.
    int labelWidth() const;
    void setLabelWidth(int width);

    /// Adds a control of its own kind, which the box then owns.
    void addBinding(RowBinding* binding);
    /// Where all controls go, each line below the last.
    QGridLayout& grid() { return *m_grid; }
    WheelGuard& wheelGuard() { return m_guard; }
    QWidget& body() { return *m_body; }

    void load(const zre::ZRParams& params);
    void store(zre::ZRParams& params) const;
    void follow(const zre::ZRParams& params, const PanelFacts& facts);
    void refreshTexts();
    /// Without an image, a section that needs one is off.
    void setImageOpen(bool open);

signals:
    /// The user changed the control that `label` names.
    void edited(const QString& label, bool continues);

private:
    QWidget* buildHeader();
    void fold(bool open);
    void reset();

    const SectionRow& m_row;
    WheelGuard m_guard;
    QWidget* m_body;
    QGridLayout* m_grid;
    QToolButton* m_fold;
    QCheckBox* m_switch = nullptr;
    QToolButton* m_reset;
    std::vector<RowBinding*> m_bindings; ///< owned by the box
};
