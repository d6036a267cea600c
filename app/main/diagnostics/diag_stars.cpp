#include <algorithm>

#include <QFileInfo>

#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/session/open_document.h"
#include "app/session/render_pipeline.h"
#include "app/session/star_csv.h"
#include "app/stars/star_table_window.h"
#include "engine/demo/demo_scene.h"

static bool openSubject(const QString& path, Session& session, Checks& checks)
{
    if (QFileInfo(path).isFile()) {
        QString error;
        const bool opened = openSource(path, StretchMode::Auto, session, nullptr, &error);
        checks.that(opened, path + " opens " + error);
        return opened;
    }
    checks.note(path + " is no file: the built-in scene is taken");
    zre::DemoSceneOptions options;
    options.width = 600;
    options.height = 400;
    zre::DemoScene scene = zre::makeDemoScene(options);
    session.installSource({}, std::move(scene.picture), std::move(scene.wcs), {});
    return true;
}

static void checkOrder(const StarTableModel& stars, StarFilter& filter, Checks& checks)
{
    for (const startable::ColumnInfo& column : startable::kColumns) {
        filter.sort(startable::columnNumber(column.column), Qt::AscendingOrder);
        std::vector<double> values;
        for (int row = 0; row < filter.rowCount(); ++row)
            values.push_back(
                stars.value(filter.mapToSource(filter.index(row, 0)).row(), column.column));
        const auto known = std::remove_if(values.begin(), values.end(),
                                          [](double value) { return value != value; });
        checks.that(std::is_sorted(values.begin(), known),
                    QString("sorted by %1").arg(column.title));
    }
}

/// The brightest star is erased whole, keeps its row, and comes back.
static void checkErasure(Session& session, RenderPipeline& pipeline, StarTableWindow& table,
                         Checks& checks)
{
    const std::vector<zre::Star> before = *pipeline.activeStars();
    const auto brightest =
        std::max_element(before.begin(), before.end(),
                         [](const zre::Star& a, const zre::Star& b) { return a.peak < b.peak; });
    const auto index = static_cast<int>(brightest - before.begin());
    const double radius = brightest->boxW + brightest->boxH;
    const auto render = [&] {
        pipeline.prepareStars();
        table.refresh();
    };
    table.selectStar(index);
    session.params.starErasures = {{brightest->x, brightest->y, radius, 0.0, 0}};
    render();
    checks.that(table.stars().rowCount() == static_cast<int>(before.size()),
                "an erasure keeps every row");
    checks.that(table.stars().row(index).erased, "the star under it is erased");
    checks.that(table.selectedStar() == index, "its row stays selected");
    session.params.starErasures.clear();
    render();
    const startable::Row& after = table.stars().row(index);
    checks.that(!after.erased && after.x == brightest->x && after.peak == brightest->peak,
                "without the erasure the star is back");
}

int diag::starTable(const QStringList& arguments)
{
    Checks checks;
    Session session;
    if (!openSubject(arguments[0], session, checks))
        return checks.verdict();
    RenderPipeline pipeline(session);
    pipeline.prepareStars();
    const std::vector<zre::Star>* stars = pipeline.activeStars();
    checks.that(stars, "stars are found");
    if (!stars)
        return checks.verdict();
    StarTableWindow table(
        [&] {
            return startable::Scene{pipeline.activeStars(), &session.source, &pipeline.working(),
                                    session.wcs, session.params.starErasures};
        },
        nullptr);
    table.refresh();
    checks.that(table.stars().rowCount() == static_cast<int>(stars->size()),
                QString("%1 stars, a row each").arg(stars->size()));
    checks.that(starsCsv(*stars, session.wcs).count('\n') ==
                    static_cast<qsizetype>(stars->size()) + 1,
                "a line each in the file");
    StarTableModel model;
    model.setStars(*stars, session.wcs);
    StarFilter filter(model);
    checkOrder(model, filter, checks);
    checkErasure(session, pipeline, table, checks);
    return checks.verdict();
}
