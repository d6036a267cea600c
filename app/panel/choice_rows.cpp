#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>

#include "app/panel/panel_rows.h"
#include "app/panel/reset_label.h"
#include "app/panel/row_controls.h"
#include "app/panel/value_text.h"
#include "engine/params/param_ranges.h"

namespace {

class CheckBinding final : public RowBinding
{
public:
    CheckBinding(const CheckRow& row, const QString& section, QGridLayout& grid, QWidget* parent)
        : RowBinding(parent)
        , m_row(row)
        , m_check(new QCheckBox(row.label, parent))
    {
        m_check->setObjectName(row.name);
        m_check->setAccessibleName(section + ", " + row.label);
        m_check->setToolTip(rowHelp(row));
        grid.addWidget(m_check, grid.rowCount(), 0, 1, kColumns);
        connect(m_check, &QCheckBox::clicked, this, [this] { emit edited(m_row.label, false); });
    }

    void load(const zre::ZRParams& params) override { m_check->setChecked(params.*m_row.field); }
    void store(zre::ZRParams& params) const override { params.*m_row.field = m_check->isChecked(); }
    void follow(const zre::ZRParams& params, const PanelFacts& facts) override
    {
        const char* obstacle = m_row.obstacle ? m_row.obstacle(params, facts) : nullptr;
        m_check->setEnabled(!obstacle && (!m_row.hindrance || m_row.hindrance().isEmpty()));
        m_check->setToolTip(rowHelp(m_row) + obstacleHelp(obstacle));
    }

private:
    const CheckRow& m_row;
    QCheckBox* m_check;
};

class ComboBinding final : public RowBinding
{
public:
    ComboBinding(const ComboRow& row, const QString& section, QGridLayout& grid, WheelGuard& guard,
                 QWidget* parent)
        : RowBinding(parent)
        , m_row(row)
        , m_label(new ResetLabel(row.label, parent))
        , m_combo(new QComboBox(parent))
    {
        for (const char* choice : row.choices)
            m_combo->addItem(choice);
        m_combo->setPlaceholderText(row.beyond);
        m_combo->setObjectName(row.name);
        m_combo->setAccessibleName(section + ", " + row.label);
        m_combo->setToolTip(rowHelp(row));
        m_label->setToolTip(m_combo->toolTip());
        m_label->setBuddy(m_combo);
        guard.guard(*m_combo);
        auto* line = new QHBoxLayout;
        line->setSpacing(8);
        line->addWidget(m_label);
        line->addStretch();
        line->addWidget(m_combo);
        grid.addLayout(line, grid.rowCount(), 0, 1, kColumns);
        connect(m_combo, &QComboBox::activated, this, &ComboBinding::take);
        connect(m_label, &ResetLabel::resetAsked, this, [this] { //
            take(zre::ZRParams{}.*m_row.field);
        });
    }

    void load(const zre::ZRParams& params) override
    {
        m_value = static_cast<int>(zre::clampParam(m_row.name, params.*m_row.field));
        showValue();
    }
    void store(zre::ZRParams& params) const override { params.*m_row.field = m_value; }
    void follow(const zre::ZRParams& params, const PanelFacts& facts) override
    {
        const char* obstacle = m_row.obstacle ? m_row.obstacle(params, facts) : nullptr;
        for (QWidget* each : {static_cast<QWidget*>(m_label), static_cast<QWidget*>(m_combo)}) {
            each->setEnabled(!obstacle);
            each->setToolTip(rowHelp(m_row) + obstacleHelp(obstacle));
        }
    }

private:
    void showValue() { m_combo->setCurrentIndex(m_value < m_combo->count() ? m_value : -1); }

    void take(int index)
    {
        const int before = std::exchange(m_value, index);
        showValue();
        if (before != index)
            emit edited(m_row.label, false);
    }

    const ComboRow& m_row;
    ResetLabel* m_label;
    QComboBox* m_combo;
    int m_value = 0;
};

} // namespace

RowBinding* addCheckRow(const CheckRow& row, const QString& section, QGridLayout& grid,
                        QWidget* parent)
{
    return new CheckBinding(row, section, grid, parent);
}

RowBinding* addComboRow(const ComboRow& row, const QString& section, QGridLayout& grid,
                        WheelGuard& guard, QWidget* parent)
{
    return new ComboBinding(row, section, grid, guard, parent);
}
