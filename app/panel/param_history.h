#pragma once

#include <functional>

#include <QUndoStack>

#include "engine/params/params.h"

/// Undo and redo of everything that changes the parameter record. A step keeps the whole record
/// before and after, so that both come back bit for bit.
class ParamHistory final
{
public:
    /// The gesture of a change that is a step of its own.
    static constexpr int kOwnStep = -1;

    /// `apply` makes a record the current one.
    explicit ParamHistory(std::function<void(const zre::ZRParams&)> apply);

    /// What `label` names has brought the record from `before` to `after`. Changes of one gesture
    /// become one step; a gesture that ends where it began leaves none.
    void record(const zre::ZRParams& before, const zre::ZRParams& after, const QString& label,
                int gesture);
    /// Another document: its past begins now.
    void clear() { m_stack.clear(); }

    QUndoStack& stack() { return m_stack; }

private:
    std::function<void(const zre::ZRParams&)> m_apply;
    QUndoStack m_stack;
};
