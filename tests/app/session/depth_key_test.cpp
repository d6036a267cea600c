#include <random>

#include "app/persist/param_table.h"
#include "app/session/render_pipeline.h"
#include "tests/support/testkit.h"

namespace {

/// A value of the parameter's own kind and range.
QString randomValue(const zrproj::ParamInfo& info, std::mt19937& random)
{
    if (info.kind == "bool")
        return QString::number(random() % 2);
    if (info.kind == "string") {
        const double shade = 0.001 * (random() % 1000);
        return QString("1,%1,0.5,0.4,0.6,%2").arg(shade).arg(1.0 - shade);
    }
    const double low = info.hasRange ? info.min : 0.0;
    const double high = info.hasRange ? std::min(info.max, low + 20.0) : 5.0;
    const double value = low + (high - low) * (0.001 * (random() % 1001));
    return info.kind == "int" ? QString::number(static_cast<int>(value)) : QString::number(value);
}

void set(Session& session, const QString& name, const QString& value)
{
    QString error;
    ASSERT_TRUE(zrproj::setParam(session.params, session.outputMode, name, value, &error))
        << error.toStdString();
}

/// Every group of the cues at work, so that each parameter has something to change.
Session busySession(std::mt19937& random)
{
    Session session;
    session.installSource("a.png", zrtest::noise(17, 13, 1, random()), {}, {});
    session.installExternalDepth("map.png", zrtest::noise(6, 6, 0, random()));
    for (const zrproj::ParamInfo& info : zrproj::parameterList())
        set(session, info.name, randomValue(info, random));
    for (const char* name : {"luminanceEnabled", "narrowbandEnabled", "colorDepthEnabled",
                             "depthMapEnabled", "narrowbandWeight", "colorDepthWeight"})
        if (random() % 8)
            set(session, name, "1");
    return session;
}

TEST(DepthKey, DiffersWheneverTheDepthDoes)
{
    std::mt19937 random(5);
    int changed = 0;
    for (int round = 0; round < 6; ++round) {
        Session session = busySession(random);
        RenderPipeline pipeline(session);
        const zre::Image depth = *pipeline.cachedDepth();
        const QString key = pipeline.depthCacheKey(true, true);
        for (const zrproj::ParamInfo& info : zrproj::parameterList()) {
            const zre::ZRParams before = session.params;
            set(session, info.name, randomValue(info, random));
            RenderPipeline fresh(session);
            const bool same = zrtest::imagesNear(*fresh.cachedDepth(), depth, 0);
            changed += same ? 0 : 1;
            EXPECT_TRUE(same || fresh.depthCacheKey(true, true) != key) << info.name.toStdString();
            session.params = before;
        }
    }
    EXPECT_GT(changed, 40); // the rounds did reach the cues
}

TEST(DepthKey, FreeTextOfTheRowsCannotPassForOtherFields)
{
    Session withMap;
    withMap.installSource("a.png", zrtest::noise(4, 4, 1, 1), {}, {});
    withMap.params.colorDepthEnabled = true;
    withMap.params.colorDepthWeight = 1.0f;
    withMap.params.colorDepthEntries = "1,1,1,1,1,1";
    Session withText = withMap;
    withMap.installExternalDepth("map.png", zrtest::ramp(4, 4));
    withMap.params.depthMapEnabled = true;
    withMap.params.depthMapBlend = 1.0f;
    withText.generation = withMap.generation;
    withText.params.colorDepthEntries += "|D|1|0|0|1";
    EXPECT_NE(RenderPipeline(withMap).depthCacheKey(true, true),
              RenderPipeline(withText).depthCacheKey(true, true));
}

} // namespace
