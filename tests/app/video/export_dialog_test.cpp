#include "app/video/export_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>

#include <gtest/gtest.h>

#include "app/persist/appcfg.h"

namespace {

constexpr int kCustom = 8;

struct Choosing : testing::Test
{
    void SetUp() override { appcfg::setExportChoices({}); }

    static QComboBox& choice(ExportDialog& dialog, const char* name)
    {
        return *dialog.findChild<QComboBox*>(name);
    }
    static QSpinBox& number(ExportDialog& dialog, const char* name)
    {
        return *dialog.findChild<QSpinBox*>(name);
    }
    static QString outcome(ExportDialog& dialog)
    {
        return dialog.findChild<QLabel*>("exportOutcome")->text();
    }
};

TEST_F(Choosing, WhatWasChosenComesBackAndStaysForTheNextTime)
{
    {
        ExportDialog dialog(true, 30, 1.5, nullptr);
        EXPECT_EQ(dialog.windowTitle(), "Export Flyby");
        choice(dialog, "exportStereo").setCurrentIndex(3);
        choice(dialog, "exportSize").setCurrentIndex(3);
        dialog.accept();
        const ExportResults& results = dialog.results();
        EXPECT_TRUE(results.accepted);
        EXPECT_EQ(results.stereo3d, 3);
        EXPECT_EQ(QSize(results.width, results.height), QSize(1920, 1080));
        EXPECT_EQ(results.fps, 30) << "the motion's own";
    }
    {
        ExportDialog dialog(false, 20, 1.5, nullptr);
        EXPECT_EQ(dialog.windowTitle(), "Export Parallax Motion");
        EXPECT_EQ(number(dialog, "exportFps").value(), 20) << "nobody chose 30";
        number(dialog, "exportFps").setValue(60);
        choice(dialog, "exportSize").setCurrentIndex(0);
        dialog.accept();
        EXPECT_EQ(dialog.results().stereo3d, 3) << "from the last time";
        EXPECT_EQ(QSize(dialog.results().width, dialog.results().height), QSize(0, 0));
    }
    ExportDialog dialog(true, 25, 1.5, nullptr);
    EXPECT_EQ(number(dialog, "exportFps").value(), 60);
    dialog.findChild<QPushButton*>("exportOwnRate")->click();
    EXPECT_EQ(number(dialog, "exportFps").value(), 25);
    dialog.reject();
    EXPECT_FALSE(dialog.results().accepted);
    EXPECT_EQ(appcfg::exportChoices().fps, 60) << "a cancel keeps nothing";
}

TEST_F(Choosing, AGifHoldsNoPairs)
{
    ExportDialog dialog(false, 20, 1.5, nullptr);
    const auto enabled = [&](int row) {
        return qobject_cast<QStandardItemModel*>(choice(dialog, "exportStereo").model())
            ->item(row)
            ->isEnabled();
    };
    for (const int row : {2, 3, 4}) {
        choice(dialog, "exportFormat").setCurrentIndex(0);
        choice(dialog, "exportStereo").setCurrentIndex(row);
        choice(dialog, "exportFormat").setCurrentIndex(1);
        EXPECT_EQ(choice(dialog, "exportStereo").currentIndex(), 1);
        EXPECT_FALSE(enabled(row));
    }
    EXPECT_TRUE(enabled(0) && enabled(1));
    EXPECT_TRUE(dialog.findChild<QLabel*>("exportNote")->text().startsWith("GIF is widely"));
    choice(dialog, "exportStereo").setCurrentIndex(0);
    choice(dialog, "exportFormat").setCurrentIndex(0);
    EXPECT_EQ(choice(dialog, "exportStereo").currentIndex(), 0);
    EXPECT_TRUE(enabled(4));
}

TEST_F(Choosing, TheCustomBoxKeepsTheSourcesShapeOrItsOwn)
{
    appcfg::setExportChoices({0, 0, kCustom, 1001, 555, false, 0});
    ExportDialog dialog(false, 20, 1.5, nullptr);
    EXPECT_TRUE(number(dialog, "exportWidth").isEnabled());
    auto* keep = dialog.findChild<QCheckBox*>("exportKeepAspect");
    keep->setChecked(true);
    EXPECT_EQ(number(dialog, "exportHeight").value(), 667);
    number(dialog, "exportHeight").setValue(400);
    EXPECT_EQ(number(dialog, "exportWidth").value(), 600);
    number(dialog, "exportWidth").setValue(16384);
    EXPECT_EQ(number(dialog, "exportHeight").value(), 10923);
    dialog.accept();
    EXPECT_EQ(QSize(dialog.results().width, dialog.results().height), QSize(16384, 10922))
        << "even";

    appcfg::setExportChoices({0, 0, kCustom, 1000, 250, false, 0});
    ExportDialog unknown(false, 20, 0.0, nullptr);
    unknown.findChild<QCheckBox*>("exportKeepAspect")->setChecked(true);
    number(unknown, "exportWidth").setValue(2000);
    EXPECT_EQ(number(unknown, "exportHeight").value(), 500);
    choice(unknown, "exportSize").setCurrentIndex(2);
    EXPECT_FALSE(number(unknown, "exportWidth").isEnabled());
}

TEST_F(Choosing, WhatComesOutIsTold)
{
    ExportDialog dialog(false, 20, 1.5, nullptr);
    dialog.setMotion({9000, 6000}, 30);
    EXPECT_EQ(outcome(dialog), "30 frames, 1.5 s  -  9000 x 6000 pixels");
    choice(dialog, "exportStereo").setCurrentIndex(2);
    auto* accept = dialog.findChild<QPushButton*>();
    for (auto* button : dialog.findChildren<QPushButton*>())
        if (button->text() == "Export...")
            accept = button;
    EXPECT_FALSE(accept->isEnabled()) << "18000 pixels are too wide";
    choice(dialog, "exportSize").setCurrentIndex(3);
    EXPECT_TRUE(accept->isEnabled());
    EXPECT_EQ(outcome(dialog),
              "30 frames, 1.5 s  -  3840 x 1080 pixels, the picture 3240 x 1080 "
              "within black bars. They move the two eyes apart: the original size, or a "
              "smaller custom size that keeps the aspect ratio, has none.");
    choice(dialog, "exportStereo").setCurrentIndex(4);
    EXPECT_TRUE(outcome(dialog).endsWith("black bars")) << "beside both eyes alike";
    choice(dialog, "exportSize").setCurrentIndex(0);
    dialog.setMotion({3, 1}, 1);
    EXPECT_FALSE(accept->isEnabled()) << "half an eye of one row";
    EXPECT_TRUE(outcome(dialog).startsWith("1 frame, "));
}

} // namespace
