// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/PermissionRequestView.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QWindow>

#include <algorithm>

namespace tovek {

namespace {

constexpr double symbolSize = 56;
constexpr int topPadding = 24;
constexpr int sidePadding = 24;
constexpr int bottomPadding = 20;
constexpr int numberWidth = 16;
constexpr int numberGap = 8;
constexpr int buttonGap = 12;
constexpr int buttonPadding = 16; // more room beside the text than styles give
constexpr int blockGap = 8;
constexpr int stepGap = 3;
constexpr int headlineSize = 13;
constexpr int subheadlineSize = 11;
constexpr int usualSize = 13; ///< of the desktop's font, in pixels

CaptureAdvice askForPermission()
{
    return {
        QStringLiteral("Screen Recording Permission Required"),
        QStringLiteral("Tovek needs screen recording permission to capture screenshots. This "
                       "allows the app to see and capture the content on your screen."),
        {
            QStringLiteral("Click \"Open System Settings\" below"),
            QStringLiteral("Find Tovek in the list and enable it"),
            QStringLiteral("You may need to restart Tovek"),
        },
        true,
    };
}

QColor secondaryColor(const QWidget &widget)
{
    QColor color = widget.palette().color(QPalette::WindowText);
    color.setAlphaF(0.62F);
    return color;
}

QLabel *makeLabel(const QString &text, int size, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    QFont font = label->font();
    // The sizes are for the usual font; who has a larger one needs it here too.
    font.setPixelSize(size * std::max(usualSize, QFontInfo(font).pixelSize()) / usualSize);
    label->setFont(font);
    // The window is moved by its background, and that is everything but the buttons.
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

} // namespace

PermissionRequestView::PermissionRequestView(const SymbolSource &symbols,
                                             const std::optional<CaptureAdvice> &advice,
                                             QWidget *parent)
    : QWidget(parent)
    , m_symbols(symbols)
    , m_advice(advice ? *advice : askForPermission())
{
    setAccessibleName(m_advice.title);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, topPadding, 0, bottomPadding);
    column->setSpacing(blockGap);
    addExplanation(*column);
    column->addLayout(makeSteps());
    column->addStretch(1);
    addButtons(*column);
    updateColors();
}

QSize PermissionRequestView::sizeFor(QSize least) const
{
    const int width = std::max(least.width(), layout()->minimumSize().width());
    return {width, std::max(least.height(), layout()->totalHeightForWidth(width))};
}

void PermissionRequestView::addExplanation(QVBoxLayout &column)
{
    m_symbol = makeLabel({}, headlineSize, this);
    m_symbol->setAlignment(Qt::AlignCenter);
    column.addWidget(m_symbol);

    auto *headline = makeLabel(m_advice.title, headlineSize, this);
    QFont bold = headline->font();
    bold.setWeight(QFont::DemiBold);
    headline->setFont(bold);
    headline->setAlignment(Qt::AlignCenter);
    column.addWidget(headline);

    auto *text = makeLabel(m_advice.explanation, subheadlineSize, this);
    m_secondary.push_back(text);
    text->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    text->setWordWrap(true);
    text->setContentsMargins(sidePadding, 0, sidePadding, 0);
    column.addWidget(text);
}

QGridLayout *PermissionRequestView::makeSteps()
{
    auto *grid = new QGridLayout; // the caller's column takes it over
    grid->setContentsMargins(sidePadding, 0, sidePadding, 0);
    grid->setHorizontalSpacing(numberGap);
    grid->setVerticalSpacing(stepGap);
    grid->setColumnMinimumWidth(0, numberWidth);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const QString &step : std::as_const(m_advice.steps)) {
        auto *number = makeLabel({}, subheadlineSize, this);
        number->setText(QStringLiteral("%1.").arg(row + 1));
        m_secondary.push_back(number);
        grid->addWidget(number, row, 0, Qt::AlignRight | Qt::AlignTop);
        auto *text = makeLabel(step, subheadlineSize, this);
        text->setWordWrap(true);
        grid->addWidget(text, row, 1, Qt::AlignTop);
        ++row;
    }
    return grid;
}

void PermissionRequestView::addButtons(QVBoxLayout &column)
{
    auto *row = new QHBoxLayout; // the column takes it over
    row->setSpacing(buttonGap);
    row->addStretch(1);
    auto *leave =
        addButton(*row, m_advice.hasSettings ? QStringLiteral("Cancel") : QStringLiteral("Close"));
    connect(leave, &QPushButton::clicked, this, [this] {
        if (onDismiss)
            onDismiss();
    });
    QPushButton *prominent = leave;
    if (m_advice.hasSettings) {
        prominent = addButton(*row, m_advice.button);
        connect(prominent, &QPushButton::clicked, this, [this] {
            if (onOpenSettings)
                onOpenSettings();
        });
    }
    row->addStretch(1);
    m_prominent = prominent;
    prominent->setDefault(true);
    prominent->setFocus();
    column.addLayout(row);
}

QPushButton *PermissionRequestView::addButton(QHBoxLayout &row, const QString &text)
{
    auto *button = new QPushButton(text, this);
    button->setAccessibleName(text);
    button->setMinimumWidth(button->sizeHint().width() + buttonPadding);
    row.addWidget(button);
    return button;
}

/// The desktop may turn dark while the window is open.
void PermissionRequestView::updateColors()
{
    m_symbol->setPixmap(
        QPixmap::fromImage(m_symbols(QStringLiteral("rectangle.dashed.badge.record"),
                                     secondaryColor(*this), symbolSize, devicePixelRatioF())));
    QPalette secondary;
    secondary.setColor(QPalette::WindowText, secondaryColor(*this));
    for (QLabel *label : m_secondary)
        label->setPalette(secondary);
    QPalette prominent;
    prominent.setColor(QPalette::Button, palette().color(QPalette::Highlight));
    prominent.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
    m_prominent->setPalette(prominent);
}

void PermissionRequestView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && m_prominent)
        updateColors();
    QWidget::changeEvent(event);
}

void PermissionRequestView::keyPressEvent(QKeyEvent *event)
{
    const bool leaves = event->key() == Qt::Key_Escape || !m_advice.hasSettings;
    const auto &action = leaves ? onDismiss : onOpenSettings;
    switch (event->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (action)
            action();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void PermissionRequestView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && window()->windowHandle())
        window()->windowHandle()->startSystemMove();
}

} // namespace tovek
