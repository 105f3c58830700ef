// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "menubar/PreviewRow.h"

#include "menubar/PreviewPicture.h"

namespace tovek {

namespace {

constexpr int margin = 8;

} // namespace

PreviewRow::PreviewRow(const QImage &image, QObject *parent) : QWidgetAction(parent), m_image(image)
{
    setText(QStringLiteral("Last capture"));
}

QWidget *PreviewRow::createWidget(QWidget *parent)
{
    auto *picture = new PreviewPicture(m_image, margin, parent);
    picture->setMinimumWidth(PreviewPicture::box.width() + 2 * margin);
    picture->onDragged = onDragged;
    return picture;
}

} // namespace tovek
