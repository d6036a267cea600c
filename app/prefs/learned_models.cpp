#include "app/prefs/learned_models.h"

#include <QFile>

#include "app/persist/appcfg.h"
#include "engine/inference/ai_depth.h"
#include "engine/inference/starless_ai.h"

void useConfiguredModels()
{
    zre::StarlessAI::setModelPath(QFile::encodeName(appcfg::aiModelConfigured()).toStdString());
    zre::AiDepth::setModelPath(QFile::encodeName(appcfg::aiDepthModelResolved()).toStdString());
}
