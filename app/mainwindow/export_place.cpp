#include "app/mainwindow/export_place.h"

#include <QDir>
#include <QFileInfo>

#include "app/persist/appcfg.h"
#include "app/session/layer_names.h"
#include "app/session/session.h"

static constexpr const char* kDialog = appcfg::kSettings.exportDialog.key;

QString exportName(const Session& session, const QString& ending)
{
    const QString base = session.hasPair() ? layerBaseOf(session.starlessPath)
                                           : QFileInfo(session.sourcePath).completeBaseName();
    return (base.isEmpty() ? QString("zerrith") : base) + "_" + ending;
}

QString exportStartPath(const Session& session, const QString& name)
{
    QString start = appcfg::dialogStartPath(kDialog, name, appcfg::Preferred::WorkFolder);
    if (start != name)
        return start;
    const QFileInfo source(session.sourcePath);
    return (session.sourcePath.isEmpty() ? QDir::home() : source.absoluteDir()).filePath(name);
}

void rememberExportPath(const QString& path)
{
    appcfg::rememberDialogPath(kDialog, path);
}
