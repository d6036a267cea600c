#include "app/mainwindow/still_controller.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

#include "app/export/still_file.h"
#include "app/mainwindow/export_place.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/shell_host.h"
#include "app/session/output_view.h"
#include "app/session/session.h"

static constexpr const char* kStillFilters =
    "XISF 32-bit (*.xisf);;TIFF (*.tif);;PNG (*.png);;JPEG (*.jpg);;FITS 32-bit (*.fits)";

static const OutputView& currentView(const Session& session)
{
    const auto row = std::find_if(kOutputViews.begin(), kOutputViews.end(),
                                  [&](const OutputView& v) { return v.id == session.outputMode; });
    return row != kOutputViews.end() ? *row : kOutputViews.front();
}

QString suggestedStillName(const Session& session)
{
    return exportName(session, QString("%1.xisf").arg(currentView(session).key));
}

StillController::StillController(ShellHost& host, Render render, Made made)
    : m_host(host)
    , m_render(std::move(render))
    , m_made(std::move(made))
{
}

void StillController::saveImage()
{
    if (m_host.isBusy())
        return;
    const Session& session = m_host.session();
    if (!session.hasSource()) {
        m_host.showStatus("Nothing to save yet - open an image first.");
        return;
    }
    const QString word = currentView(session).dialogName;
    const QString path = m_host.prompter().saveFile(
        "Export " + word, exportStartPath(session, suggestedStillName(session)), kStillFilters);
    if (path.isEmpty())
        return;
    rememberExportPath(path);
    m_host.stopPlayback("image export");

    zre::Image still;
    m_host.showStatus("Rendering " + word + " at full resolution...");
    if (!m_render(still)) {
        m_host.prompter().warn("Export", "Could not render the " + word);
        return;
    }
    m_host.showStatus("Writing " + word + "...");
    StillOptions options;
    options.wcs = solutionOfStill(session, session.outputMode, still);
    QString error;
    bool written = false;
    m_host.busyRun([&] { written = writeStill(path, still, options, &error); });
    if (!written) {
        m_host.prompter().warn("Export", error);
        return;
    }
    m_made(path);
    m_host.showStatus(QString("Exported %1: %2 (%3 x %4)")
                          .arg(word, QFileInfo(path).fileName())
                          .arg(still.width)
                          .arg(still.height));
}
