#include "app/playback/build_dialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/playback/preview_scale.h"

BuildDialog::BuildDialog(const QString& title, QWidget* parent)
    : QDialog(parent)
    , m_bar(new QProgressBar(this))
    , m_longWait(new QLabel("This one will take a few minutes.", this))
{
    constexpr int kWidth = 340;
    setObjectName("buildDialog");
    setWindowTitle(title);
    setModal(true); // all windows: what is drawn must stay as it is
    auto* layout = new QVBoxLayout(this);
    auto* text = new QLabel("Building preview...", this);
    text->setObjectName("buildText");
    layout->addWidget(text);
    layout->addWidget(m_bar);
    layout->addWidget(m_longWait);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &BuildDialog::reject);
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor); // the one that waits is the window's
    setMinimumWidth(kWidth);
    m_longWait->setObjectName("longWait");
    m_longWait->hide();
    m_elapsed.start();
}

BuildDialog::~BuildDialog()
{
    QGuiApplication::restoreOverrideCursor();
}

bool BuildDialog::advance(int done, int planned)
{
    m_bar->setRange(0, planned);
    m_bar->setValue(done);
    if (m_longWait->isHidden() && takesMinutes(done, planned, m_elapsed.elapsed() / 1000.0))
        m_longWait->show();
    if (!isVisible() && m_elapsed.elapsed() >= kDelayMs)
        show();
    // Before the dialog stands, nothing keeps the user's clicks from the window below.
    QApplication::processEvents(isVisible() ? QEventLoop::AllEvents
                                            : QEventLoop::ExcludeUserInputEvents);
    return !m_cancelled;
}
