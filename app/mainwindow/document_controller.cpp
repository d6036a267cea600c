#include "app/mainwindow/document_controller.h"

#include <utility>

#include <cmath>

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopedValueRollback>

#include "app/mainwindow/openable_file.h"
#include "app/mainwindow/prompter.h"
#include "app/mainwindow/run_aside.h"
#include "app/mainwindow/shell_host.h"
#include "app/mainwindow/thumbnail_store.h"
#include "app/persist/recent_files.h"
#include "app/session/carry_over.h"
#include "app/session/layer_names.h"
#include "app/session/open_document.h"
#include "app/session/render_pipeline.h"
#include "app/session/session.h"
#include "engine/demo/demo_scene.h"

static constexpr const char* kDialog = appcfg::kSettings.imageDialog.key;
static constexpr const char* kPairDialog = appcfg::kSettings.pairDialog.key;
static constexpr const char* kOpenImage = "Open Image";
static constexpr const char* kLoadPair = "Load Stars + Starless";
static constexpr int kPreparingPercent = 30;

static QString fileNameOf(const QString& path)
{
    return QFileInfo(path).fileName();
}

QString documentName(const Session& session)
{
    if (!session.hasSource())
        return {};
    if (session.hasPair())
        return fileNameOf(session.starsPath) + " + " + fileNameOf(session.starlessPath);
    return session.sourcePath.isEmpty() ? QString("Built-in scene")
                                        : fileNameOf(session.sourcePath);
}

QString windowTitleFor(const Session& session)
{
    const QString program = QCoreApplication::applicationName();
    return session.hasSource() ? documentName(session) + " - " + program : program;
}

QString openedText(const Session& session)
{
    QString text = session.hasPair() ? "Loaded stars + starless: " + documentName(session)
                                     : QString("%1  -  %2 x %3")
                                           .arg(documentName(session))
                                           .arg(session.source.width)
                                           .arg(session.source.height);
    if (session.wcs.valid)
        text += QString("  -  WCS: %1 arcsec/px").arg(session.wcs.resolutionArcsec, 0, 'f', 3);
    const zre::MidtonesStretch& stretch = session.sourceFile.stretch;
    if (!stretch.isIdentity())
        text += QString("  -  linear data, shown stretched (shadows %1, midtones %2)")
                    .arg(stretch.shadows, 0, 'f', 4)
                    .arg(stretch.midtones, 0, 'f', 4);
    return text;
}

void DocumentController::newDocument()
{
    if (m_host.isBusy())
        return;
    m_host.session().clear();
    m_host.pipeline().clear();
    m_host.documentReplaced();
    m_host.showStatus("New. Open an image to begin.");
}

void DocumentController::openImage()
{
    const QString path = m_host.prompter().openFile(
        kOpenImage, appcfg::dialogStartPath(kDialog, {}, appcfg::Preferred::WorkFolder),
        imageFileFilter());
    if (!path.isEmpty())
        openWithPartner(path);
}

void DocumentController::openPair()
{
    Prompter& prompter = m_host.prompter();
    const QString starless = prompter.openFile(
        "Open Starless Image (1 of 2)",
        appcfg::dialogStartPath(kPairDialog, {}, appcfg::Preferred::WorkFolder), imageFileFilter());
    if (starless.isEmpty())
        return;
    const QString partner = layerPartnerOf(starless);
    const QString stars = prompter.openFile(
        "Open Stars Image for " + fileNameOf(starless) + " (2 of 2)",
        partner.isEmpty() ? QFileInfo(starless).absolutePath() : partner, imageFileFilter());
    if (!stars.isEmpty())
        loadStarlessStarsPair(stars, starless);
}

void DocumentController::openWithPartner(const QString& path)
{
    const QString partner = layerPartnerOf(path);
    const std::optional<LayerPair> pair = layerPairOf(path, partner);
    if (partner.isEmpty() || !pair) {
        loadImageFromPath(path);
        return;
    }
    const std::optional<int> choice = m_host.prompter().choose(
        kOpenImage,
        QString("%1 seems to be one layer of a picture; the other, %2, lies beside it.")
            .arg(fileNameOf(path), fileNameOf(partner)),
        {"Open both as a pair", "Open only this one"});
    if (choice == 0)
        loadStarlessStarsPair(pair->stars, pair->starless);
    else if (choice == 1)
        loadImageFromPath(path);
}

bool DocumentController::loadImageFromPath(const QString& path)
{
    const bool opened =
        openWith({"Opening image", "Loading image...", kOpenImage, false,
                  [&path](Session& loaded, const Stage&, QString* error) {
                      return openSource(path, StretchMode::Auto, loaded, nullptr, error);
                  }});
    if (opened) {
        appcfg::rememberDialogPath(kDialog, path);
        addRecentFile(path);
    }
    return opened;
}

bool DocumentController::loadStarlessStarsPair(const QString& stars, const QString& starless)
{
    if (m_host.isBusy() || m_asking || !confirmPairReplace())
        return false;
    const bool opened = openWith(
        {"Loading stars + starless", "Loading starless image...", kLoadPair, true,
         [&](Session& loaded, const Stage& stage, QString* error) {
             return ::openPair(stars, starless, StretchMode::Auto, loaded, nullptr, error, stage);
         }});
    if (opened) {
        appcfg::rememberDialogPath(kPairDialog, starless);
        addRecentPair(stars, starless);
    }
    return opened;
}

/// A pair's picture stands under its starless file.
static void addThumbnail(const QString& path, const zre::Image& picture)
{
    QStringList kept = recent::entries(appcfg::RecentCategory::Images);
    for (const QString& entry : recent::entries(appcfg::RecentCategory::Pairs))
        if (const std::optional<recent::Pair> pair = recent::splitPair(entry))
            kept << pair->starless;
    const ThumbnailStore thumbnails;
    thumbnails.add(path, picture);
    thumbnails.keepOnly(kept);
}

void DocumentController::addRecentFile(const QString& path)
{
    recent::pushFile(appcfg::RecentCategory::Images, path);
    addThumbnail(path, m_host.session().source);
}

void DocumentController::addRecentPair(const QString& stars, const QString& starless)
{
    recent::pushPair({stars, starless});
    addThumbnail(starless, m_host.session().source);
}

void DocumentController::openBuiltInScene()
{
    openWith({"Opening image", "Loading image...", kOpenImage, false,
              [](Session& loaded, const Stage&, QString*) {
                  zre::DemoScene scene = zre::makeDemoScene({});
                  loaded.installSource({}, std::move(scene.picture), std::move(scene.wcs), {});
                  return true;
              }});
}

void DocumentController::openProjectFromCommandLine(const QString& path)
{
    if (isOpenableImage(path))
        loadImageFromPath(path);
}

static QSize sizeOf(const zre::Image& image)
{
    return {image.width, image.height};
}

int DocumentController::askCarrySession(int newWidth, int newHeight)
{
    const Session& session = m_host.session();
    const QSize oldSize = sizeOf(session.source);
    const QSize newSize(newWidth, newHeight);
    const QStringList items = carryableItems(session);
    if (!session.hasSource() || items.isEmpty() || !sameProportions(oldSize, newSize))
        return kStartFresh;
    return m_host.prompter()
        .choose("Zerrith", carryOverQuestion(oldSize, newSize, items),
                {"Carry over", "Start fresh"})
        .value_or(kCancel);
}

bool DocumentController::confirmPairReplace()
{
    const Session& session = m_host.session();
    if (!session.hasSource() || appcfg::pairReplaceNoticeHidden())
        return true;
    const QScopedValueRollback<bool> asking(m_asking, true);
    const std::optional<bool> hidden = m_host.prompter().confirm(
        kLoadPair,
        QString("The pair takes the place of what is open now: %1.\n\nThe files stay as they are.")
            .arg(documentName(session)),
        "Replace", "Don't ask this again");
    if (hidden == true)
        appcfg::setPairReplaceNoticeHidden(true);
    return hidden.has_value();
}

bool DocumentController::confirmPairResize(int newWidth, int newHeight)
{
    const Session& session = m_host.session();
    const QSize oldSize = sizeOf(session.source);
    const QSize newSize(newWidth, newHeight);
    const QStringList items = losableItems(session);
    if (!session.hasSource() || items.isEmpty() || sameProportions(oldSize, newSize))
        return true;
    return m_host.prompter()
        .choose(kLoadPair, lossQuestion(oldSize, newSize, items), {"Open the pair"})
        .has_value();
}

bool DocumentController::openWith(const Opening& opening)
{
    if (m_host.isBusy() || m_asking)
        return false;
    Session loaded;
    if (!decode(opening, loaded))
        return false;
    m_host.stopPlayback("opening an image");
    const QScopedValueRollback<bool> asking(m_asking, true);
    const int answer = askAbout(opening, loaded);
    bool movesPath = false;
    if (answer == kCancel ||
        (answer == kStartFresh && !maybeRescaleFlybyForSize(sizeOf(loaded.source), movesPath)))
        return false;
    return m_host.busyRun([&] {
        if (movesPath)
            rescaleFlybyPath(m_host.session(), m_host.session().flybyScriptSize,
                             sizeOf(loaded.source));
        install(opening, std::move(loaded), answer == kCarryOver);
    });
}

bool DocumentController::maybeRescaleFlybyForSize(QSize image, bool& rescale)
{
    const Session& session = m_host.session();
    rescale = false;
    if (!flybyPathMisfits(session, image))
        return true;
    const std::optional<int> answer = m_host.prompter().choose(
        "Zerrith - Flyby", flybyRescaleQuestion(session, image), {"Yes", "No"});
    rescale = answer == 0;
    return answer.has_value();
}

int DocumentController::askAbout(const Opening& opening, const Session& loaded)
{
    const zre::Image& picture = loaded.source;
    const int answer = askCarrySession(picture.width, picture.height);
    if (answer == kCancel || !opening.isPair)
        return answer;
    return confirmPairResize(picture.width, picture.height) ? answer : kCancel;
}

bool DocumentController::decode(const Opening& opening, Session& loaded)
{
    bool done = false;
    QString error;
    // The work stands still meanwhile, so that no stage comes late.
    const Stage stage = [this](double fraction, const QString& text) {
        const auto percent = static_cast<int>(std::lround(fraction * kPreparingPercent));
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [&] { m_host.stageStatus(percent, text); },
            Qt::BlockingQueuedConnection);
    };
    m_host.busyRun([&] {
        const ProgressScope progress(m_host, opening.progressTitle, opening.firstStage);
        runAside([&] { done = opening.load(loaded, stage, &error); });
        if (done)
            m_host.stageStatus(kPreparingPercent, "Preparing image...");
    });
    if (!error.isEmpty())
        m_host.prompter().warn(opening.errorTitle, error);
    return done;
}

void DocumentController::install(const Opening& opening, Session loaded, bool carryOver)
{
    const ProgressScope progress(m_host, opening.progressTitle, "Preparing image...");
    m_host.stageStatus(kPreparingPercent, "Preparing image...");
    Session& session = m_host.session();
    if (carryOver)
        rescaleSession(session, sizeOf(session.source), sizeOf(loaded.source));
    else
        startFresh(session);
    session.installImagesOf(std::move(loaded));
    if (session.flybyScriptSize.isEmpty()) // written before there was an image
        session.flybyScriptSize = sizeOf(session.source);
    m_host.stageStatus(kPreparingPercent, "Rendering...");
    m_host.documentReplaced();
    m_host.showStatus(openedText(session));
}
