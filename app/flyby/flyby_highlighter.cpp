#include "app/flyby/flyby_highlighter.h"

#include <array>

#include <QColor>

#include "app/flyby/script_words.h"
#include "app/prefs/theme_manager.h"

namespace {

struct Shade
{
    int red;
    int green;
    int blue;
};

struct PatternRow
{
    const char* pattern; ///< with a place for the commands, or none
    Shade onDark;
    Shade onLight;
};

constexpr std::array kPatterns{
    PatternRow{"\\b(?:%1)\\b", {120, 190, 255}, {20, 90, 170}},
    PatternRow{"\\b[A-Za-z_]+(?==)", {200, 160, 90}, {140, 85, 10}},
    PatternRow{"\\b\\d+(\\.\\d+)?\\b", {180, 220, 150}, {40, 110, 45}},
    PatternRow{"#[^\n]*", {120, 130, 120}, {105, 115, 105}},
};

} // namespace

FlybyHighlighter::FlybyHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(document)
{
    buildRules();
    connect(&ThemeManager::instance(), &ThemeManager::themeChanged, this, [this] {
        buildRules();
        rehighlight();
    });
}

void FlybyHighlighter::buildRules()
{
    const bool dark = ThemeManager::instance().effectiveDark();
    QStringList words;
    for (const flybyscript::Word& word : flybyscript::kWords)
        if (word.colored)
            words << word.word;
    m_rules.clear();
    for (const PatternRow& row : kPatterns) {
        const Shade& shade = dark ? row.onDark : row.onLight;
        QTextCharFormat format;
        format.setForeground(QColor(shade.red, shade.green, shade.blue));
        const QString pattern = QString(row.pattern).replace("%1", words.join('|'));
        m_rules.push_back({QRegularExpression(pattern), format});
    }
}

void FlybyHighlighter::highlightBlock(const QString& text)
{
    for (const Rule& rule : m_rules) {
        auto matches = rule.pattern.globalMatch(text);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            setFormat(static_cast<int>(match.capturedStart()),
                      static_cast<int>(match.capturedLength()), rule.format);
        }
    }
}
