#include "app/flyby/scc_dialog.h"

#include <algorithm>

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

SccDialog::SccDialog(int w, int h, QWidget* parent)
    : QDialog(parent)
{
    constexpr int kLargestSide = 100000;
    constexpr int kWidth = 380;
    constexpr std::array kLabels{"Script width:", "Script height:", "New width:", "New height:"};
    setObjectName("sccDialog");
    setWindowTitle("Script Coordinates Converter");
    setMinimumWidth(kWidth);
    auto* column = new QVBoxLayout(this);
    auto* text = new QLabel("Rescale the flyby path's literal x,y coordinates from one image size "
                            "to another. Expressions and $variables are left unchanged.",
                            this);
    text->setWordWrap(true);
    column->addWidget(text);
    auto* form = new QFormLayout;
    column->addLayout(form);
    for (std::size_t i = 0; i < kLabels.size(); ++i) {
        m_fields[i] = new QSpinBox(this);
        m_fields[i]->setRange(0, kLargestSide);
        m_fields[i]->setSuffix(" px");
        m_fields[i]->setValue(i % 2 == 0 ? w : h);
        connect(m_fields[i], &QSpinBox::valueChanged, this, &SccDialog::refreshConvert);
        form->addRow(kLabels[i], m_fields[i]);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_convert = buttons->button(QDialogButtonBox::Ok);
    m_convert->setText("Convert");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    refreshConvert();
}

/// There is nothing to convert between equal sizes, nor from or to none.
void SccDialog::refreshConvert()
{
    const bool sizes = std::all_of(m_fields.begin(), m_fields.end(),
                                   [](const QSpinBox* field) { return field->value() > 0; });
    m_convert->setEnabled(sizes && (oldW() != newW() || oldH() != newH()));
}

void SccDialog::setNewSize(int w, int h)
{
    m_fields[2]->setValue(w);
    m_fields[3]->setValue(h);
}

int SccDialog::value(std::size_t field) const
{
    return m_fields[field]->value();
}
