#pragma once

#include <QString>

struct Session;

/// `ending` behind the name of the source, or of the pair that it was made of, and "_".
QString exportName(const Session& session, const QString& ending);

/// Where a dialog for the file `name` begins: in the folder that was chosen for exports, or beside
/// the source before one was.
QString exportStartPath(const Session& session, const QString& name);

/// The next dialog begins where `path` is.
void rememberExportPath(const QString& path);
