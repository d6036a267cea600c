#pragma once

#include <array>
#include <functional>
#include <vector>

#include <QGroupBox>

class QGridLayout;
class QLabel;

/// The files of the learned models: which is in use, or why none is.
class ModelsGroup final : public QGroupBox
{
    Q_OBJECT

public:
    /// Asks for a file under a title, beginning in a folder; empty when the user cancels.
    using ChooseModel = std::function<QString(const QString& title, const QString& startAt)>;

    explicit ModelsGroup(ChooseModel chooseModel, QWidget* parent = nullptr);

signals:
    /// Another file is configured, stored, and in use from now on.
    void modelsChanged();

private:
    struct ModelRow;
    static const std::array<ModelRow, 2> kRows;

    static void showModel(const ModelRow& row, QLabel* label);
    void addRow(const ModelRow& row, QGridLayout& grid);
    void configure(const ModelRow& row, const QString& file);
    void refresh();

    ChooseModel m_chooseModel;
    std::vector<std::function<void()>> m_refreshRows;
};
