#include "app/export/encoder_words.h"

#include <algorithm>
#include <array>
#include <string_view>

static constexpr qsizetype kKept = 4096;

static void keepEnd(QByteArray& text)
{
    if (text.size() > 2 * kKept)
        text = text.right(kKept);
}

static std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

template <std::size_t Count>
static bool beginsWithAny(std::string_view text,
                          const std::array<std::string_view, Count>& beginnings)
{
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

bool EncoderWords::explains(const QByteArray& line)
{
    using namespace std::string_view_literals;
    static constexpr std::array kReports{
        "ffmpeg version"sv, "Input #"sv, "Output #"sv, "Stream mapping:"sv,    "frame="sv,
        "size="sv,          "video:"sv,  "Press ["sv,  "[Parsed_palettegen"sv,
    };
    static constexpr std::array kStatistics{
        "using "sv, "profile "sv, "264 - core"sv, "frame "sv,    "consecutive "sv,
        "mb "sv,    "8x8 "sv,     "direct "sv,    "coded "sv,    "i16 "sv,
        "i8"sv,     "i4 "sv,      "ref "sv,       "Weighted "sv, "kb/s:"sv,
    };
    const std::string_view text = viewOf(line);
    if (text.empty() || text.front() == ' ' || text.front() == '\t' ||
        beginsWithAny(text, kReports))
        return false;
    if (text.starts_with("[swscaler") && text.find("deprecated pixel format") != text.npos)
        return false; // of a JPEG, which it reads well
    const std::size_t name = text.find("] ");
    return !text.starts_with("[libx264") || name == std::string_view::npos ||
           !beginsWithAny(text.substr(name + 2), kStatistics);
}

void EncoderWords::hear(const QByteArray& bytes)
{
    m_all += bytes;
    keepEnd(m_all);
    for (const char c : bytes) {
        const bool ends = c == '\n' || c == '\r';
        if (!ends && m_line.size() < kKept) {
            m_line += c;
        } else if (ends) {
            if (explains(m_line))
                m_complaints += m_line + '\n';
            m_line.clear();
        }
    }
    keepEnd(m_complaints);
}

QString EncoderWords::last() const
{
    QByteArray text = explains(m_line) ? m_complaints + m_line : m_complaints;
    if (text.isEmpty())
        text = m_all;
    return QString::fromLocal8Bit(text.right(kKept)).trimmed();
}

bool EncoderWords::tellOfLostEnd() const
{
    return m_complaints.contains("Error writing trailer of") ||
           m_complaints.contains("Error closing file");
}
