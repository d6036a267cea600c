#pragma once

#include <deque>
#include <utility>

#include <QStringList>

#include "app/mainwindow/prompter.h"

/// What the user was asked and told, and the answers in the order in which they are asked for; a
/// question beyond the last answer is cancelled.
struct Script
{
    std::deque<QString> answers;
    QStringList asked; ///< "title|startAt|filter"
    QStringList warned;
    QStringList told;
    std::deque<int> choices; ///< taken by questions with buttons; beyond the last: cancelled
    QStringList questions;   ///< "title|text|button|button..."
    QStringList made; ///< "title|text|path"
    QStringList pictureTitles;
    QImage lastPicture;
};

class ScriptedPrompter final : public Prompter
{
public:
    explicit ScriptedPrompter(Script& script)
        : m_script(script)
    {
    }

    QString openFile(const QString& title, const QString& startAt, const QString& filter) override
    {
        return answer(title, startAt, filter);
    }
    QString saveFile(const QString& title, const QString& startAt, const QString& filter) override
    {
        return answer(title, startAt, filter);
    }
    QString openFolder(const QString& title, const QString& startAt) override
    {
        return answer(title, startAt, {});
    }
    /// The answer is the colour's name.
    QColor chooseColor(const QString& title, const QColor& current) override
    {
        return QColor(answer(title, current.name(), {}));
    }
    /// Any answer switches the warning off.
    bool remind(const QString& title, const QString& text, const QString& details,
                const QString& offer) override
    {
        return !answer(title, text + "|" + details, offer).isEmpty();
    }
    /// As a question of one button; the answer 1 ticks the offer too.
    std::optional<bool> confirm(const QString& title, const QString& text, const QString& accept,
                                const QString& offer) override
    {
        const std::optional<int> answer = choose(title, text, {accept, offer});
        return answer ? std::optional(*answer == 1) : std::nullopt;
    }
    void warn(const QString& title, const QString& text) override
    {
        m_script.warned << title + "|" + text;
    }
    void tell(const QString& title, const QString& richText) override
    {
        m_script.told << title + "|" + richText;
    }
    std::optional<int> choose(const QString& title, const QString& text,
                              const QStringList& choices) override
    {
        m_script.questions << title + "|" + text + "|" + choices.join('|');
        if (m_script.choices.empty())
            return std::nullopt;
        const int next = m_script.choices.front();
        m_script.choices.pop_front();
        return next;
    }
    void showMade(const QString& title, const QString& text, const QString& path) override
    {
        m_script.made << title + "|" + text + "|" + path;
    }
    void showPicture(const QString& title, QImage picture) override
    {
        m_script.pictureTitles << title;
        m_script.lastPicture = std::move(picture);
    }

private:
    QString answer(const QString& title, const QString& startAt, const QString& filter)
    {
        m_script.asked << title + "|" + startAt + "|" + filter;
        if (m_script.answers.empty())
            return {};
        const QString next = m_script.answers.front();
        m_script.answers.pop_front();
        return next;
    }

    Script& m_script;
};
