#include "app/stars/star_table_window.h"

#include <utility>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableView>

#include "app/persist/appcfg.h"
#include "app/stars/sprite_eraser_pane.h"

/// A count with its thousands parted, as in "12,345".
static QString grouped(int count)
{
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(count);
}

StarTableWindow::StarTableWindow(std::function<startable::Scene()> scene, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_scene(std::move(scene))
    , m_filter(m_stars)
{
    setWindowTitle(tr("Star Table"));
    setObjectName("starTable");
    m_splitter = new QSplitter(this);
    m_splitter->addWidget(buildTable());
    m_pane = new SpriteEraserPane(m_scene, this);
    m_splitter->addWidget(m_pane);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildFilterBar());
    m_complaint = new QLabel(this);
    m_complaint->setObjectName("filterComplaint");
    m_complaint->setWordWrap(true);
    m_complaint->hide();
    layout->addWidget(m_complaint);
    layout->addWidget(m_splitter, 1);
    layout->addWidget(buildFoot());
    connect(m_pane, &SpriteEraserPane::erasuresEdited, this, &StarTableWindow::erasuresEdited);
    resize(1080, 640);
    m_splitter->setSizes({680, 400});
    restoreGeometry(appcfg::starTableGeometry());
    showCount();
}

QWidget* StarTableWindow::buildFilterBar()
{
    auto* bar = new QWidget(this);
    m_conditions = new QLineEdit(bar);
    m_conditions->setObjectName("starConditions");
    m_conditions->setPlaceholderText(tr("Filter, for example: peak > 0.5 depth < 0.2"));
    m_conditions->setClearButtonEnabled(true);
    m_conditions->setAccessibleName(tr("Filter by conditions"));
    QStringList words;
    for (const startable::ColumnInfo& column : startable::kColumns)
        words << column.word;
    m_conditions->setToolTip(
        tr("Conditions that all have to hold, of the words %1 and the signs < <= > >= =.")
            .arg(words.join(", ")));
    m_shown = new QComboBox(bar);
    m_shown->setObjectName("starsShown");
    for (const char* name : startable::kShownNames)
        m_shown->addItem(name);
    m_shown->setAccessibleName(tr("Which stars are listed"));
    m_export = new QPushButton(tr("E&xport CSV..."), bar);
    m_export->setObjectName("exportStars");
    m_export->setToolTip(
        tr("Writes every star of the list into a file of comma-separated values."));
    m_export->setAutoDefault(false);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_conditions, 1);
    layout->addWidget(m_shown);
    layout->addWidget(m_export);
    connect(m_conditions, &QLineEdit::textChanged, this, &StarTableWindow::applyFilter);
    connect(m_shown, &QComboBox::currentIndexChanged, this, &StarTableWindow::applyFilter);
    connect(m_export, &QPushButton::clicked, this, &StarTableWindow::exportRequested);
    return bar;
}

QWidget* StarTableWindow::buildTable()
{
    m_table = new QTableView(this);
    m_table->setAccessibleName(tr("Stars"));
    m_table->setModel(&m_filter);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setAlternatingRowColors(true);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setShowGrid(false);
    m_table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    // Sizes from a table of texts: asking every row for its own would take as long as it is.
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    m_table->horizontalHeader()->setHighlightSections(false);
    for (const startable::ColumnInfo& column : startable::kColumns)
        m_table->setColumnWidth(startable::columnNumber(column.column),
                                fontMetrics().horizontalAdvance(column.widest) + 16);
    m_table->sortByColumn(startable::columnNumber(startable::Column::Index), Qt::AscendingOrder);
    m_table->setSortingEnabled(true);
    m_table->setMinimumWidth(180);
    m_empty = new QLabel(this);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_pages = new QStackedWidget(this);
    m_pages->addWidget(m_table);
    m_pages->addWidget(m_empty);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &StarTableWindow::onSelectionChanged);
    return m_pages;
}

QWidget* StarTableWindow::buildFoot()
{
    auto* foot = new QWidget(this);
    m_count = new QLabel(foot);
    m_count->setObjectName("starCount");
    m_spotlight = new QCheckBox(tr("&Spotlight"), foot);
    m_spotlight->setObjectName("ringSpotlight");
    m_spotlight->setToolTip(tr("Darkens the preview around the ring of the selected star."));
    m_spotlight->setChecked(appcfg::starRingSpotlight());
    auto* layout = new QHBoxLayout(foot);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_count, 1);
    layout->addWidget(m_spotlight);
    connect(m_spotlight, &QCheckBox::toggled, this, &StarTableWindow::spotlightChanged);
    return foot;
}

void StarTableWindow::applyFilter()
{
    QString error;
    auto conditions = startable::readConditions(m_conditions->text(), error);
    m_complaint->setText(error);
    m_complaint->setVisible(!conditions);
    if (conditions)
        m_filter.setConditions(std::move(*conditions));
    m_filter.setShown(static_cast<startable::Shown>(m_shown->currentIndex()));
    showCount();
}

void StarTableWindow::showCount()
{
    const int all = m_stars.rowCount();
    const int listed = m_filter.rowCount();
    QString text = all == 1 ? tr("1 star") : tr("%1 stars").arg(grouped(all));
    if (m_stars.hiddenCount() > 0)
        text += tr("  -  %1 hidden").arg(grouped(m_stars.hiddenCount()));
    if (listed != all)
        text += tr("  -  %1 listed").arg(grouped(listed));
    m_count->setText(text);
    m_export->setEnabled(all > 0);
    m_pages->setCurrentIndex(all > 0 ? 0 : 1);
}

/// Leaves out what is known of no star.
void StarTableWindow::showKnownColumns(bool solved)
{
    using startable::Column;
    const auto show = [this](Column column, bool known) {
        m_table->setColumnHidden(startable::columnNumber(column), !known);
    };
    show(Column::Distance, m_stars.knowsDistances());
    show(Column::Ra, solved);
    show(Column::Dec, solved);
}

void StarTableWindow::setEmptyText(const QString& text)
{
    m_empty->setText(text);
}

void StarTableWindow::refresh()
{
    const int before = selectedStar();
    const int scrolledTo = m_table->verticalScrollBar()->value();
    const startable::Scene scene = m_scene();
    m_refreshing = true;
    static const std::vector<zre::Star> kNone;
    m_stars.setStars(scene.stars ? *scene.stars : kNone, scene.wcs);
    constexpr double kSameStar = 1.5; // pixels
    if (before >= 0 && selectedStar() < 0) {
        const int again = m_stars.nearest(m_selectedPlace, kSameStar);
        const QModelIndex row = m_filter.mapFromSource(m_stars.index(again, 0));
        if (row.isValid())
            m_table->selectRow(row.row());
    }
    showKnownColumns(scene.wcs.valid);
    m_table->verticalScrollBar()->setValue(scrolledTo);
    m_refreshing = false;
    showCount();
    const int now = selectedStar();
    if (now >= 0)
        m_selectedPlace = {m_stars.row(now).x, m_stars.row(now).y};
    m_pane->refresh(now);
    if (now >= 0 || before >= 0)
        emit starSelected(now);
}

int StarTableWindow::selectedStar() const
{
    const QModelIndexList rows = m_table->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : m_filter.mapToSource(rows.first()).row();
}

void StarTableWindow::selectStar(int index)
{
    if (index < 0 || index >= m_stars.rowCount()) {
        m_table->clearSelection();
        m_table->setCurrentIndex({});
        return;
    }
    if (!m_filter.mapFromSource(m_stars.index(index, 0)).isValid()) {
        m_conditions->clear();
        m_shown->setCurrentIndex(static_cast<int>(startable::Shown::All));
    }
    const QModelIndex row = m_filter.mapFromSource(m_stars.index(index, 0));
    m_table->selectRow(row.row());
    m_table->scrollTo(row);
}

void StarTableWindow::onSelectionChanged()
{
    if (m_refreshing)
        return;
    const int now = m_filter.mapToSource(m_table->currentIndex()).row();
    if (now >= 0)
        m_selectedPlace = {m_stars.row(now).x, m_stars.row(now).y};
    m_pane->showStar(now);
    emit starSelected(now);
}

void StarTableWindow::closeEvent(QCloseEvent* event)
{
    appcfg::setStarTableGeometry(saveGeometry());
    event->accept();
    emit closed();
}

void StarTableWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
