#pragma once

#include <QStringList>

/// The diagnostics behind the `--selftest-` commands. Each takes the road that the program itself
/// takes, prints its findings, and returns 0 on success; `arguments` are those after the command.
namespace diag {

/// The solution built from values; with an image file as argument, that file's own solution too.
int wcsBuild(const QStringList& arguments);
/// Decodes the image file that the argument names.
int imageLoad(const QStringList& arguments);
/// The parameter table and the text form; with a parameter text file as argument, its values too.
int ranges(const QStringList& arguments);
/// Every slider of the panel against its parameter's range; with a parameter text file as argument,
/// its record through the controls and back.
int sliders(const QStringList& arguments);
/// The depth map keeps its resolution, in pixels and in levels, into a file and back.
int depthResolution(const QStringList& arguments);
/// No speck of an unfilled hole is left in a warped frame.
int warpComb(const QStringList& arguments);
/// The star table of the image file that the argument names, or of the built-in scene when there is
/// none: its rows, its order, its file, and a star erased and brought back.
int starTable(const QStringList& arguments);
/// The lists of recent files: categories, length, and the filing of the old list. Keeps to a store
/// of its own.
int recentFiles(const QStringList& arguments);
/// Every text of the splash has a face with all of its letters.
int fonts(const QStringList& arguments);
/// Paints the end of the splash's animation into the picture file that the argument names.
int splash(const QStringList& arguments);
/// Paints every drawing of the toolbar in both themes into the picture file that the argument
/// names.
int icons(const QStringList& arguments);

} // namespace diag
