#include <algorithm>

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

#include "app/panel/panel_rows.h"
#include "app/panel/reset_label.h"
#include "app/panel/row_controls.h"
#include "app/panel/row_limits.h"
#include "app/panel/value_text.h"
#include "app/persist/appcfg.h"

namespace {

/// Label, slider and text box of one parameter. The exact value is the binding's own: the slider
/// stands at the step nearest to it, so that a loaded value between two steps survives.
class FloatRow final : public RowBinding
{
public:
    FloatRow(const SliderRow& row, const QString& section, QGridLayout& grid, WheelGuard& guard,
             QWidget* parent)
        : RowBinding(parent)
        , m_row(row)
        , m_steps(row.most ? SliderSteps::growing(0)
                           : SliderSteps::even(rowLimits(row).min, rowLimits(row).max, row.scale))
        , m_label(new ResetLabel(row.label, parent))
        , m_slider(new ParamSlider(parent))
        , m_box(new QLineEdit(parent))
    {
        const QString name = section + ", " + row.label;
        m_slider->setObjectName(row.name);
        m_slider->setAccessibleName(name);
        fitSlider();
        guard.guard(*m_slider);
        m_box->setObjectName(row.name + QString(".box"));
        m_box->setAccessibleName(name + ", value");
        m_box->setAlignment(Qt::AlignRight);
        constexpr int kFrame = 14; // margins, and the cursor at the end
        m_box->setFixedWidth(m_box->fontMetrics().horizontalAdvance("00.000 px") + kFrame);
        m_box->installEventFilter(this);
        m_label->setBuddy(m_slider);
        refreshTexts();

        const int line = grid.rowCount();
        grid.addWidget(m_label, line, kLabelColumn);
        grid.addWidget(m_slider, line, kSliderColumn);
        grid.addWidget(m_box, line, kBoxColumn);
        connect(m_slider, &ParamSlider::moved, this, &FloatRow::takeSlider);
        connect(m_box, &QLineEdit::editingFinished, this, &FloatRow::takeBox);
        connect(m_label, &ResetLabel::resetAsked, this, [this] { //
            take(rowLimits(m_row).def);
        });
    }

    void load(const zre::ZRParams& params) override { show(rowValue(m_row, params)); }
    void store(zre::ZRParams& params) const override { setRowValue(m_row, m_value, params); }

    void follow(const zre::ZRParams& params, const PanelFacts& facts) override
    {
        const char* obstacle = m_row.obstacle ? m_row.obstacle(params, facts) : nullptr;
        const bool usable = !obstacle && (!m_row.hindrance || m_row.hindrance().isEmpty());
        for (QWidget* each : {static_cast<QWidget*>(m_label), static_cast<QWidget*>(m_slider),
                              static_cast<QWidget*>(m_box)})
            each->setEnabled(usable);
        if (const QString reason = obstacle; reason != m_obstacle) {
            m_obstacle = reason;
            refreshTexts();
        }
        if (m_row.most && m_most != m_row.most(facts)) {
            m_most = m_row.most(facts);
            m_steps = SliderSteps::growing(m_most);
            fitSlider();
        }
    }

    void refreshTexts() override
    {
        m_percent = appcfg::showValuesAsPercent();
        const QString help = rowHelp(m_row, m_percent) + obstacleHelp(m_obstacle);
        m_label->setToolTip(help);
        m_slider->setToolTip(help);
        m_box->setToolTip(help);
        m_box->setText(valueText(m_row, m_value, m_percent));
    }

    /// A box in which nothing is typed leaves undo and redo to the window.
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::ShortcutOverride || m_box->isModified())
            return RowBinding::eventFilter(watched, event);
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (!key.matches(QKeySequence::Undo) && !key.matches(QKeySequence::Redo))
            return RowBinding::eventFilter(watched, event);
        event->ignore();
        return true;
    }

private:
    void fitSlider()
    {
        const QSignalBlocker quiet(m_slider);
        m_slider->setRange(m_steps.lowest(), m_steps.highest());
        m_slider->setPageStep(std::max(1, (m_steps.highest() - m_steps.lowest()) / 10));
        m_slider->setValue(m_steps.stepOf(m_value));
    }

    void show(double value)
    {
        const QSignalBlocker quiet(m_slider);
        m_value = boundToRow(m_row, value);
        m_slider->setValue(m_steps.stepOf(m_value));
        m_box->setText(valueText(m_row, m_value, m_percent));
    }

    void take(double value)
    {
        const double before = m_value;
        show(value);
        if (m_value != before)
            emit edited(m_row.label, false);
    }

    void takeSlider(int step, bool continues)
    {
        show(m_steps.valueAt(step));
        emit edited(m_row.label, continues);
    }

    void takeBox()
    {
        const QString shown = valueText(m_row, m_value, m_percent);
        if (m_box->text() == shown)
            return;
        const std::optional<double> typed = readValue(m_row, m_box->text(), m_percent);
        if (typed)
            take(*typed);
        else
            m_box->setText(shown);
    }

    const SliderRow& m_row;
    SliderSteps m_steps;
    int m_most = 0;
    ResetLabel* m_label;
    ParamSlider* m_slider;
    QLineEdit* m_box;
    double m_value = 0.0; ///< as the parameter holds it
    QString m_obstacle;
    bool m_percent = true;
};

} // namespace

RowBinding* addFloatRow(const SliderRow& row, const QString& section, QGridLayout& grid,
                        WheelGuard& guard, QWidget* parent)
{
    return new FloatRow(row, section, grid, guard, parent);
}
