#pragma once

#include <QString>

/// The record of one diagnostic: prints each finding as it comes, and sums them up.
class Checks
{
public:
    void that(bool ok, const QString& what);
    /// A line that is no check.
    void note(const QString& text);
    /// Prints "ALL PASS" or "FAIL"; the exit code. Without a single check nothing has passed.
    int verdict() const;

private:
    int m_count = 0;
    int m_failures = 0;
};
