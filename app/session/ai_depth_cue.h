#pragma once

#include <functional>

#include <QString>

#include "app/session/keyed.h"
#include "app/session/session.h"
#include "engine/image/image.h"

/// The depth cue that a learned model reads out of a session's source image.
///
/// Made when it first counts and kept while the image, its size and the model file stay the same;
/// so is a failure, which would only repeat itself.
class AiDepthCue
{
public:
    /// Whether it counts: switched on, weighted above 0, and its model file is there.
    static bool counts(const zre::ZRParams& params);
    /// What it adds to the key of a depth map. The model file belongs to it, because the user can
    /// choose another while a document is open.
    static void addTo(CacheKey& key, const zre::ZRParams& params);

    /// Brings the cue up to date if it counts; `say` (may be empty) gets "Running AI depth..." and
    /// what went wrong.
    void ensure(const Session& session, const std::function<void(const QString&)>& say);
    /// The cue as the last `ensure` left it; null when it does not count or there is none.
    const zre::Image* image() const;
    /// "AI depth failed: " and why, while the cue counts and could not be made; else empty.
    QString failure() const;
    void clear();

private:
    struct Result
    {
        zre::Image image;
        QString failure;
    };
    Keyed<Result> m_result;
    const Result* m_current = nullptr; ///< in `m_result`, while it counts
};
