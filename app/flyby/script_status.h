#pragma once

#include <vector>

#include <QString>

/// What a script is judged against.
struct ScriptContext
{
    int width = 0;  ///< of the source, pixels; 0 without one
    int height = 0; ///< likewise
    int fps = 24;

    bool operator==(const ScriptContext&) const = default;
};

/// What the editor says of a script.
struct ScriptStatus
{
    struct Complaint
    {
        int line; ///< of the script, from 1; 0 for what belongs to no line
        QString message;
    };

    QString text;
    std::vector<Complaint> complaints;
};

ScriptStatus scriptStatus(const QString& script, const ScriptContext& context);
