// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>

namespace tovek {

/// The user's settings: a flat JSON object in one file, read when it is asked and written
/// atomically on every change. Main thread only.
///
/// A missing file is an empty store. So is what is no ordinary file, or larger than a megabyte, and
/// is then left alone; of a link, what it leads to is read and written. A file that does not parse,
/// or is not an object, is moved aside beside itself (never deleted) with one log line, and the
/// store starts empty. A file that cannot be read, set aside or written costs one log line; values
/// then live for this process. Members of a type that nobody asks for are kept as they are.
class UserDefaults
{
public:
    /// The path of the file; nothing is read yet.
    explicit UserDefaults(QString path);

    /// Absent when the key is missing or holds another type.
    std::optional<QString> string(const QString &key) const;
    std::optional<bool> boolean(const QString &key) const;
    /// True when anything at all, of whatever type, is stored under the key.
    bool contains(const QString &key) const;

    void setString(const QString &key, const QString &value) { set(key, value); }
    void setBoolean(const QString &key, bool value) { set(key, value); }
    void remove(const QString &key);

    const QString &path() const { return m_path; }

    /// $XDG_CONFIG_HOME/tovek/defaults.json, with the usual fallback to ~/.config.
    static QString standardPath();

private:
    void load() const;
    void refuse(const QString &reason) const;
    void setAside() const;
    void set(const QString &key, const QJsonValue &value);
    void write();

    QString m_path;
    mutable QJsonObject m_values;
    mutable bool m_isLoaded = false;
    mutable bool m_canWrite = true; ///< false while the file on disk must not be replaced
};

} // namespace tovek
