#include "app/prefs/models_group.h"

#include <array>
#include <string>
#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include "app/persist/appcfg.h"
#include "app/prefs/learned_models.h"
#include "app/prefs/path_label.h"
#include "engine/inference/ai_depth.h"
#include "engine/inference/starless_ai.h"

/// A model, and how it is chosen.
struct ModelsGroup::ModelRow
{
    const char* name;
    const char* label;
    const char* title; ///< of the file dialog
    const char* toolTip;
    QString (*configured)();
    void (*configure)(const QString& path);
    std::string (*inUse)();
    bool (*available)(std::string* why);
};

const std::array<ModelsGroup::ModelRow, 2> ModelsGroup::kRows{
    ModelRow{"starModel", "Star separation model", "Locate the AI Star Separation model",
             "Choose the model (ONNX) that takes the stars out of a picture.",
             appcfg::aiModelConfigured, appcfg::setAiModelConfigured, zre::StarlessAI::modelPath,
             zre::StarlessAI::available},
    ModelRow{"depthModel", "Landscape depth model", "Locate the Landscape AI Depth model",
             "Choose the model (ONNX) that reads depth out of a picture.",
             appcfg::aiDepthModelConfigured, appcfg::setAiDepthModelConfigured,
             zre::AiDepth::modelPath, zre::AiDepth::available},
};

/// The file in use, or why the model cannot be used.
void ModelsGroup::showModel(const ModelRow& row, QLabel* label)
{
    std::string why;
    if (row.available(&why))
        showPath(label, QFile::decodeName(row.inUse().c_str()), {});
    else
        showPath(label, {}, "Not in use: " + QFile::decodeName(why.c_str()));
}

ModelsGroup::ModelsGroup(ChooseModel chooseModel, QWidget* parent)
    : QGroupBox("Catalogs and AI models", parent)
    , m_chooseModel(std::move(chooseModel))
{
    auto* grid = new QGridLayout(this);
    grid->setColumnStretch(0, 1);
    for (const ModelRow& row : kRows)
        addRow(row, *grid);
    refresh();
}

void ModelsGroup::addRow(const ModelRow& row, QGridLayout& grid)
{
    const QString name = row.name;
    const auto button = [&](const char* text, const char* suffix, const char* toolTip) {
        auto* made = new QPushButton(text);
        made->setObjectName(name + suffix);
        made->setToolTip(toolTip);
        made->setAccessibleName(QString("%1, %2").arg(row.label, text));
        return made;
    };
    QPushButton* load = button("Load...", "Load", row.toolTip);
    QPushButton* standard =
        button("Use default", "Default", "Go back to the model beside the program.");
    QLabel* path = pathLabel();
    path->setObjectName(name + "Path");
    connect(load, &QPushButton::clicked, this, [this, &row] {
        const QFileInfo current(QFile::decodeName(row.inUse().c_str()));
        const QString file = m_chooseModel(row.title, current.absolutePath());
        if (!file.isEmpty())
            configure(row, file);
    });
    connect(standard, &QPushButton::clicked, this, [this, &row] { configure(row, {}); });
    m_refreshRows.push_back([&row, path, standard] {
        showModel(row, path);
        standard->setEnabled(!row.configured().isEmpty());
    });
    const int line = grid.rowCount();
    grid.addWidget(new QLabel(row.label), line, 0);
    grid.addWidget(load, line, 1);
    grid.addWidget(standard, line, 2);
    grid.addWidget(path, line + 1, 0, 1, 3);
}

void ModelsGroup::configure(const ModelRow& row, const QString& file)
{
    row.configure(file);
    useConfiguredModels();
    refresh();
    emit modelsChanged();
}

void ModelsGroup::refresh()
{
    for (const std::function<void()>& refreshRow : m_refreshRows)
        refreshRow();
}
