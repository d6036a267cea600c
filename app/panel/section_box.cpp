#include "app/panel/section_box.h"

#include <algorithm>

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/panel/panel_rows.h"
#include "app/panel/row_controls.h"
#include "app/panel/value_text.h"

namespace {

/// The switch in the title of a section.
class SwitchBinding final : public RowBinding
{
public:
    SwitchBinding(const SectionSwitch& row, QCheckBox* check, QObject* parent)
        : RowBinding(parent)
        , m_field(row.field)
        , m_check(check)
    {
        connect(m_check, &QCheckBox::clicked, this, [this] { //
            emit edited(m_check->isChecked() ? "on" : "off", false);
        });
    }

    void load(const zre::ZRParams& params) override { m_check->setChecked(params.*m_field); }
    void store(zre::ZRParams& params) const override { params.*m_field = m_check->isChecked(); }

private:
    bool zre::ZRParams::*m_field;
    QCheckBox* m_check;
};

void makeBold(QWidget& title)
{
    QFont font = title.font();
    font.setBold(true);
    title.setFont(font);
    title.setProperty("sectionTitle", true);
}

} // namespace

SectionBox::SectionBox(const SectionRow& row, QWidget* parent)
    : QWidget(parent)
    , m_row(row)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    m_body = new QWidget(this);
    m_grid = new QGridLayout(m_body);
    m_grid->setContentsMargins(10, 4, 4, 8);
    m_grid->setHorizontalSpacing(8);
    m_grid->setVerticalSpacing(5);
    m_grid->setColumnStretch(kSliderColumn, 1);
    layout->addWidget(m_body);
}

QWidget* SectionBox::buildHeader()
{
    auto* header = new QWidget(this);
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    m_reset = new QToolButton(header);
    m_reset->hide(); // until there is something to reset
    m_fold = new QToolButton(header);
    m_fold->setAutoRaise(true);
    m_fold->setArrowType(Qt::DownArrow);
    m_fold->setFocusPolicy(Qt::StrongFocus);
    m_fold->setAccessibleName(QString("Fold %1").arg(m_row.title));
    m_fold->setToolTip("Fold or unfold this section.");
    connect(m_fold, &QToolButton::clicked, this, [this] { fold(m_body->isHidden()); });
    layout->addWidget(m_fold);
    if (m_row.on.name) {
        m_switch = new QCheckBox(m_row.title, header);
        m_switch->setObjectName(m_row.on.name);
        m_switch->setToolTip(rowHelp(CheckRow{m_row.on.name, m_row.title, m_row.on.field}));
        makeBold(*m_switch);
        layout->addWidget(m_switch);
        addBinding(new SwitchBinding(m_row.on, m_switch, this));
    } else {
        auto* title = new QLabel(m_row.title, header);
        makeBold(*title);
        layout->addWidget(title);
    }
    layout->addStretch();
    m_reset->setText("Reset section");
    m_reset->setAutoRaise(true);
    m_reset->setFocusPolicy(Qt::StrongFocus);
    m_reset->setObjectName(QString("reset.") + m_row.title);
    m_reset->setAccessibleName(QString("Reset section %1").arg(m_row.title));
    m_reset->setToolTip("Restore the defaults of this section. Undo brings them back.");
    connect(m_reset, &QToolButton::clicked, this, &SectionBox::reset);
    layout->addWidget(m_reset);
    return header;
}

void SectionBox::addRows()
{
    for (const PanelRow& row : m_row.rows) {
        if (const auto* slider = std::get_if<SliderRow>(&row))
            addBinding(addFloatRow(*slider, m_row.title, *m_grid, m_guard, m_body));
        else if (const auto* check = std::get_if<CheckRow>(&row))
            addBinding(addCheckRow(*check, m_row.title, *m_grid, m_body));
        else
            addBinding(addComboRow(std::get<ComboRow>(row), m_row.title, *m_grid, m_guard, m_body));
    }
}

int SectionBox::labelWidth() const
{
    int widest = 0;
    for (const PanelRow& row : m_row.rows)
        if (const auto* slider = std::get_if<SliderRow>(&row))
            widest = std::max(widest, fontMetrics().horizontalAdvance(slider->label));
    return widest;
}

void SectionBox::setLabelWidth(int width)
{
    m_grid->setColumnMinimumWidth(kLabelColumn, width);
}

void SectionBox::addBinding(RowBinding* binding)
{
    m_bindings.push_back(binding);
    m_reset->show();
    connect(binding, &RowBinding::edited, this, [this](const QString& label, bool continues) {
        emit edited(QString(m_row.title) + ": " + label, continues);
    });
}

void SectionBox::fold(bool open)
{
    m_body->setVisible(open);
    m_fold->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
}

void SectionBox::reset()
{
    load({});
    emit edited(QString("Reset section ") + m_row.title, false);
}

void SectionBox::load(const zre::ZRParams& params)
{
    for (RowBinding* binding : m_bindings)
        binding->load(params);
}

void SectionBox::store(zre::ZRParams& params) const
{
    for (const RowBinding* binding : m_bindings)
        binding->store(params);
}

void SectionBox::follow(const zre::ZRParams& params, const PanelFacts& facts)
{
    for (RowBinding* binding : m_bindings)
        binding->follow(params, facts);
}

void SectionBox::refreshTexts()
{
    for (RowBinding* binding : m_bindings)
        binding->refreshTexts();
}

void SectionBox::setImageOpen(bool open)
{
    setEnabled(open || !m_row.needsImage);
}
