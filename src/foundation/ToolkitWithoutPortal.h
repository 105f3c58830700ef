// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

namespace tovek {

/// While the application object is made: the toolkit leaves the desktop's portal alone. It would
/// start it to ask for a colour picker that nobody here uses and, from Qt 6.11 on, to give it the
/// program's name, with a complaint on standard error wherever that is refused. What we ask of a
/// portal goes over a connection of our own, which says itself who asks. Not longer than that:
/// programs started from here would do without it too. Whoever has chosen keeps the choice.
class ToolkitWithoutPortal
{
public:
    ToolkitWithoutPortal();
    ~ToolkitWithoutPortal();
    ToolkitWithoutPortal(const ToolkitWithoutPortal &) = delete;
    ToolkitWithoutPortal &operator=(const ToolkitWithoutPortal &) = delete;

private:
    bool m_isOurs;
};

/// The application object, made without the portal.
template <typename Application>
Application makeApplication(int &argc, char **argv)
{
    const ToolkitWithoutPortal withoutPortal;
    return Application(argc, argv);
}

} // namespace tovek
