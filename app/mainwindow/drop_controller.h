#pragma once

#include <functional>

#include <QList>
#include <QUrl>

class ShellHost;

/// Files dragged onto the window.
class DropController
{
public:
    using Open = std::function<void(const QString& path)>;

    using OpenPair = std::function<void(const QString& stars, const QString& starless)>;

    DropController(ShellHost& host, Open openImage, Open openDepthMap, Open openColorProfile,
                   OpenPair openPair);

    /// What letting `urls` go does, in words; empty when nothing.
    QString offer(const QList<QUrl>& urls) const;
    /// Does it, after asking where the name leaves it open.
    void take(const QList<QUrl>& urls);

private:
    void openAsEither(const QString& path);
    void openAsPairOrOne(const QString& path, const QString& other);

    ShellHost& m_host;
    Open m_openImage;
    Open m_openDepthMap;
    Open m_openColorProfile;
    OpenPair m_openPair;
};
