#include "engine/flight/expression.h"

#include <utility>

#include "engine/flight/script_text.h"

namespace zre {

namespace {

class Deeper
{
public:
    explicit Deeper(int& depth)
        : m_depth(depth)
    {
        ++m_depth;
    }
    ~Deeper() { --m_depth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;

private:
    int& m_depth;
};

} // namespace

static bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

ZRExpr::ZRExpr(std::string_view text, const Lookup& lookup)
    : m_rest(text)
    , m_lookup(lookup)
{
}

double ZRExpr::evaluate()
{
    const double value = sum();
    skipBlanks();
    if (m_ok && !m_rest.empty())
        return fail("Unexpected characters in expression.");
    return m_ok ? value : 0.0;
}

double ZRExpr::fail(std::string message)
{
    if (m_ok)
        m_error = std::move(message);
    m_ok = false;
    return 0.0;
}

void ZRExpr::skipBlanks()
{
    while (!m_rest.empty() && (m_rest.front() == ' ' || m_rest.front() == '\t'))
        m_rest.remove_prefix(1);
}

bool ZRExpr::take(char wanted)
{
    skipBlanks();
    if (m_rest.empty() || m_rest.front() != wanted)
        return false;
    m_rest.remove_prefix(1);
    return true;
}

double ZRExpr::sum()
{
    double value = term();
    while (m_ok) {
        if (take('+'))
            value += term();
        else if (take('-'))
            value -= term();
        else
            break;
    }
    return value;
}

double ZRExpr::term()
{
    double value = factor();
    while (m_ok) {
        if (take('*')) {
            value *= factor();
        } else if (take('/')) {
            const double divisor = factor();
            if (m_ok && divisor == 0.0)
                return fail("Division by zero.");
            value /= divisor;
        } else {
            break;
        }
    }
    return value;
}

double ZRExpr::factor()
{
    const Deeper deeper(m_depth);
    if (m_depth > kDeepest)
        return fail("Expression is nested too deeply.");
    while (take('+'))
        ;
    if (m_rest.empty())
        return fail("Unexpected end of expression.");
    if (take('-'))
        return -factor();
    if (take('('))
        return bracket();
    return take('$') ? variable() : number();
}

double ZRExpr::bracket()
{
    const double value = sum();
    if (m_ok && !take(')'))
        return fail("Missing ')'.");
    return value;
}

double ZRExpr::variable()
{
    std::size_t length = 0;
    while (length < m_rest.size() && isNameCharacter(m_rest[length]))
        ++length;
    if (length == 0)
        return fail("Expected a variable name after '$'.");
    const std::string name = script::lowerCase(m_rest.substr(0, length));
    m_rest.remove_prefix(length);
    double value = 0.0;
    if (!m_lookup || !m_lookup(name, value))
        return fail("Undefined variable $" + name);
    return value;
}

double ZRExpr::number()
{
    std::size_t length = 0;
    const double value = script::leadingNumber(m_rest, length);
    if (length == 0)
        return fail("Expected a number, variable, or '('.");
    m_rest.remove_prefix(length);
    return value;
}

} // namespace zre
