#include <QFile>
#include <QFileInfo>
#include <QSlider>

#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/panel/control_panel.h"
#include "app/persist/param_text.h"
#include "engine/params/param_ranges.h"

/// Drives the slider to both ends and reads the parameter back.
static bool reaches(const ControlPanel& panel, QSlider& slider, const zre::ParamRange& range)
{
    bool reached = true;
    const auto drive = [&](int to, double wanted) {
        slider.setValue(to);
        zre::ZRParams params;
        panel.syncParamsFromUi(params);
        reached = reached && static_cast<float>(range.get(params)) == static_cast<float>(wanted);
    };
    drive(slider.minimum(), range.min);
    drive(slider.maximum(), range.max);
    return reached;
}

int diag::sliders(const QStringList& arguments)
{
    Checks checks;
    ControlPanel panel;
    for (const zre::ParamRange& range : zre::kParamRanges)
        if (auto* slider = panel.findChild<QSlider*>(range.name))
            checks.that(reaches(panel, *slider, range),
                        QString("%1: %2 to %3").arg(range.name).arg(range.min).arg(range.max));
    zre::ZRParams params;
    QFile file(arguments[0]);
    if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
        int view = 0;
        QList<QString> unknown;
        zrproj::paramsFromText(QString::fromUtf8(file.readAll()), params, view, unknown);
    } else {
        checks.note(arguments[0] + " is no file: the defaults are taken");
    }
    panel.syncUiFromParams(params);
    zre::ZRParams back = params;
    panel.syncParamsFromUi(back);
    checks.that(back == params, "the record comes back from the controls");
    return checks.verdict();
}
