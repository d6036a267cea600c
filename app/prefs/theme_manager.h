#pragma once

#include <memory>

#include <QColor>
#include <QObject>
#include <QPalette>

class QTemporaryDir;

/// The look of the whole application: light or dark, accent and section colours, over the toolkit's
/// "Fusion" style. The settings remember it.
class ThemeManager final : public QObject
{
    Q_OBJECT

public:
    enum class Mode
    {
        System, ///< as the desktop; dark where it does not tell
        Light,
        Dark
    };

    static ThemeManager& instance();

    /// Loads and applies; once, at the start.
    void init();
    void load();
    void save() const;
    void apply();

    Mode mode() const { return m_mode; }
    void setMode(Mode mode);
    /// For this run alone.
    void setModeTransient(Mode mode);
    bool effectiveDark() const;

    QColor accent() const;
    /// An invalid colour stands for the default.
    void setAccent(const QColor& accent);
    QColor sectionTitleColor() const;
    void setSectionTitleColor(const QColor& color);
    void restoreDefaults();

    QColor defaultAccent() const;
    /// Differs between the themes, to be read on either.
    QColor defaultSectionTitleColor() const;
    QPalette basePaletteFor(bool dark) const;
    QColor mutedTextColor(bool dark) const;
    /// A style sheet for a label of less weight; `pixelSize` 0 leaves the size of its text.
    QString mutedLabelStyle(bool dark, int pixelSize) const;

signals:
    void themeChanged();

private:
    ThemeManager();
    ~ThemeManager() override;

    void saveAndApply();
    QString marksFolder();

    Mode m_mode = Mode::System;
    bool m_systemLight = false;
    QColor m_accent; ///< invalid: the default, as is the next
    QColor m_sectionTitle;
    QString m_marksFolder;
    std::unique_ptr<QTemporaryDir> m_temporaryMarks;
};
