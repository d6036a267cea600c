#include "app/session/script_file.h"

#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringConverter>

#include "app/persist/appcfg.h"

namespace flybyscript {

static constexpr const char* kDialog = appcfg::kSettings.scriptDialog.key;

/// The path that a file dialog was left with; at first one in the work folder.
static QString startPath(const QString& suggestedName)
{
    const QString last = appcfg::lastDialogPath(kDialog);
    return last.isEmpty()
               ? appcfg::dialogStartPath(kDialog, suggestedName, appcfg::Preferred::WorkFolder)
               : last;
}

QString askScriptToLoad(const AskFile& openFile)
{
    return openFile(kLoadTitle, startPath({}), kFileFilter);
}

QString askWhereToSave(const AskFile& saveFile, const QString& suggestedName)
{
    QString path = saveFile(kSaveTitle, startPath(suggestedName), kFileFilter);
    if (path.isEmpty() || !QFileInfo(path).suffix().isEmpty())
        return path;
    const QString named = path + ".zrsc";
    // The user agreed to overwrite another file than that.
    return QFileInfo::exists(named) ? saveFile(kSaveTitle, named, kFileFilter) : named;
}

static QString decoded(const QByteArray& bytes)
{
    const std::optional<QStringConverter::Encoding> marked =
        QStringConverter::encodingForData(bytes);
    QStringDecoder decode(marked.value_or(QStringConverter::Utf8),
                          QStringConverter::Flag::Stateless);
    QString text = decode(bytes);
    if (decode.hasError() && !marked)
        text = QString::fromLatin1(bytes);
    text.replace("\r\n", "\n");
    return text.replace('\r', '\n');
}

/// Lines far longer than any script has take the editor seconds a key.
static bool isShowable(const QString& text)
{
    constexpr qsizetype kLongestLine = 20000;
    qsizetype begin = 0;
    while (begin < text.size()) {
        const qsizetype end = text.indexOf('\n', begin);
        const qsizetype length = (end < 0 ? text.size() : end) - begin;
        if (length > kLongestLine)
            return false;
        begin += length + 1;
    }
    return !text.contains(QChar::Null);
}

std::optional<QString> readScript(const QString& path)
{
    constexpr qint64 kLargestBytes = 16 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestBytes)
        return std::nullopt;
    const QByteArray bytes = file.read(kLargestBytes + 1); // a device may hold more than it says
    if (file.error() != QFileDevice::NoError || bytes.size() > kLargestBytes)
        return std::nullopt;
    QString text = decoded(bytes);
    return isShowable(text) ? std::optional(std::move(text)) : std::nullopt;
}

bool writeScript(const QString& path, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace flybyscript
