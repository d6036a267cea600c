#pragma once

#include <QSize>

/// The share of its full size, 0.05 to 1, that a picture of `image` pixels needs for a flyby on the
/// screen. `scalePercent` is the user's choice, 0 for automatic: about twice the pixels that a view
/// of `viewport` device pixels shows; 1 for a view of less than 120 by 120.
double flybyPreviewFraction(int scalePercent, QSize viewport, QSize image);

/// The share of full size at which a frame of this zoom is sharp: `fraction` doubled until it
/// reaches the zoom, at most 1. A fraction that is not strictly between 0 and 1 gives 1.
double bucketScaleFor(double fraction, double zoom);

/// How many of `frames` pictures of `size` pixels fit into `ramPercent` percent of 2 GiB.
int plannedFrames(int frames, QSize size, int ramPercent);

/// Whether a wait of two minutes or more lies ahead, as far as can be told: not before 8 frames and
/// 4 seconds.
bool takesMinutes(int done, int planned, double elapsedSeconds);

/// Milliseconds between the frames of a rate; 50 for one that is not positive.
int frameIntervalMs(int fps);
