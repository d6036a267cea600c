#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QAbstractTableModel>
#include <QPointF>

#include "app/session/star_csv.h"
#include "app/stars/star_columns.h"
#include "engine/astro/wcs.h"
#include "engine/stars/star.h"

namespace startable {

/// A star as the table shows it: all but its light, which stays with its owner.
struct Row
{
    double x = 0.0;
    double y = 0.0;
    float peak = 0.0f;
    float depth = 0.5f;
    float distancePc = 0.0f;
    int width = 0;
    int height = 0;
    bool erased = false;

    bool operator==(const Row&) const = default;
};

} // namespace startable

/// The stars as a table, one row a star in the list's order. It keeps copies of what it shows, so
/// that it can be painted while the list itself is made anew.
class StarTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit StarTableModel(QObject* parent = nullptr)
        : QAbstractTableModel(parent)
    {
    }

    /// Shows these stars. With as many as before the rows stay what they are, with new values.
    void setStars(const std::vector<zre::Star>& stars, const zre::Wcs& wcs);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    const startable::Row& row(int number) const { return m_rows[static_cast<std::size_t>(number)]; }
    /// What the column sorts and filters by; not a number where the table has nothing to show.
    double value(int row, startable::Column column) const;
    /// The row of the star nearest to a place of the image; -1 when none is within `reach` pixels.
    int nearest(QPointF place, double reach) const;
    /// Stars that are not drawn.
    int hiddenCount() const { return m_hidden; }
    /// Whether the distance of any star is known.
    bool knowsDistances() const { return m_knowsDistances; }
    /// How often the solution was asked since the model was made.
    int skyLookups() const { return m_skyLookups; }

private:
    QString text(int row, startable::Column column) const;
    const std::optional<SkyPlace>& sky(int row) const;
    void replaceRows(std::vector<startable::Row> rows, bool solutionChanged);

    std::vector<startable::Row> m_rows;
    int m_hidden = 0;
    bool m_knowsDistances = false;
    zre::Wcs m_wcs;
    /// Found when first asked for; the outer one tells whether it was.
    mutable std::vector<std::optional<std::optional<SkyPlace>>> m_sky;
    mutable int m_skyLookups = 0;
};
