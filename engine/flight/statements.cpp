#include "engine/flight/statements.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/flight/script_text.h"

namespace zre::script {

static std::string_view firstWord(std::string_view line)
{
    const std::size_t begin = line.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos)
        return {};
    line.remove_prefix(begin);
    return line.substr(0, line.find_first_of(" \t\r\n:"));
}

static std::string_view writtenText(std::string_view line, std::string_view word)
{
    line.remove_prefix(static_cast<std::size_t>(word.data() - line.data()) + word.size());
    if (!line.empty() && line.front() == ':')
        line.remove_prefix(1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_last_not_of("\r\n") + 1);
}

static Cmd assignment(std::string_view code)
{
    Cmd cmd;
    cmd.name = '=';
    cmd.isAssign = true;
    const std::size_t cut = code.find('=');
    cmd.varName = trimmed(code.substr(0, cut));
    if (cut != std::string_view::npos)
        cmd.text = trimmed(code.substr(cut + 1));
    return cmd;
}

static std::optional<Cmd> statementOf(std::string_view line)
{
    const std::string_view word = firstWord(line);
    if (const std::string name = lowerCase(word); name == "write" || name == "writeln") {
        Cmd cmd;
        cmd.name = name;
        cmd.text = writtenText(line, word);
        return cmd;
    }
    const std::string_view code = trimmed(line.substr(0, line.find('#')));
    if (!code.empty() && code.front() == '$')
        return assignment(code);
    const std::vector<Token> tokens = tokensOf(code);
    if (tokens.empty())
        return std::nullopt;
    Cmd cmd;
    cmd.name = lowerCase(tokens.front().text);
    for (std::size_t i = 1; i < tokens.size(); ++i)
        cmd.args.push_back(tokens[i].text);
    return cmd;
}

namespace {

/// Folds blocks as statements come by.
class BlockFolder
{
public:
    explicit BlockFolder(std::vector<ZRFlybyError>& errors)
        : m_errors(errors)
    {
    }

    void expect(std::size_t statements) { m_program.statements.reserve(statements); }

    void take(Cmd cmd)
    {
        if (cmd.name == "repeat")
            open(cmd);
        else if (cmd.name == "end")
            close(cmd);
        else
            m_program.statements.push_back(std::move(cmd));
    }

    Program finish()
    {
        if (m_open) {
            m_errors.push_back({m_openLine, "'repeat' without a matching 'end'."});
            m_program.statements.resize(m_begin);
        } else {
            add(1);
        }
        return std::move(m_program);
    }

private:
    void open(const Cmd& cmd)
    {
        if (m_open) {
            m_errors.push_back({cmd.line, "Nested 'repeat' is not supported."});
            return;
        }
        const std::optional<int> count =
            cmd.args.size() == 1 ? wholeTextInteger(cmd.args.front()) : std::nullopt;
        if (!count || *count < 0)
            m_errors.push_back({cmd.line, "'repeat' needs one non-negative integer count."});
        add(1);
        m_open = true;
        m_openLine = cmd.line;
        m_times = count && *count > 0 ? *count : 0;
    }

    void close(const Cmd& cmd)
    {
        if (!m_open) {
            m_errors.push_back({cmd.line, "'end' without a matching 'repeat'."});
            return;
        }
        add(m_times);
        m_open = false;
    }

    void add(int times)
    {
        const std::size_t end = m_program.statements.size();
        if (end > m_begin && times > 0)
            m_program.stretches.push_back({m_begin, end, times});
        m_begin = end;
    }

    std::vector<ZRFlybyError>& m_errors;
    Program m_program;
    std::size_t m_begin = 0; ///< of the stretch under way
    bool m_open = false;
    std::int32_t m_openLine = 0;
    int m_times = 0;
};

} // namespace

Program parseProgram(std::string_view text, std::vector<ZRFlybyError>& errors)
{
    BlockFolder folder(errors);
    std::int32_t line = 0;
    const std::vector<std::string_view> lines = linesOf(text);
    folder.expect(lines.size());
    for (const std::string_view piece : lines) {
        ++line;
        if (std::optional<Cmd> cmd = statementOf(piece)) {
            cmd->line = line;
            folder.take(std::move(*cmd));
        }
    }
    return folder.finish();
}

} // namespace zre::script
