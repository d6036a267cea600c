#pragma once

#include <optional>

#include <QString>
#include <QStringList>

/// A value that stands under a text key and is built anew only when the key changes.
template <class T>
class Keyed
{
public:
    /// `build(T&)` runs when `key` differs from the stored one.
    template <class Build>
    const T& get(const QString& key, Build&& build)
    {
        if (!stored || *stored != key) {
            stored.reset();
            build(value);
            stored = key;
        }
        return value;
    }

    /// The value if it stands under `key`, else null.
    const T* peek(const QString& key) const { return stored && *stored == key ? &value : nullptr; }

    void clear()
    {
        stored.reset();
        value = T{};
    }

private:
    std::optional<QString> stored;
    T value{};
};

/// Joins the fields of a cache key with "|"; numbers are printed with seven significant digits.
class CacheKey
{
public:
    /// A "|" inside a field is escaped, so that free text cannot pass for further fields.
    CacheKey& text(QString field)
    {
        field.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
        field.replace(QLatin1Char('|'), QLatin1String("\\|"));
        fields << field;
        return *this;
    }
    CacheKey& number(double field) { return text(QString::number(field, 'g', 7)); }
    QString str() const { return fields.join(QLatin1Char('|')); }

private:
    QStringList fields;
};
