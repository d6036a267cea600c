#include "app/main/diagnostics/checks.h"

#include <cstdio>

void Checks::that(bool ok, const QString& what)
{
    ++m_count;
    m_failures += ok ? 0 : 1;
    note((ok ? "ok    " : "FAIL  ") + what);
}

void Checks::note(const QString& text)
{
    std::puts(text.toLocal8Bit().constData());
}

int Checks::verdict() const
{
    const bool passed = m_count > 0 && m_failures == 0;
    std::puts(passed ? "ALL PASS" : "FAIL");
    return passed ? 0 : 1;
}
