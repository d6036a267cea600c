#include "app/flyby/scc_dialog.h"

#include <QPushButton>
#include <QSpinBox>

#include <gtest/gtest.h>

TEST(SccDialog, GivesTheSizesAsTheyStandInItsBoxes)
{
    SccDialog dialog(6000, 4000, nullptr);
    EXPECT_EQ(dialog.windowTitle(), "Script Coordinates Converter");
    QPushButton* convert = nullptr;
    for (QPushButton* button : dialog.findChildren<QPushButton*>())
        if (button->text() == "Convert")
            convert = button;
    ASSERT_TRUE(convert);
    const QList<QSpinBox*> boxes = dialog.findChildren<QSpinBox*>();
    ASSERT_EQ(boxes.size(), 4);
    EXPECT_FALSE(convert->isEnabled()) << "nothing changes";
    boxes[2]->setValue(0);
    EXPECT_FALSE(convert->isEnabled());
    dialog.setNewSize(3000, 1999);
    boxes[1]->setValue(3998);
    EXPECT_EQ(dialog.oldW(), 6000);
    EXPECT_EQ(dialog.oldH(), 3998);
    EXPECT_EQ(dialog.newW(), 3000);
    EXPECT_EQ(dialog.newH(), 1999);
    convert->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}
