#pragma once

#include <QByteArray>
#include <QString>

/// Listens to what ffmpeg says and keeps what explains a failure: not who built it, how the streams
/// look or how far it is. It may say anything at any length, of which the end is kept.
class EncoderWords
{
public:
    void hear(const QByteArray& bytes);

    /// The last complaints, or all of the last words where none was told from the rest.
    QString last() const;

    /// Whether the end of the file could not be written. Up to version 5 ffmpeg calls that a
    /// success where all before it fitted, and nothing plays a video without its end.
    bool tellOfLostEnd() const;

private:
    static bool explains(const QByteArray& line);

    QByteArray m_line; ///< not ended yet
    QByteArray m_complaints;
    QByteArray m_all;
};
