// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/wayland/overlay/LayerPreviewShell.h"

#include "platform/Screens.h"
#include "platform/wayland/overlay/LayerMenu.h"

#include <QWindow>

namespace tovek {

namespace {

using namespace std::chrono_literals;

constexpr auto previewAnswerLimit = 500ms;
constexpr int margin = 12; // points to the edges, or to the panels
constexpr uint32_t upperRight = 1 | 8; // of the anchors

class LayerPreview : public PreviewSurface
{
public:
    LayerPreview(std::shared_ptr<MenuGlobals> menus, QWindow &window,
                 std::unique_ptr<LayerSurface> layer)
        : m_menus(std::move(menus))
        , m_window(window)
        , m_layer(std::move(layer))
    {
        m_layer->onClosed = [this] {
            if (onClosed)
                onClosed();
        };
    }
    ~LayerPreview() override { LayerPreview::orderOut(); }

    void orderFront() override { m_window.setVisible(true); }
    void orderOut() override
    {
        m_menu.reset();
        if (!m_layer)
            return;
        // The role before the surface, which the toolkit takes along when it hides the window.
        m_layer.reset();
        m_window.setVisible(false);
        m_menus->shell->connection().roundtrip(previewAnswerLimit);
    }
    bool placeMenu(QWindow &menu, QSize points) override
    {
        m_menu = m_layer ? LayerMenu::create(m_menus, *m_layer, menu, points) : nullptr;
        if (!m_menu)
            return false;
        m_menu->onDismissed = [this] {
            if (onMenuDismissed)
                onMenuDismissed();
        };
        return true;
    }
    void releaseMenu() override { m_menu.reset(); }

private:
    std::shared_ptr<MenuGlobals> m_menus;
    QWindow &m_window;
    std::unique_ptr<LayerSurface> m_layer;
    std::unique_ptr<LayerMenu> m_menu;
};

} // namespace

std::unique_ptr<LayerPreviewShell> LayerPreviewShell::create(const Screens &screens)
{
    auto shell = LayerShell::create();
    if (!shell)
        return nullptr;
    // The constructor is private.
    return std::unique_ptr<LayerPreviewShell>(new LayerPreviewShell(std::move(shell), screens));
}

LayerPreviewShell::LayerPreviewShell(std::shared_ptr<LayerShell> shell, const Screens &screens)
    : m_screens(screens)
    , m_shell(std::move(shell))
    , m_menus(std::make_shared<MenuGlobals>(m_shell))
{
}

LayerPreviewShell::~LayerPreviewShell() = default;

std::unique_ptr<PreviewSurface> LayerPreviewShell::create(QWindow &window, QSize points)
{
    window.setFlags(window.flags() | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint
                    | Qt::WindowDoesNotAcceptFocus);
    LayerSurface::Place place;
    place.anchors = upperRight;
    place.size = points;
    place.top = place.right = margin;
    place.nameSpace = "tovek-preview";
    place.panels = LayerSurface::Panels::areLeftFree;
    const auto screen = screenContaining(m_screens.all(), m_screens.mouseLocation());
    auto layer = LayerSurface::create(m_shell, window,
                                      screen ? toolkitScreen(screen->name) : nullptr, place);
    return layer ? std::make_unique<LayerPreview>(m_menus, window, std::move(layer)) : nullptr;
}

} // namespace tovek
