#pragma once

#include <array>

#include <QDialog>

class QPushButton;
class QSpinBox;

/// "Script Coordinates Converter": asks for the size that a flyby script was written for and the
/// one it is to fit.
class SccDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `w` by `h` pixels is what the script is known to have been written for.
    SccDialog(int w, int h, QWidget* parent);

    /// Suggests the size to fit.
    void setNewSize(int w, int h);

    int oldW() const { return value(0); }
    int oldH() const { return value(1); }
    int newW() const { return value(2); }
    int newH() const { return value(3); }

private:
    int value(std::size_t field) const;

    void refreshConvert();

    std::array<QSpinBox*, 4> m_fields{}; ///< children, as the next
    QPushButton* m_convert = nullptr;
};
