#pragma once

#include "app/session/render_pipeline.h"
#include "tools/render/command_line.h"
#include "tools/render/program.h"

namespace zrrender {

/// Brings the options that decide a rendering into `session`: the parameter file, then what
/// --depth-map and --no-stars imply, then each --set in turn, and the files of the learned models.
/// Everything that can be told from the command line is refused here, before the image is opened;
/// `output` must not be one of the files read.
Outcome readParameters(const Invocation& invocation, const QString& output, Session& session,
                       Console& console);

/// Opens the image or the pair, and the depth map where one is named.
Outcome openInputs(const Invocation& invocation, Session& session, Console& console);

/// The size that `option`, of the form WxH, gives; one that does not fit leaves both as they are.
Outcome readSize(const Invocation& invocation, int& width, int& height,
                 Option option = Option::Size);

/// Reads a flyby script: a text of at most a few megabytes in UTF-8.
Outcome readScript(const QString& path, QString& text);

/// What linear data went through before they were rendered; empty when nothing.
QString stretchText(const DecodedFile& file);

/// Tells of the learned models that were wanted and failed.
void warnOfFailures(const RenderPipeline& pipeline, Console& console);

constexpr int kReadPercent = 10;  ///< of the run, when reading is done
constexpr int kWritePercent = 90; ///< when writing begins

/// Maps the percent of a pipeline, which begins at `first`, into the part of the run from
/// `kReadPercent` to `end`.
int percentWithin(int pipelinePercent, int first, int end);

} // namespace zrrender
