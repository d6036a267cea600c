#include "app/flyby/flyby_examples.h"

#include <QFile>

#include "engine/flight/flyby_script.h"

// Resources of a static library are not found unless something asks for them, outside of any
// namespace.
static void initExamples()
{
    Q_INIT_RESOURCE(examples);
}

QString flybyExampleScript(const FlybyExample& example, QSize image)
{
    initExamples();
    QFile file(example.resource);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const std::string text = file.readAll().toStdString();
    if (image.isEmpty())
        return QString::fromStdString(text);
    return QString::fromStdString(
        zre::scaleFlybyScriptCoords(text, double(image.width()) / kExampleSize.width(),
                                    double(image.height()) / kExampleSize.height()));
}
