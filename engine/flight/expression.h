#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zre {

/// A number from a text: sums, products, signs, brackets and `$variables`, over doubles.
class ZRExpr
{
public:
    /// Gives the value of a variable by its name in lower case; false for an unknown one.
    using Lookup = std::function<bool(const std::string& name, double& value)>;

    /// Brackets and signs deeper than this are refused.
    static constexpr int kDeepest = 500;

    /// `text` lies in a null-terminated buffer and, as `lookup`, outlives the evaluator.
    ZRExpr(std::string_view text, const Lookup& lookup);

    /// The value of the whole text. On an error `ok()` is false and the value 0.
    double evaluate();

    bool ok() const { return m_ok; }
    const std::string& error() const { return m_error; }

private:
    double sum();
    double term();
    double factor();
    double bracket();
    double variable();
    double number();
    double fail(std::string message);
    void skipBlanks();
    bool take(char wanted);

    std::string_view m_rest;
    const Lookup& m_lookup;
    int m_depth = 0;
    bool m_ok = true;
    std::string m_error;
};

} // namespace zre
