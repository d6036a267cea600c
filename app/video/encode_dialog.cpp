#include "app/video/encode_dialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/playback/preview_scale.h"
#include "app/video/encode_progress.h"

static constexpr QSize kPictureSize(400, 225);

EncodeDialog::EncodeDialog(const QString& title, const QString& text, int frames, QWidget* parent)
    : QDialog(parent)
    , m_picture(new QLabel(this))
    , m_bar(new QProgressBar(this))
    , m_progress(new QLabel(this))
    , m_longWait(new QLabel("This one will take a few minutes.", this))
{
    setObjectName("encodeDialog");
    setWindowTitle(title);
    setModal(true); // all windows: what is drawn must stay as it is
    auto* column = new QVBoxLayout(this);
    auto* what = new QLabel(text, this);
    what->setObjectName("encodeText");
    column->addWidget(what);
    m_picture->setObjectName("encodePicture");
    m_picture->setFixedSize(kPictureSize);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setStyleSheet("background: black");
    column->addWidget(m_picture, 0, Qt::AlignHCenter);
    m_picture->setVisible(frames > 0);
    m_bar->setRange(0, frames);
    m_bar->setValue(0);
    column->addWidget(m_bar);
    m_progress->setObjectName("encodeProgress");
    column->addWidget(m_progress);
    m_progress->setVisible(frames > 0);
    m_longWait->setObjectName("longWait");
    m_longWait->hide();
    column->addWidget(m_longWait);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &EncodeDialog::reject);
    column->addWidget(buttons);
    // One key press too many on the dialogs before this one must not end it.
    buttons->button(QDialogButtonBox::Cancel)->setAutoDefault(false);
    setFocus();
    setMinimumWidth(kPictureSize.width());
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor); // the one that waits is the window's
    m_elapsed.start();
    show();
}

EncodeDialog::~EncodeDialog()
{
    QGuiApplication::restoreOverrideCursor();
}

void EncodeDialog::reject()
{
    m_cancelled = true;
    m_progress->setText("Cancelling...");
}

bool EncodeDialog::advance(const VideoProgress& progress)
{
    if (!m_cancelled && progress.frames > 0) {
        const double elapsed = static_cast<double>(m_elapsed.elapsed()) / 1000.0;
        m_bar->setValue(progress.done);
        m_progress->setText(encodeProgressText(progress.done, progress.frames, elapsed));
        if (m_longWait->isHidden() && takesMinutes(progress.done, progress.frames, elapsed))
            m_longWait->show();
        if (progress.shown)
            showFrame(*progress.shown);
    }
    QApplication::processEvents();
    return !m_cancelled;
}

/// Now and then only: small pictures of large frames take time from the encoder.
void EncodeDialog::showFrame(const QImage& frame)
{
    constexpr int kEveryMs = 300;
    if (m_sinceShown.isValid() && m_sinceShown.elapsed() < kEveryMs)
        return;
    m_sinceShown.start();
    const QSize size = kPictureSize * m_picture->devicePixelRatioF();
    const QImage coarse = frame.scaled(size * 3, Qt::KeepAspectRatio, Qt::FastTransformation);
    QPixmap small =
        QPixmap::fromImage(coarse.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    small.setDevicePixelRatio(m_picture->devicePixelRatioF());
    m_picture->setPixmap(small);
}
