// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/x11/tray/XSettings.h"

#include "platform/x11/QtXcb.h"
#include "platform/x11/X11Reply.h"

#include <QtEndian>

namespace tovek::XSettings {

namespace {

/// Reads numbers of the block's own byte order; every read past its end fails.
class Reader
{
public:
    explicit Reader(const QByteArray &block)
        : m_block(block)
        , m_isBigEndian(!block.isEmpty() && block[0] != 0)
    {
    }

    template <typename Number>
    std::optional<Number> number()
    {
        const auto bytes = take(sizeof(Number));
        if (!bytes)
            return std::nullopt;
        return m_isBigEndian ? qFromBigEndian<Number>(bytes->constData())
                             : qFromLittleEndian<Number>(bytes->constData());
    }
    std::optional<QByteArray> take(qsizetype count)
    {
        if (count < 0 || count > m_block.size() - m_at)
            return std::nullopt;
        m_at += count;
        return m_block.mid(m_at - count, count);
    }
    /// Text is padded to a multiple of four bytes.
    std::optional<QByteArray> text(qsizetype count)
    {
        const auto bytes = take(count);
        return bytes && take((4 - count % 4) % 4) ? bytes : std::nullopt;
    }

private:
    const QByteArray &m_block;
    bool m_isBigEndian;
    qsizetype m_at = 0;
};

enum class Kind : quint8 { integer, string, color };

} // namespace

std::optional<int> integer(const QByteArray &block, const QByteArray &name)
{
    constexpr qsizetype header = 8; // byte order, padding, serial number
    Reader reader(block);
    if (!reader.take(header))
        return std::nullopt;
    const auto count = reader.number<quint32>();
    for (quint32 i = 0; count && i < *count; ++i) {
        const auto kind = reader.number<quint8>();
        const auto length = reader.take(1) ? reader.number<quint16>() : std::nullopt;
        const auto found = length ? reader.text(*length) : std::nullopt;
        if (!kind || !found || !reader.number<quint32>()) // the last change's serial number
            return std::nullopt;
        switch (Kind(*kind)) {
        case Kind::integer: {
            const auto value = reader.number<qint32>();
            if (value && *found == name)
                return *value;
            break;
        }
        case Kind::string: {
            const auto size = reader.number<quint32>();
            if (!size || !reader.text(*size))
                return std::nullopt;
            break;
        }
        case Kind::color:
            if (!reader.take(8))
                return std::nullopt;
            break;
        default:
            return std::nullopt;
        }
    }
    return std::nullopt;
}

bool areEventSoundsEnabled()
{
    xcb_connection_t *c = QtXcb::connection();
    if (!c)
        return true;
    const xcb_window_t daemon = QtXcb::selectionOwner(QtXcb::atom("_XSETTINGS_S0"));
    if (daemon == XCB_WINDOW_NONE)
        return true;
    const xcb_atom_t settings = QtXcb::atom("_XSETTINGS_SETTINGS");
    constexpr uint32_t most = 1 << 16;
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        c, xcb_get_property(c, false, daemon, settings, settings, 0, most), nullptr));
    if (!reply)
        return true;
    const QByteArray block(static_cast<const char *>(xcb_get_property_value(reply.get())),
                           xcb_get_property_value_length(reply.get()));
    return integer(block, "Net/EnableEventSounds").value_or(1) != 0;
}

} // namespace tovek::XSettings
