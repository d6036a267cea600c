#pragma once

#include <functional>
#include <vector>

#include <QString>

#include "app/session/ai_depth_cue.h"
#include "app/session/keyed.h"
#include "app/session/session.h"
#include "engine/image/image.h"
#include "engine/params/depth_inputs.h"
#include "engine/stars/star.h"

/// Channel gains of an anaglyph: exactly 1 in files, the trim of the user's glasses in the preview.
struct AnaglyphGains
{
    double r = 1.0;
    double g = 1.0;
    double b = 1.0;
};

/// The only road from a session to depth, eyes and views, for the window and the headless tool
/// alike.
///
/// Three depth levels (cues, anchor, final), each kept under its own text key and rebuilt only when
/// that key changes. Runs on the caller's thread.
class RenderPipeline
{
public:
    /// Percent at which the stages reported by a pipeline begin; they end at 100.
    static constexpr int kFirstPercent = 72;

    /// How often each depth level was built since the pipeline was made.
    struct LevelBuilds
    {
        int cues = 0;
        int anchor = 0;
        int final = 0;
    };

    /// `session` is not owned and must outlive the pipeline.
    explicit RenderPipeline(Session& session);

    /// Receives the stage of long steps: percent of the whole, and a text for the user.
    void setStageReporter(std::function<void(int, const QString&)> reporter);

    /// Drops every image that it keeps.
    void clear();

    /// Whether sprites take the colours of the source image; by default they do. The setting
    /// belongs to the user and not to a document.
    void setTrueColor(bool on);

    /// Brings the working image, which depth and eyes are made from, and the stars up to date; the
    /// depths of stars found anew are those of no map yet.
    void prepareInputs();
    /// `prepareInputs`, then the depth map and by it the depth of every star.
    void prepareStars();
    /// As the last `prepareInputs` left it: the source, or the base that the stars were lifted
    /// from.
    const zre::Image& working() const;
    /// The stars in force; null when there are none. Valid until the next call that renders.
    const std::vector<zre::Star>* activeStars() const;
    std::vector<zre::Star>& stars();
    /// How many of them are drawn: those of a depth that does not hide them.
    int starsShown() const;
    /// What found them: "classical", "AI" or "stars layer"; empty when nothing did.
    QString starDetector() const;
    /// What the panel says of real star depths; empty for every other model.
    QString starDepthText() const;

    /// The key of the cue level (false, false), the anchor level (false, true) or the final level
    /// (true, true): it differs whenever that level's image can differ. A session holds no depth
    /// model so far, so that `includeModel` adds nothing.
    QString depthCacheKey(bool includeModel, bool includeAnchor) const;
    /// The final depth level, up to date; null without a source.
    const zre::Image* cachedDepth();
    /// The final depth level if it stands and is up to date, without any work; else null.
    const zre::Image* standingDepth() const;
    /// Cue and anchor levels only, without the depth model.
    void computeCleanDepth(zre::Image& out);

    /// "AI depth failed: " and why, when the learned cue could not be part of the depth; else
    /// empty.
    QString aiDepthFailure() const { return aiDepth.failure(); }

    /// Renders output view `view` at full size and gives its status text. False, with `out` as it
    /// was, without a source or for a view that does not exist.
    bool renderView(int view, const AnaglyphGains& gains, zre::Image& out, QString* status);
    /// One viewpoint of the parallax motion by the session's parameters. False without a source.
    bool renderWiggle(int frame, zre::Image& out);

    LevelBuilds levelBuilds() const { return builds; }

private:
    void stage(int percent, const QString& text) const;
    zre::Progress eyeProgress() const;
    void ensureAiDepth();
    zre::DepthInputs depthInputs() const;
    void buildCues(zre::Image& out);
    const zre::Image& anchoredLevel();
    void renderDepthView(zre::Image& out, QString* status);
    void renderPair(zre::Image& out, QString* status);
    void renderAnaglyphView(const AnaglyphGains& gains, zre::Image& out, QString* status);

    Session& session;
    std::function<void(int, const QString&)> stageReporter;
    AiDepthCue aiDepth;
    Keyed<zre::Image> cueDepth;
    Keyed<zre::Image> anchoredDepth;
    Keyed<zre::Image> finalDepth;
    Keyed<double> depthMedian; ///< of `finalDepth`
    LevelBuilds builds;
    std::vector<zre::Star> starList;
    bool trueColor = true;
};
