#pragma once

#include <array>
#include <optional>
#include <vector>

#include <QSortFilterProxyModel>

#include "app/stars/star_columns.h"

class StarTableModel;

namespace startable {

enum class Comparison
{
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    Equal
};

struct Condition
{
    Column column;
    Comparison comparison;
    double limit;

    bool operator==(const Condition&) const = default;
};

/// Reads conditions such as "peak > 0.5 depth <= 0,2"; an empty text holds none. Nothing, and in
/// `error` what the user is told, for a text that is none.
std::optional<std::vector<Condition>> readConditions(const QString& text, QString& error);

enum class Shown
{
    All,
    Drawn,
    Hidden,
    Erased
};

/// In the order of `Shown`.
inline constexpr std::array kShownNames{"All stars", "Drawn stars", "Hidden stars", "Erased stars"};

} // namespace startable

/// The table's rows sorted by number, and those left out that the user does not ask for. What has
/// no value comes last in either direction.
class StarFilter final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit StarFilter(StarTableModel& stars, QObject* parent = nullptr);

    void setConditions(std::vector<startable::Condition> conditions);
    void setShown(startable::Shown shown);

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
    const StarTableModel& m_stars;
    std::vector<startable::Condition> m_conditions;
    startable::Shown m_shown = startable::Shown::All;
};
