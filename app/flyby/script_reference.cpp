#include "app/flyby/script_reference.h"

#include <array>
#include <span>
#include <string_view>

#include <QTextBrowser>
#include <QVBoxLayout>

#include "app/flyby/script_words.h"

namespace {

using flybyscript::WordKind;

struct Chapter
{
    WordKind kind;
    const char* title;
    const char* text;
};

constexpr std::array kChapters{
    Chapter{WordKind::Camera, "Moves",
            "Each makes its number of frames; the last one is at the target. With a roll in "
            "degrees the view turns on the way."},
    Chapter{WordKind::State, "Jumps", "They make no frame: the next frame shows them."},
    Chapter{WordKind::Wiggle, "Sway and frame rate", ""},
    Chapter{WordKind::Program, "Repeating and notes", ""},
    Chapter{WordKind::Path, "Drawn paths",
            "Lines of name=value pairs with plain numbers. Commands may follow path_end, but none "
            "may stand above path_start."},
};

QString escaped(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())).toHtmlEscaped();
}

QString row(const QString& usage, const QString& explanation)
{
    return QString("<tr><td><code>%1</code></td><td style=\"padding-left:16px\">%2</td></tr>")
        .arg(usage, explanation);
}

QString wordsOf(WordKind kind)
{
    QString rows;
    for (const flybyscript::Word& word : flybyscript::kWords)
        if (word.kind == kind)
            rows += row("<b>" + escaped(word.word) + "</b> " + escaped(word.arguments),
                        escaped(word.explanation));
    return "<table>" + rows + "</table>";
}

QString parametersOf(const char* line, std::span<const std::string_view> names)
{
    QString rows;
    for (const std::string_view name : names)
        rows += row(escaped(name) + "=", escaped(flybyscript::explanationOf(name)));
    return QString("<h4>The parameters of %1</h4><table>%2</table>").arg(line, rows);
}

struct Key
{
    const char* keys;
    const char* what;
};

constexpr std::array kKeys{
    Key{"Ctrl+Space", "offers what may stand at the cursor; Return or Tab takes it over"},
    Key{"Ctrl+/", "makes comments of the lines selected, or code again"},
    Key{"F8", "goes to the next line with an error"},
    Key{"Ctrl+F, F3, Shift+F3", "find, the next, the previous"},
    Key{"Ctrl+Return, F5", "applies the script; applies and plays it"},
    Key{"Ctrl+O, Ctrl+S", "load and save; a file dropped on the text is loaded, too"},
};

QString keys()
{
    QString rows;
    for (const Key& key : kKeys)
        rows += row(escaped(key.keys), escaped(key.what));
    return "<h4>Keys of the editor</h4><table>" + rows + "</table>";
}

QString variables()
{
    QString rows;
    for (const flybyscript::Name& variable : flybyscript::kVariables)
        rows += row("$" + escaped(variable.name), escaped(variable.explanation));
    return "<table>" + rows + "</table>";
}

} // namespace

QString scriptReferenceText()
{
    QString text = "<h3>Flyby scripts</h3>"
                   "<p>One command a line, its arguments parted by blanks, commas or colons. "
                   "# starts a comment. Coordinates are pixels of the picture from its top left "
                   "corner; lengths are frames.</p>";
    for (const Chapter& chapter : kChapters)
        text += QString("<h4>%1</h4><p>%2</p>%3")
                    .arg(chapter.title, chapter.text, wordsOf(chapter.kind));
    text += parametersOf("path_start", zre::script::kStartNames);
    text += parametersOf("waypoint", zre::script::kWaypointNames);
    text += "<h4>Variables and expressions</h4>"
            "<p><code>$name = expression</code> sets a variable of your own. An argument may be an "
            "expression of numbers, variables, + - * / and parentheses, without blanks: "
            "<code>moveto: $centerx+200 $centery 48</code></p>";
    return text + variables() + keys();
}

ScriptReference::ScriptReference(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Flyby Script Reference"));
    setObjectName("scriptReference");
    auto* page = new QTextBrowser(this);
    page->setAccessibleName(windowTitle());
    page->setHtml(scriptReferenceText());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(page);
    resize(620, 640);
}
