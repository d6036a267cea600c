#include "app/session/ai_depth_cue.h"

#include <string>

#include "engine/inference/ai_depth.h"

bool AiDepthCue::counts(const zre::ZRParams& params)
{
    return params.luminanceEnabled && params.aiDepthWeight > 0.0f && zre::AiDepth::modelPresent();
}

void AiDepthCue::addTo(CacheKey& key, const zre::ZRParams& params)
{
    if (counts(params))
        key.text("A")
            .number(params.aiDepthWeight)
            .text(QString::fromStdString(zre::AiDepth::modelPath()));
}

void AiDepthCue::ensure(const Session& session, const std::function<void(const QString&)>& say)
{
    m_current = nullptr;
    if (!session.hasSource() || !counts(session.params))
        return;
    const zre::Image& source = session.source;
    CacheKey key;
    key.text(QStringLiteral("v%1").arg(session.imageGeneration))
        .text(QStringLiteral("%1x%2").arg(source.width).arg(source.height))
        .text(QString::fromStdString(zre::AiDepth::modelPath()));
    m_current = &m_result.get(key.str(), [&](Result& result) {
        result = {};
        if (say)
            say(QStringLiteral("Running AI depth..."));
        std::string why;
        if (zre::AiDepth::compute(source, source.width, source.height, result.image, &why))
            return;
        result.failure = QStringLiteral("AI depth failed: %1").arg(QString::fromStdString(why));
        if (say)
            say(result.failure);
    });
}

const zre::Image* AiDepthCue::image() const
{
    return m_current && m_current->image.usable() ? &m_current->image : nullptr;
}

QString AiDepthCue::failure() const
{
    return m_current ? m_current->failure : QString();
}

void AiDepthCue::clear()
{
    m_current = nullptr;
    m_result.clear();
}
