#include "app/session/layer_names.h"

#include <array>

#include <QDir>
#include <QFileInfo>

#include "engine/qt/image_file.h"

namespace {

struct WordRow
{
    const char* word; ///< lower case, its parts separated by single blanks
    bool alone;       ///< counts only as a word of its own; others also at the end of one
    LayerRole role;
};

/// The first row found decides: longer words stand before those that they contain.
constexpr std::array kWords{
    WordRow{"with stars", true, LayerRole::Whole},
    WordRow{"without stars", true, LayerRole::Starless},
    WordRow{"starless", false, LayerRole::Starless},
    WordRow{"star less", true, LayerRole::Starless},
    WordRow{"stars removed", true, LayerRole::Starless},
    WordRow{"no stars", true, LayerRole::Starless},
    WordRow{"no star", true, LayerRole::Starless},
    WordRow{"nostars", false, LayerRole::Starless},
    WordRow{"nostar", false, LayerRole::Starless},
    WordRow{"sl", true, LayerRole::Starless},
    WordRow{"only stars", true, LayerRole::Stars},
    WordRow{"onlystars", false, LayerRole::Stars},
    WordRow{"stars only", true, LayerRole::Stars},
    WordRow{"starsonly", false, LayerRole::Stars},
    WordRow{"stars layer", true, LayerRole::Stars},
    WordRow{"star layer", true, LayerRole::Stars},
    WordRow{"stars mask", true, LayerRole::Stars},
    WordRow{"star mask", true, LayerRole::Stars},
    WordRow{"starmask", false, LayerRole::Stars},
    WordRow{"stars", false, LayerRole::Stars},
};

struct Parsed
{
    LayerRole role = LayerRole::Whole;
    QString root;
};

/// Words in lower case between single blanks, one at either end: "M42_NoStars-v2" is
/// " m42 no stars v2 ".
QString wordsOf(const QString& path)
{
    QString words = " ";
    bool lower = false;
    for (const QChar c : QFileInfo(path).completeBaseName()) {
        if (c.isUpper() && lower)
            words += ' ';
        lower = c.isLower() || c.isDigit();
        words += c.isLetterOrNumber() ? c.toLower() : QChar(' ');
    }
    return (words + ' ').simplified().prepend(' ').append(' ');
}

Parsed parse(const QString& path)
{
    const QString words = wordsOf(path);
    for (const WordRow& row : kWords) {
        const QString word = (row.alone ? " " : "") + QString(row.word) + ' ';
        const qsizetype at = words.lastIndexOf(word);
        if (at >= 0)
            return {row.role, (words.left(at) + ' ' + words.mid(at + word.size())).simplified()};
    }
    return {LayerRole::Whole, words.simplified()};
}

} // namespace

LayerRole layerRoleOf(const QString& path)
{
    return parse(path).role;
}

QString layerRootOf(const QString& path)
{
    return parse(path).root;
}

QString layerBaseOf(const QString& path)
{
    QString base = QFileInfo(path).completeBaseName();
    const QString root = layerRootOf(path);
    if (layerRoleOf(path) == LayerRole::Whole || root.isEmpty())
        return base;
    const auto isRoot = [&root](const QString& part) {
        return part.front().isLetterOrNumber() && part.back().isLetterOrNumber() &&
               wordsOf(part + ".x").simplified() == root;
    };
    for (qsizetype length = 1; length < base.size(); ++length)
        for (const QString& part : {base.left(length), base.right(length)})
            if (isRoot(part))
                return part;
    return base;
}

std::optional<LayerPair> layerPairOf(const QString& one, const QString& other)
{
    const Parsed first = parse(one);
    const Parsed second = parse(other);
    if (first.root != second.root)
        return std::nullopt;
    if (first.role == LayerRole::Stars && second.role == LayerRole::Starless)
        return LayerPair{one, other};
    if (first.role == LayerRole::Starless && second.role == LayerRole::Stars)
        return LayerPair{other, one};
    return std::nullopt;
}

QString layerPartnerOf(const QString& path)
{
    const QFileInfo own(path);
    if (layerRoleOf(path) == LayerRole::Whole)
        return {};
    QStringList found;
    for (const QFileInfo& file : own.absoluteDir().entryInfoList(QDir::Files))
        if (imageExts().contains(file.suffix(), Qt::CaseInsensitive) &&
            layerPairOf(path, file.filePath()))
            found << file.filePath();
    return found.size() == 1 ? found.front() : QString();
}
