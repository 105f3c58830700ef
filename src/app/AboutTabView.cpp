// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "app/AboutTabView.h"

#include "app/BundleInformation.h"
#include "foundation/Symbol.h"
#include "look/ModernStyle.h"
#include "look/ScaledLabel.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace tovek {

namespace {

constexpr int iconSide = 84;
constexpr double nameScale = 1.5;

/// The program's own drawing, sharp at every scale.
class IconView : public QWidget
{
public:
    explicit IconView(QWidget *parent)
        : QWidget(parent)
        , m_icon(Symbol::fromFile(QStringLiteral(":/org.tovek.Tovek.svg")))
    {
        setFixedSize(iconSide, iconSide);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (m_icon)
            m_icon->paint(painter, rect(), palette().color(QPalette::WindowText));
    }

private:
    std::optional<Symbol> m_icon;
};

} // namespace

AboutTabView::AboutTabView(const QVariantMap &information,
                           std::function<void(const QUrl &)> openUrl, QWidget *parent)
    : QWidget(parent)
    , m_version(new QLabel(BundleInformation::versionLine(information), this))
{
    auto *icon = new IconView(this);
    const QString programName =
        BundleInformation::string(information, QStringLiteral("CFBundleName"));
    icon->setAccessibleName(tr("%1 icon").arg(programName));
    auto *name = new ScaledLabel(programName, nameScale, this, QFont::DemiBold);
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    colorVersion();
    auto *visit = new QPushButton(tr("Website"), this);
    visit->setToolTip(website().toDisplayString());
    connect(visit, &QPushButton::clicked, this, [open = std::move(openUrl)] { open(website()); });

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 0, 16, 12);
    layout->setSpacing(4);
    layout->addStretch();
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addSpacing(4);
    layout->addWidget(name, 0, Qt::AlignHCenter);
    layout->addWidget(m_version, 0, Qt::AlignHCenter);
    layout->addSpacing(10);
    layout->addWidget(visit, 0, Qt::AlignHCenter);
    layout->addStretch();
}

QUrl AboutTabView::website()
{
    return QUrl(QStringLiteral("https://tovek.org"));
}

void AboutTabView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        colorVersion();
    QWidget::changeEvent(event);
}

void AboutTabView::colorVersion()
{
    QPalette colors;
    colors.setColor(QPalette::WindowText, ModernStyle::secondaryTextColor(palette()));
    m_version->setPalette(colors);
}

} // namespace tovek
