#include "app/panel/param_history.h"

#include <utility>

namespace {

constexpr int kSteps = 500;
constexpr int kCommandId = 1;

class ParamStep final : public QUndoCommand
{
public:
    using Apply = std::function<void(const zre::ZRParams&)>;

    ParamStep(zre::ZRParams before, zre::ZRParams after, int gesture, const Apply& apply,
              const QString& label)
        : QUndoCommand(label)
        , m_before(std::move(before))
        , m_after(std::move(after))
        , m_gesture(gesture)
        , m_apply(apply)
    {
    }

    int id() const override { return kCommandId; }

    bool mergeWith(const QUndoCommand* other) override
    {
        const auto& next = static_cast<const ParamStep&>(*other);
        if (next.m_gesture == ParamHistory::kOwnStep || next.m_gesture != m_gesture)
            return false;
        m_after = next.m_after;
        setObsolete(m_after == m_before);
        return true;
    }

    void undo() override { m_apply(m_before); }

    void redo() override
    {
        if (std::exchange(m_done, false))
            return; // the user's own change, taken into the stack
        m_apply(m_after);
    }

private:
    zre::ZRParams m_before;
    zre::ZRParams m_after;
    int m_gesture;
    const Apply& m_apply; ///< the history's
    bool m_done = true;
};

} // namespace

ParamHistory::ParamHistory(std::function<void(const zre::ZRParams&)> apply)
    : m_apply(std::move(apply))
{
    m_stack.setUndoLimit(kSteps);
}

void ParamHistory::record(const zre::ZRParams& before, const zre::ZRParams& after,
                          const QString& label, int gesture)
{
    if (!(before == after))
        m_stack.push(new ParamStep(before, after, gesture, m_apply, label));
}
