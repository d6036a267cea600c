#pragma once

#include <QTimer>
#include <QVariantAnimation>

#include "engine/params/params.h"

class PreviewView;
class ShellHost;

/// Rings the stars that were found: for a while after what finds them has changed, so that a hand
/// on a slider sees what it does, or for as long as the user wants.
class StarOverlayController
{
public:
    /// How long the rings stay after the last change, and how long they fade.
    static constexpr int kHoldMs = 1500;
    static constexpr int kFadeMs = 350;

    StarOverlayController(ShellHost& host, PreviewView& preview);

    /// Rings all stars until it is switched off.
    void setAlwaysShown(bool shown);
    /// The user changed a parameter: when it bears on what is found, the rings come up.
    void paramsEdited();
    /// A picture stands in the preview: rings its stars, and tells their number when what finds
    /// them has changed since the last one.
    void pictureShown();
    /// Another document: its stars are no answer to a change.
    void documentReplaced();

private:
    bool detectionChanged() const;
    void showForAWhile();
    void fade();

    ShellHost& m_host;
    PreviewView& m_preview;
    zre::ZRParams m_shown; ///< the parameters of the picture in the preview
    bool m_alwaysShown = false;
    bool m_fresh = true; ///< no picture of this document has been shown
    QTimer m_hold;
    QVariantAnimation m_fade;
};
