#pragma once

#include <QObject>
#include <QString>

#include "app/panel/panel_facts.h"
#include "engine/params/params.h"

/// One control of the panel as a view of its part of the parameter record.
class RowBinding : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Shows the part of `params`. Emits nothing.
    virtual void load(const zre::ZRParams& params) = 0;
    /// Writes the part, exactly as it was loaded unless the user has changed it since.
    virtual void store(zre::ZRParams& params) const = 0;
    /// The record or the facts have changed, and this is how they stand now: greys out what is
    /// without effect, and may say why.
    virtual void follow(const zre::ZRParams&, const PanelFacts&) {}
    /// The way in which values are shown has changed.
    virtual void refreshTexts() {}

signals:
    /// The user changed the control; `continues` when this goes on with one drag.
    void edited(const QString& label, bool continues);
};
