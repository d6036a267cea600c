#include "app/stars/star_table_model.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <QGuiApplication>
#include <QPalette>

#include "app/session/sky_text.h"

using startable::Column;
using startable::Row;

static constexpr const char* kErasedHelp =
    "The sprite eraser removed this sprite entirely. The row stays so edits never renumber the "
    "table; deleting the erasure brings the star back";

static constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

static Row rowOf(const zre::Star& star)
{
    return {star.x,          star.y,    star.peak, star.depth,
            star.distancePc, star.boxW, star.boxH, star.erased};
}

void StarTableModel::setStars(const std::vector<zre::Star>& stars, const zre::Wcs& wcs)
{
    std::vector<Row> rows(stars.size());
    std::transform(stars.begin(), stars.end(), rows.begin(), rowOf);
    m_hidden = static_cast<int>(
        std::count_if(rows.begin(), rows.end(), [](const Row& row) { return row.depth < 0.0f; }));
    m_knowsDistances =
        std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row.distancePc > 0.0f; });
    const bool solutionChanged = wcs.solution != m_wcs.solution || wcs.valid != m_wcs.valid;
    m_wcs = wcs;
    if (rows.size() == m_rows.size()) {
        replaceRows(std::move(rows), solutionChanged);
        return;
    }
    beginResetModel();
    m_rows = std::move(rows);
    m_sky.clear();
    endResetModel();
}

/// A few changed rows are told one by one; beyond that views do better to order all of them again,
/// once, than to move each.
void StarTableModel::replaceRows(std::vector<Row> rows, bool solutionChanged)
{
    constexpr std::size_t kFew = 64;
    std::vector<int> changed;
    for (std::size_t i = 0; i < rows.size() && changed.size() <= kFew; ++i)
        if (rows[i] != m_rows[i])
            changed.push_back(static_cast<int>(i));
    if (changed.size() > kFew || solutionChanged) {
        emit layoutAboutToBeChanged();
        m_rows = std::move(rows);
        m_sky.clear();
        emit layoutChanged();
        return;
    }
    for (const int changedRow : changed) { // each while the others are still as views sorted them
        const auto at = static_cast<std::size_t>(changedRow);
        m_rows[at] = rows[at];
        if (!m_sky.empty())
            m_sky[at].reset();
        emit dataChanged(index(changedRow, 0), index(changedRow, columnCount() - 1));
    }
}

int StarTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int StarTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(startable::kColumns.size());
}

const std::optional<SkyPlace>& StarTableModel::sky(int row) const
{
    m_sky.resize(m_rows.size());
    auto& known = m_sky[static_cast<std::size_t>(row)];
    if (!known) {
        ++m_skyLookups;
        const Row& star = m_rows[static_cast<std::size_t>(row)];
        known = starSkyPlace(star.x, star.y, m_wcs);
    }
    return *known;
}

double StarTableModel::value(int row, Column column) const
{
    const Row& star = m_rows[static_cast<std::size_t>(row)];
    switch (column) {
    case Column::Index:
        return row;
    case Column::X:
        return star.x;
    case Column::Y:
        return star.y;
    case Column::Peak:
        return static_cast<double>(star.peak);
    case Column::Size:
        return std::max(star.width, star.height);
    case Column::Depth:
        return static_cast<double>(star.depth);
    case Column::Distance:
        return star.distancePc > 0.0f ? static_cast<double>(star.distancePc) : kNothing;
    case Column::Ra:
        return sky(row) ? sky(row)->ra : kNothing;
    case Column::Dec:
        return sky(row) ? sky(row)->dec : kNothing;
    }
    return kNothing;
}

QString StarTableModel::text(int row, Column column) const
{
    const Row& star = m_rows[static_cast<std::size_t>(row)];
    const double number = value(row, column);
    switch (column) {
    case Column::Size:
        return QString("%1 x %2").arg(star.width).arg(star.height);
    case Column::Depth:
        return star.erased ? "erased" : number < 0.0 ? "hidden" : QString::number(number, 'f', 3);
    case Column::Distance:
        return std::isnan(number) ? QString() : QString::number(number, 'f', 1) + " pc";
    case Column::Ra:
        return std::isnan(number) ? QString() : sexagesimalRa(number);
    case Column::Dec:
        return std::isnan(number) ? QString() : sexagesimalDec(number);
    case Column::Index:
        return QString::number(row);
    case Column::Peak:
        return QString::number(number, 'f', 4);
    case Column::X:
    case Column::Y:
        break;
    }
    return QString::number(number, 'f', 2);
}

QVariant StarTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return {};
    const bool erased = row(index.row()).erased;
    switch (role) {
    case Qt::DisplayRole:
        return text(index.row(), static_cast<Column>(index.column()));
    case Qt::TextAlignmentRole:
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ForegroundRole:
        return erased ? QVariant(QGuiApplication::palette().brush(QPalette::Disabled, //
                                                                  QPalette::Text))
                      : QVariant();
    case Qt::ToolTipRole:
        return erased ? QVariant(QString(kErasedHelp)) : QVariant();
    default:
        return {};
    }
}

QVariant StarTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const startable::ColumnInfo& column = startable::kColumns[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole)
        return QString(column.title);
    if (role == Qt::ToolTipRole)
        return QString(column.help);
    return {};
}

int StarTableModel::nearest(QPointF place, double reach) const
{
    int found = -1;
    double best = reach * reach;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const double dx = m_rows[i].x - place.x();
        const double dy = m_rows[i].y - place.y();
        const double distance = dx * dx + dy * dy;
        if (distance > best || (found >= 0 && distance == best))
            continue;
        best = distance;
        found = static_cast<int>(i);
    }
    return found;
}
