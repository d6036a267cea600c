#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/flight/expression.h"
#include "engine/flight/flyby_script.h"
#include "engine/flight/statements.h"

namespace zre::script {

/// What a compile is told beside the text.
struct Setting
{
    int srcW = 0;
    int srcH = 0;
    int fps = 24;
    int defaultPeriod = 12;
    double loopAmp = -1.0;
    int viewW = 0;
    int viewH = 0;
};

/// Runs the statements of a script and collects the cameras of its frames.
class Interpreter
{
public:
    Interpreter(const Setting& setting, const std::vector<ZRFlybySrcRef>& refs,
                std::vector<ZRFlybyError>& errors);

    void run(const Program& program);
    /// Lets the wiggle of a loop run on until it has come full circle.
    void closeLoop();

    std::vector<FlybyCamera>& frames() { return m_frames; }

private:
    enum class Ease
    {
        Linear,
        In,
        Out,
        InOut
    };

    struct CommandRow;
    struct Pose
    {
        double x = 0.0;
        double y = 0.0;
        double zoom = 1.0;
        double warp = 0.0;
        double roll = 0.0;
    };
    struct Wiggle
    {
        double sway = -1e9;
        double amp = -1.0;
        int period = -1;
    };
    struct Move;
    using Values = std::vector<double>;

    static const CommandRow* findCommand(const std::string& name);

    void execute(const Cmd& cmd);
    bool fail(std::string message);
    bool argumentsOf(const Cmd& cmd, const CommandRow& row, Values& values);
    bool evaluate(std::string_view text, double& value);
    bool variable(const std::string& name, double& value) const;

    void moveTo(const Values& v);
    void flyTo(const Values& v);
    void flyIn(const Values& v);
    void zoomTo(const Values& v);
    void rotate(const Values& v);
    void hold(const Values& v);
    void setZoom(const Values& v);
    void addZoom(const Values& v);
    void pan(const Values& v);
    void panLeft(const Values& v);
    void panRight(const Values& v);
    void panTop(const Values& v);
    void panBottom(const Values& v);
    void setRoll(const Values& v);
    void setFps(const Values& v);
    void setVideoFps(const Values& v);
    void setSway(const Values& v);
    void setAmp(const Values& v);
    void setPeriod(const Values& v);

    void reset();
    void setEase(const Cmd& cmd);
    void motion(const Cmd& cmd);
    void update(const Cmd& cmd);
    void checkText(const Cmd& cmd);
    void assign(const Cmd& cmd);

    void step(const Move& move, double frames);
    double eased(double t) const;
    void shift(double dx, double dy);
    void clampPosition();
    double periodInUse() const;
    bool emitFrame();

    Setting m_setting;
    const std::vector<ZRFlybySrcRef>& m_refs;
    std::vector<ZRFlybyError>& m_errors;
    std::vector<FlybyCamera> m_frames;
    ZRExpr::Lookup m_lookup;
    std::unordered_map<std::string, double> m_variables;

    Pose m_pose;
    Wiggle m_requested;
    Wiggle m_active;
    double m_phase = 0.0;
    Ease m_ease = Ease::InOut;
    int m_videoFps = 24;
    int m_setFps = 0;
    ZRFlybySrcRef m_source; ///< of the statement under way
    std::int32_t m_line = 0;
    bool m_ended = false;                                  ///< too long
    std::set<std::pair<std::int32_t, std::string>> m_told; ///< errors, where there are many
};

} // namespace zre::script
