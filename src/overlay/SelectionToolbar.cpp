// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/SelectionToolbar.h"

#include "foundation/SystemColors.h"
#include "overlay/ColorPickerPopover.h"
#include "overlay/ToolbarButton.h"
#include "overlay/ToolbarPlacement.h"
#include "overlay/ToolbarTooltip.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>

namespace tovek {

namespace {

constexpr int gap = 4;
constexpr int padding = 12; ///< with the material's margin
constexpr double tooltipDistance = 22;
constexpr double popoverDistance = 8;
constexpr Material::Look look{};

using Callback = std::function<void()> SelectionToolbar::*;

struct Entry
{
    const char *symbol;
    const char *name;
    const char *tooltip;
    Callback callback; ///< none: the colour button
    std::optional<AnnotationTool> tool; ///< whose active state the button shows
};

// clang-format off
const Entry entries[] = {
    {"pointer.arrow.ipad", QT_TRANSLATE_NOOP("SelectionToolbar", "Pointer"),   QT_TRANSLATE_NOOP("SelectionToolbar", "Select (V)"),    &SelectionToolbar::onCursor,    AnnotationTool::none},
    {"rectangle",          QT_TRANSLATE_NOOP("SelectionToolbar", "Rectangle"), QT_TRANSLATE_NOOP("SelectionToolbar", "Rectangle (R)"), &SelectionToolbar::onRectangle, AnnotationTool::rectangle},
    {"line.diagonal",      QT_TRANSLATE_NOOP("SelectionToolbar", "Line"),      QT_TRANSLATE_NOOP("SelectionToolbar", "Line (L)"),      &SelectionToolbar::onLine,      AnnotationTool::line},
    {"arrow.up.right",     QT_TRANSLATE_NOOP("SelectionToolbar", "Arrow"),     QT_TRANSLATE_NOOP("SelectionToolbar", "Arrow (A)"),     &SelectionToolbar::onArrow,     AnnotationTool::arrow},
    {"character.textbox",  QT_TRANSLATE_NOOP("SelectionToolbar", "Text"),      QT_TRANSLATE_NOOP("SelectionToolbar", "Text (T)"),      &SelectionToolbar::onText,      AnnotationTool::text},
    {"",                   QT_TRANSLATE_NOOP("SelectionToolbar", "Colour"),    QT_TRANSLATE_NOOP("SelectionToolbar", "Colour"),        nullptr,                        {}},
    {"doc.on.doc",         QT_TRANSLATE_NOOP("SelectionToolbar", "Copy"),      QT_TRANSLATE_NOOP("SelectionToolbar", "Copy (\u2303C)"), &SelectionToolbar::onCopy,      {}},
    {"xmark",              QT_TRANSLATE_NOOP("SelectionToolbar", "Close"),     QT_TRANSLATE_NOOP("SelectionToolbar", "Close (\u238b)"),   &SelectionToolbar::onClose,     {}},
};
// clang-format on
constexpr size_t colorButton = 5;

QString translated(const char *text)
{
    return QCoreApplication::translate("SelectionToolbar", text);
}

} // namespace

SelectionToolbar::SelectionToolbar(BackdropProvider backdrop, QWidget *parent)
    : QWidget(parent)
    , m_backdrop(std::move(backdrop))
    , m_material(*this, m_backdrop, look)
    , m_popover(new ColorPickerPopover(m_backdrop, parent))
    , m_tooltip(new ToolbarTooltip(m_backdrop, parent))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::ArrowCursor);
    setAccessibleName(tr("Tools"));
    for (const Entry &entry : entries) {
        auto *made = new ToolbarButton(QString::fromLatin1(entry.symbol), translated(entry.name),
                                       translated(entry.tooltip), this);
        const size_t index = m_buttons.size();
        made->move(padding + int(index) * (ToolbarButton::side + gap), padding);
        connect(made, &QAbstractButton::clicked, this, [this, index] { click(index); });
        made->onPointedAt = [this](const ToolbarButton &of, bool isPointedAt) {
            isPointedAt && !isColorPickerOpen() ? showTooltip(of) : m_tooltip->fadeOut();
        };
        m_buttons.push_back(made);
    }
    m_popover->onColorSelected = [this](const QColor &color, ColorTarget target) {
        closeColorPicker();
        if (target == ColorTarget::newAnnotations)
            setSelectedColor(color);
        if (onColorSelected)
            onColorSelected(color, target);
    };
    m_popover->onClose = [this] { closeColorPicker(); };
    m_tooltip->onVisibilityChanged = [this] { tellCover(); };
    setActiveTool(AnnotationTool::none);
    setSelectedColor(SystemColors::red);
    resize(sizeHint());
    parent->installEventFilter(this);
}

SelectionToolbar::~SelectionToolbar()
{
    // They belong to the parent, but make no sense without the toolbar and use its backdrop.
    delete m_popover;
    delete m_tooltip;
}

QSize SelectionToolbar::sizeHint() const
{
    const int step = ToolbarButton::side + gap;
    return {int(std::size(entries)) * step - gap + 2 * padding, ToolbarButton::side + 2 * padding};
}

void SelectionToolbar::setActiveTool(AnnotationTool tool)
{
    for (size_t i = 0; i < std::size(entries); ++i) {
        if (entries[i].tool)
            m_buttons[i]->setActive(entries[i].tool == tool);
    }
}

void SelectionToolbar::setSelectedColor(const QColor &color)
{
    m_buttons[colorButton]->setSwatch(color);
    m_popover->setSelectedColor(color);
}

void SelectionToolbar::click(size_t index)
{
    if (index == colorButton) {
        isColorPickerOpen() ? closeColorPicker() : openColorPicker();
        return;
    }
    closeColorPicker();
    // The owner may remove the toolbar in its callback, and the callback with it.
    if (const std::function<void()> callback = this->*entries[index].callback)
        callback();
}

void SelectionToolbar::openColorPicker()
{
    m_tooltip->fadeOut();
    placeBeside(*m_popover, *m_buttons[colorButton], padding + popoverDistance);
    m_popover->show();
    m_popover->raise();
    if (m_buttons[colorButton]->hasFocus())
        m_popover->swatches().front()->setFocus(Qt::TabFocusReason);
    tellCover();
}

void SelectionToolbar::closeColorPicker()
{
    if (!isColorPickerOpen())
        return;
    const QWidget *focused = m_popover->focusWidget();
    if (focused && focused->hasFocus())
        m_buttons[colorButton]->setFocus(Qt::TabFocusReason);
    m_popover->hide();
    tellCover();
}

bool SelectionToolbar::isColorPickerOpen() const
{
    return !m_popover->isHidden();
}

void SelectionToolbar::backdropChanged()
{
    m_material.forget();
    m_popover->backdropChanged();
    m_tooltip->backdropChanged();
    update();
}

QRegion SelectionToolbar::coveredRegion() const
{
    // Also before it is shown: a frame of the overlay that comes later must leave room for it.
    QRegion region = geometry();
    for (const QWidget *widget : {static_cast<const QWidget *>(m_popover.data()),
                                  static_cast<const QWidget *>(m_tooltip.data())}) {
        if (!widget->isHidden())
            region += widget->geometry();
    }
    return region;
}

void SelectionToolbar::showTooltip(const ToolbarButton &of)
{
    m_tooltip->setText(of.tooltipText());
    placeBeside(*m_tooltip, of, tooltipDistance);
    m_tooltip->fadeIn();
    tellCover();
}

void SelectionToolbar::placeBeside(QWidget &widget, const ToolbarButton &of, double distance)
{
    const QWidget &view = *parentWidget();
    const QSizeF bounds(view.size());
    const ViewSpace space{{bounds.width(), bounds.height()}, 1};
    const QPoint corner = of.mapTo(&view, QPoint(0, 0));
    const double side = ToolbarButton::side;
    const Point bottomLeft = space.pointFromWidget(QPointF(corner) + QPointF(0, side));
    const Rect frame = framedBeside({bottomLeft.x, bottomLeft.y, side, side},
                                    {double(widget.width()), double(widget.height())}, space.size,
                                    distance, m_opensAbove);
    const Rect snapped = snappedToPixels(frame, space.size, devicePixelRatioF());
    widget.move(space.widgetFromRect(snapped).topLeft().toPoint());
}

void SelectionToolbar::tellCover()
{
    if (onCoverChanged)
        onCoverChanged();
}

bool SelectionToolbar::eventFilter(QObject *watched, QEvent *event)
{
    // A press anywhere on the view closes the colours and does there what it always does.
    if (watched == parentWidget() && event->type() == QEvent::MouseButtonPress)
        closeColorPicker();
    return QWidget::eventFilter(watched, event);
}

void SelectionToolbar::mousePressEvent(QMouseEvent *event)
{
    closeColorPicker();
    event->accept();
}

void SelectionToolbar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_material.paint(painter);
}

} // namespace tovek
