#include "app/flyby/script_completion.h"

#include <gtest/gtest.h>

#include "app/flyby/script_words.h"
#include "engine/flight/flyby_script.h"

using namespace flybyscript;

// "|" stands for the cursor.
TEST(Completion, OffersWhatMayStandAtTheCursor)
{
    struct Case
    {
        const char* line;
        const char* offered; ///< one candidate that has to be there; empty for none at all
        const char* refused;
        int start;
    };
    const Case cases[] = {
        {"|", "moveto", "stay", 0},
        {"  mo|", "moveto", "x=", 2},
        {"mo|veto 1", "motion", "x=", 0},
        {"moveto |", "", "moveto", 7},
        {"moveto 10 $c|", "$centerx", "moveto", 10},
        {"moveto 10,$w+$m|", "$mine", "moveto", 13},
        {"hold 3 # mo|", "", "moveto", 9},
        {"ease: |", "inout", "moveto", 6},
        {"ease in |", "", "in", 8},
        {"path_start |", "ease=", "move=", 11},
        {"path_start x=1 |", "y=", "x=", 15},
        {"PATH_START X=1 |", "y=", "x=", 15},
        {"path_start y=1 ea| x=2", "ease=", "x=", 15},
        {"waypoint move=|", "stay", "linear", 14},
        {"waypoint ease=i|", "inout", "stay", 14},
        {"waypoint x=|", "", "moveto", 11},
        {"waypoint x=$|", "", "$w", 11},
        {"waypoint sway_b|", "sway_before=", "sway=", 9},
    };
    for (const Case& each : cases) {
        QString line(each.line);
        const auto column = static_cast<int>(line.indexOf('|'));
        line.remove('|');
        const Completion completion =
            completionAt(line, column, [] { return QString("$mine = 1"); });
        EXPECT_EQ(completion.start, each.start) << each.line;
        EXPECT_EQ(completion.candidates.isEmpty(), !*each.offered) << each.line;
        EXPECT_TRUE(!*each.offered || completion.candidates.contains(each.offered)) << each.line;
        EXPECT_FALSE(completion.candidates.contains(each.refused)) << each.line;
    }
    EXPECT_EQ(variablesOf("$b = 1\n moveto $c 1 2\n\t$A= 2\n$b=3\n# $d = 1"),
              QStringList({"b", "a"}));
}

TEST(Hint, TellsOfTheCommandOrOfTheParameter)
{
    EXPECT_TRUE(hintAt("  MoveTo 1", 8).startsWith("moveto: x y frames [roll]  -  "));
    EXPECT_TRUE(hintAt("update", 0).startsWith("update  -  "));
    EXPECT_TRUE(hintAt("waypoint zoom=2 x=3", 14).startsWith("zoom=: "));
    EXPECT_TRUE(hintAt("waypoint zoom=2 x=3", 19).startsWith("x=: "));
    EXPECT_TRUE(hintAt("waypoint zoom=2", 3).startsWith("waypoint: "));
    EXPECT_EQ(hintAt("# moveto", 4), QString());
    EXPECT_EQ(hintAt("nothing 3", 4), QString());
}

static bool compiles(const std::string& script)
{
    std::vector<zre::ZRFlybyError> errors;
    return zre::ZRFlybyScript::Validate(script, 640, 480, 24, errors, nullptr, nullptr, 0, 0);
}

/// The command with values for its arguments, the last `without` left out.
static std::string call(const Word& word, int without)
{
    QStringList names = QString(word.arguments).split(' ', Qt::SkipEmptyParts);
    names.resize(names.size() - without);
    QString line = word.word;
    for (const QString& name : names)
        line += name == "curve" ? " inout" : " 2";
    return line.toStdString();
}

// The compiler is the judge of what the table promises.
TEST(ScriptWords, AreWhatTheCompilerTakes)
{
    for (const Word& word : kWords) {
        if (word.kind == WordKind::Path || word.kind == WordKind::Move ||
            word.kind == WordKind::Program)
            continue;
        const auto optional = static_cast<int>(QString(word.arguments).count('['));
        const bool counted = *word.arguments != '\0';
        EXPECT_TRUE(compiles(call(word, 0))) << word.word;
        EXPECT_TRUE(compiles(call(word, optional))) << word.word;
        EXPECT_TRUE(!counted || !compiles(call(word, optional + 1))) << word.word;
        EXPECT_TRUE(!counted || !compiles(call(word, 0) + " 2")) << word.word;
    }
    EXPECT_TRUE(compiles("repeat 2\nwrite: a\nwriteln b\nend"));
    for (const Name& variable : kVariables) {
        const std::string name = QString("$%1").arg(variable.name.data()).toStdString();
        EXPECT_TRUE(compiles("write: " + name)) << name;
        EXPECT_FALSE(compiles(name + " = 1")) << name;
    }
}
