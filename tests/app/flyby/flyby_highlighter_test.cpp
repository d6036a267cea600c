#include "app/flyby/flyby_highlighter.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <gtest/gtest.h>

#include "app/prefs/theme_manager.h"

static QColor colorAt(const QTextDocument& document, int position)
{
    const QTextBlock block = document.findBlock(position);
    QColor color;
    for (const QTextLayout::FormatRange& range : block.layout()->formats())
        if (position >= block.position() + range.start &&
            position < block.position() + range.start + range.length)
            color = range.format.foreground().color();
    return color;
}

TEST(FlybyHighlighter, ColorsEachKindOfTextInEitherTheme)
{
    using Mode = ThemeManager::Mode;
    const QColor none;
    struct Case
    {
        const char* text;
        int position;
        QColor dark;
        QColor light;
    };
    const QColor word(120, 190, 255), wordOnLight(20, 90, 170);
    const QColor name(200, 160, 90), nameOnLight(140, 85, 10);
    const QColor number(180, 220, 150), numberOnLight(40, 110, 45);
    const QColor comment(120, 130, 120), commentOnLight(105, 115, 105);
    const Case cases[] = {
        {"moveto: 15 2.50 3", 0, word, wordOnLight},
        {"moveto: 15 2.50 3", 5, word, wordOnLight},
        {"moveto: 15 2.50 3", 6, none, none},
        {"moveto: 15 2.50 3", 8, number, numberOnLight},
        {"moveto: 15 2.50 3", 12, number, numberOnLight}, // the point within a number
        {"movetox 1", 0, none, none},
        {"hold 1 # moveto 7", 7, comment, commentOnLight},
        {"hold 1 # moveto 7", 9, comment, commentOnLight},
        {"hold 1 # moveto 7", 16, comment, commentOnLight},
        {"waypoint zoom=2 move=stay", 0, word, wordOnLight},
        {"waypoint zoom=2 move=stay", 9, name, nameOnLight}, // a parameter before a command
        {"waypoint zoom=2 move=stay", 13, none, none},
        {"waypoint zoom=2 move=stay", 14, number, numberOnLight},
        {"waypoint zoom=2 move=stay", 21, word, wordOnLight},
        {"rotate 3 4", 0, none, none},
        {"hold 1\npath_end", 9, word, wordOnLight},
    };
    QTextDocument document;
    const FlybyHighlighter highlighter(&document);
    document.documentLayout(); // changes are told of only to a document that is laid out
    for (const Case& each : cases) {
        ThemeManager::instance().setModeTransient(Mode::Dark);
        document.setPlainText(each.text);
        EXPECT_EQ(colorAt(document, each.position), each.dark) << each.text << each.position;
        ThemeManager::instance().setModeTransient(Mode::Light);
        EXPECT_EQ(colorAt(document, each.position), each.light) << each.text << each.position;
    }
    ThemeManager::instance().setModeTransient(Mode::System);
}
