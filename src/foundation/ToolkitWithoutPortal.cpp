// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "foundation/ToolkitWithoutPortal.h"

#include <QtGlobal>

namespace tovek {

namespace {

constexpr char avoidsPortal[] = "QT_NO_XDG_DESKTOP_PORTAL";

} // namespace

ToolkitWithoutPortal::ToolkitWithoutPortal() : m_isOurs(!qEnvironmentVariableIsSet(avoidsPortal))
{
    if (m_isOurs)
        qputenv(avoidsPortal, "1");
}

ToolkitWithoutPortal::~ToolkitWithoutPortal()
{
    if (m_isOurs)
        qunsetenv(avoidsPortal);
}

} // namespace tovek
