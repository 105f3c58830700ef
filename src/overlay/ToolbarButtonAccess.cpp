// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "overlay/ToolbarButtonAccess.h"

#include "overlay/ToolbarButton.h"

#include <QAccessibleWidget>

namespace tovek {

namespace {

/// One of several that exclude each other is a radio button to who does not see it; the toolkit
/// (Qt 6.4) knows no button but its own kinds.
class Access : public QAccessibleWidget
{
public:
    explicit Access(ToolbarButton *button) : QAccessibleWidget(button), m_button(*button) { }

    QAccessible::Role role() const override
    {
        return m_button.isCheckable() ? QAccessible::RadioButton : QAccessible::Button;
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = m_button.isCheckable();
        state.checked = m_button.isChecked();
        state.pressed = m_button.isDown();
        return state;
    }
    QStringList actionNames() const override
    {
        return QStringList{pressAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString &name) override
    {
        if (name == pressAction())
            m_button.click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    ToolbarButton &m_button;
};

QAccessibleInterface *accessTo(const QString &, QObject *object)
{
    auto *button = qobject_cast<ToolbarButton *>(object);
    return button ? new Access(button) : nullptr; // the toolkit's cache owns it
}

} // namespace

void installToolbarButtonAccess()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(&accessTo);
        return true;
    }();
}

} // namespace tovek
