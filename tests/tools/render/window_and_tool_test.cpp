#include <sstream>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QSlider>

#include <gtest/gtest.h>

#include "app/export/still_file.h"
#include "app/mainwindow/main_window.h"
#include "app/panel/control_panel.h"
#include "app/persist/param_text.h"
#include "app/session/output_view.h"
#include "engine/demo/demo_scene.h"
#include "tests/app/mainwindow/scripted_prompter.h"
#include "tests/support/testkit.h"
#include "tools/render/program.h"

namespace {

QString scratch(const std::string& name)
{
    return QString::fromStdString((zrtest::scratchFolder() / name).string());
}

/// A picture with stars and a solution, as a file.
QString scene()
{
    zre::DemoSceneOptions options;
    options.width = 160;
    options.height = 110;
    const zre::DemoScene made = zre::makeDemoScene(options);
    StillOptions still;
    still.wcs = &made.wcs;
    QString error;
    EXPECT_TRUE(writeStill(scratch("scene.xisf"), made.picture, still, &error));
    return scratch("scene.xisf");
}

void renderByTool(const QStringList& arguments)
{
    std::ostringstream out;
    std::ostringstream err;
    zrrender::Console console(out, err, false);
    zrrender::StagedOutputs outputs;
    EXPECT_EQ(zrrender::runCommandLine(arguments, console, outputs), 0) << err.str();
}

} // namespace

/// What the user sees and exports is what a script on a server makes of the same parameters.
TEST(WindowAndTool, WriteTheSameBytesForEveryView)
{
    Script script;
    MainWindow window{std::make_unique<ScriptedPrompter>(script)};
    const QString source = scene();
    ASSERT_TRUE(window.loadImageFromPath(source));
    auto& panel = *window.findChild<ControlPanel*>();
    panel.findChild<QSlider*>("parallaxAmount")->setValue(37);
    panel.findChild<QSlider*>("smoothness")->setValue(30);
    panel.findChild<QSlider*>("structureWeight")->setValue(61);
    panel.findChild<QCheckBox*>("swapEyes")->click();
    zre::ZRParams params;
    panel.syncParamsFromUi(params);
    const QByteArray bytes = zrproj::paramsToText(params, 2, {}, {}).toUtf8();
    zrtest::writeBytes(zrtest::scratchFolder() / "params.txt", {bytes.begin(), bytes.end()});

    for (const OutputView& view : kOutputViews)
        for (const char* suffix : {"xisf", "tif"}) {
            const QString byWindow = scratch(std::string("window.") + suffix);
            const QString byTool = scratch(std::string("tool.") + suffix);
            window.findChild<QAction*>(QString("view.") + view.key)->trigger();
            script.answers = {byWindow};
            window.saveImage();
            renderByTool({"still", source, "-o", byTool, "--view", view.key, "--params",
                          scratch("params.txt")});
            EXPECT_TRUE(zrtest::readBytes(byWindow.toStdString()) ==
                        zrtest::readBytes(byTool.toStdString()))
                << view.key << " as " << suffix;
        }
    EXPECT_TRUE(script.warned.isEmpty());
}
