#include "app/stars/star_filter.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QRegularExpression>

#include "app/stars/star_table_model.h"

using startable::Column;
using startable::Comparison;
using startable::Condition;
using startable::Shown;

namespace {

struct Sign
{
    const char* text;
    Comparison comparison;
};

constexpr std::array kSigns{
    Sign{"<", Comparison::Less},    Sign{"<=", Comparison::LessOrEqual},
    Sign{">", Comparison::Greater}, Sign{">=", Comparison::GreaterOrEqual},
    Sign{"=", Comparison::Equal},
};

std::optional<Column> columnCalled(const QString& word)
{
    for (const startable::ColumnInfo& each : startable::kColumns)
        if (word == QLatin1String(each.word))
            return each.column;
    return std::nullopt;
}

Comparison comparisonOf(const QString& sign)
{
    for (const Sign& each : kSigns)
        if (sign == QLatin1String(each.text))
            return each.comparison;
    return Comparison::Equal;
}

QString columnWords()
{
    QStringList words;
    for (const startable::ColumnInfo& each : startable::kColumns)
        words << each.word;
    return words.join(", ");
}

bool holds(const Condition& condition, double value)
{
    switch (condition.comparison) {
    case Comparison::Less:
        return value < condition.limit;
    case Comparison::LessOrEqual:
        return value <= condition.limit;
    case Comparison::Greater:
        return value > condition.limit;
    case Comparison::GreaterOrEqual:
        return value >= condition.limit;
    case Comparison::Equal:
        return value == condition.limit;
    }
    return false;
}

} // namespace

std::optional<std::vector<Condition>> startable::readConditions(const QString& text, QString& error)
{
    static const QRegularExpression kCondition(
        R"(\G[\s;]*(?:and\s)?\s*([a-z]+)\s*(<=|>=|<|>|=)\s*([-+]?[0-9.,]+(?:e[-+]?[0-9]+)?)(?=[\s;]|$))");
    std::vector<Condition> conditions;
    const QString wanted = text.trimmed().toLower();
    qsizetype at = 0;
    while (at < wanted.size()) {
        const QRegularExpressionMatch match = kCondition.match(wanted, at);
        const std::optional<Column> column = columnCalled(match.captured(1));
        bool isNumber = false;
        const double limit = match.captured(3).replace(',', '.').toDouble(&isNumber);
        if (!match.hasMatch() || !column || !isNumber) {
            error = QString("Not a condition: \"%1\". Write for example: peak > 0.5 depth < 0.2\n"
                            "Words: %2.")
                        .arg(wanted.mid(at).trimmed(), columnWords());
            return std::nullopt;
        }
        conditions.push_back({*column, comparisonOf(match.captured(2)), limit});
        at = match.capturedEnd();
    }
    return conditions;
}

StarFilter::StarFilter(StarTableModel& stars, QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_stars(stars)
{
    setSourceModel(&stars);
}

void StarFilter::setConditions(std::vector<Condition> conditions)
{
    if (conditions == m_conditions)
        return;
    m_conditions = std::move(conditions);
    invalidateFilter();
}

void StarFilter::setShown(Shown shown)
{
    m_shown = shown;
    invalidateFilter();
}

bool StarFilter::lessThan(const QModelIndex& left, const QModelIndex& right) const
{
    const auto column = static_cast<Column>(left.column());
    const double a = m_stars.value(left.row(), column);
    const double b = m_stars.value(right.row(), column);
    if (std::isnan(a) != std::isnan(b)) // a descending order asks the other way round
        return sortOrder() == Qt::AscendingOrder ? std::isnan(b) : std::isnan(a);
    return a < b;
}

bool StarFilter::filterAcceptsRow(int row, const QModelIndex&) const
{
    const startable::Row& star = m_stars.row(row);
    const bool drawn = !(star.depth < 0.0f);
    if ((m_shown == Shown::Drawn && !drawn) || (m_shown == Shown::Hidden && drawn) ||
        (m_shown == Shown::Erased && !star.erased))
        return false;
    return std::all_of(m_conditions.begin(), m_conditions.end(), [&](const Condition& each) {
        return holds(each, m_stars.value(row, each.column));
    });
}
