#pragma once

#include <vector>

#include <QRegularExpression>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

/// Colours the words, parameters, numbers and comments of a flyby script for the theme in effect.
class FlybyHighlighter final : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    explicit FlybyHighlighter(QTextDocument* document);

protected:
    void highlightBlock(const QString& text) override;

private:
    struct Rule
    {
        QRegularExpression pattern;
        QTextCharFormat format;
    };

    void buildRules();

    std::vector<Rule> m_rules; ///< a later one overrides those before it
};
