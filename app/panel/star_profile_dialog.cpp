#include "app/panel/star_profile_dialog.h"

#include <array>
#include <utility>

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/panel/row_controls.h"
#include "app/panel/row_limits.h"
#include "app/panel/value_text.h"

namespace {

using P = zre::ZRParams;

constexpr const char* kTitle = "Advanced Star Profiling";
constexpr const char* kHelp = "How the rims of the stars are cut out and drawn.";

constexpr CheckRow kSoft{"starSoftEdges", "Soft edges", &P::starSoftEdges};
constexpr std::array kRows{
    SliderRow{"starEdgeGlow", "Star glow", 0.01, &P::starEdgeGlow, "", unlessOn<&P::starSoftEdges>},
    SliderRow{"starEdgeSoftness", "Star softness", 0.01, &P::starEdgeSoftness, "",
              unlessOn<&P::starSoftEdges>},
};

/// The dialog's part of `from`, into `to`.
void copyProfile(const P& from, P& to)
{
    to.starSoftEdges = from.starSoftEdges;
    to.starEdgeGlow = from.starEdgeGlow;
    to.starEdgeSoftness = from.starEdgeSoftness;
}

class ProfileButton final : public RowBinding
{
public:
    ProfileButton(QGridLayout& grid, Obstacle obstacle, QWidget* parent)
        : RowBinding(parent)
        , m_obstacle(obstacle)
        , m_button(new QPushButton(QString(kTitle) + "...", parent))
    {
        m_button->setObjectName("starProfile");
        m_button->setToolTip(kHelp);
        grid.addWidget(m_button, grid.rowCount(), 0, 1, kColumns);
        connect(m_button, &QPushButton::clicked, this, &ProfileButton::open);
    }

    void load(const P& params) override
    {
        P bound;
        copyProfile(params, bound);
        for (const SliderRow& row : kRows)
            setRowValue(row, boundToRow(row, rowValue(row, params)), bound);
        m_params = bound;
    }
    void store(P& params) const override { copyProfile(m_params, params); }
    void follow(const P& params, const PanelFacts& facts) override
    {
        const char* obstacle = m_obstacle(params, facts);
        m_button->setEnabled(!obstacle);
        m_button->setToolTip(kHelp + obstacleHelp(obstacle));
    }

private:
    void open()
    {
        if (m_dialog)
            return;
        m_dialog = new StarProfileDialog(m_params, m_button->window());
        m_dialog->setAttribute(Qt::WA_DeleteOnClose);
        bool changed = false;
        connect(m_dialog, &StarProfileDialog::edited, this, [this, changed]() mutable {
            copyProfile(m_dialog->params(), m_params);
            emit edited(kTitle, std::exchange(changed, true));
        });
        m_dialog->open();
    }

    Obstacle m_obstacle;
    QPushButton* m_button;
    QPointer<StarProfileDialog> m_dialog; ///< while it is open
    P m_params;
};

} // namespace

StarProfileDialog::StarProfileDialog(const zre::ZRParams& initial, QWidget* parent)
    : QDialog(parent)
    , m_initial(initial)
    , m_params(initial)
{
    setObjectName("starProfileDialog");
    setWindowTitle(kTitle);
    auto* column = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    grid->setColumnStretch(kSliderColumn, 1);
    column->addLayout(grid);
    m_bindings.push_back(addCheckRow(kSoft, kTitle, *grid, this));
    for (const SliderRow& row : kRows)
        m_bindings.push_back(addFloatRow(row, kTitle, *grid, m_guard, this));
    for (RowBinding* binding : m_bindings)
        connect(binding, &RowBinding::edited, this, [this] {
            for (const RowBinding* each : m_bindings)
                each->store(m_params);
            follow();
            emit edited();
        });
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    auto* defaults = buttons->addButton("Defaults", QDialogButtonBox::ResetRole);
    defaults->setToolTip("Go back to the edges that the program came with.");
    column->addSpacing(8);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(defaults, &QPushButton::clicked, this, [this] { showProfile({}); });
    connect(this, &QDialog::rejected, this, [this] { showProfile(m_initial); });
    setMinimumWidth(420);
    for (RowBinding* binding : m_bindings)
        binding->load(m_params);
    follow();
}

void StarProfileDialog::showProfile(const zre::ZRParams& params)
{
    const zre::ZRParams before = m_params;
    copyProfile(params, m_params);
    for (RowBinding* binding : m_bindings)
        binding->load(m_params);
    follow();
    if (!(before == m_params))
        emit edited();
}

void StarProfileDialog::follow()
{
    for (RowBinding* binding : m_bindings)
        binding->follow(m_params, {});
}

RowBinding* addStarProfileButton(QGridLayout& grid, Obstacle obstacle, QWidget* parent)
{
    return new ProfileButton(grid, obstacle, parent);
}
