// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "support/XConnection.h"

#include <QtEndian>

namespace tovek {

/// Tells all programs of a desktop one of its settings, as its settings daemon does, for as long as
/// this lives.
class SettingsDaemon
{
public:
    SettingsDaemon(const QString &displayName, QByteArray setting, int value)
        : m_connection(displayName)
        , m_setting(std::move(setting))
        , m_window(xcb_generate_id(m_connection))
    {
        xcb_create_window(m_connection, 0, m_window, m_connection.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        publish(value);
        xcb_set_selection_owner(m_connection, m_window, m_connection.atom("_XSETTINGS_S0"),
                                XCB_CURRENT_TIME);
        m_connection.sync();
    }

    void publish(int value)
    {
        QByteArray block(4, '\0'); // byte order, padding
        const auto put = [&](auto number) {
            const auto little = qToLittleEndian(number);
            block.append(reinterpret_cast<const char *>(&little), sizeof little);
        };
        put(++m_serial);
        put(quint32(1)); // how many settings
        put(quint16(0)); // an integer
        put(quint16(m_setting.size()));
        block += m_setting + QByteArray((4 - m_setting.size() % 4) % 4, '\0');
        put(m_serial);
        put(qint32(value));
        const xcb_atom_t settings = m_connection.atom("_XSETTINGS_SETTINGS");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, settings, settings, 8,
                            uint32_t(block.size()), block.constData());
        m_connection.sync();
    }

private:
    XConnection m_connection;
    QByteArray m_setting;
    xcb_window_t m_window;
    quint32 m_serial = 0;
};

} // namespace tovek
