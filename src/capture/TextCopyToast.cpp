// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/TextCopyToast.h"

#include "foundation/MainThread.h"

#include <QPointer>

#include <algorithm>

namespace tovek {

namespace {

QString copied()
{
    return QStringLiteral("Text copied to clipboard");
}

QString withAdvice(const MissingModel &model)
{
    return QStringLiteral("%1. Install %2 to read %3").arg(copied(), model.package, model.reads);
}

} // namespace

TextCopyToast::TextCopyToast(const CaptureFeedback &feedback) : m_feedback(feedback) { }

void TextCopyToast::show(const std::shared_ptr<MissingModels> &missing,
                         const std::optional<Screen> &screen)
{
    Q_ASSERT(isMainThread());
    if (m_missing)
        m_missing->onMore = nullptr;
    m_missing = missing;
    m_missing->onMore = [context = QPointer(this)] {
        if (context)
            context->learnedMore();
    };
    if (!m_feedback.toast)
        return;
    const MissingModel *model = untold();
    m_feedback.toast(model ? withAdvice(*model) : copied(), QStringLiteral("doc.text"), screen);
    if (model)
        m_toldPackages += model->package;
}

void TextCopyToast::learnedMore()
{
    // One that asks for a package already says something else, and stays as it is.
    const MissingModel *model = untold();
    if (model && m_feedback.extendToast && m_feedback.extendToast(copied(), withAdvice(*model)))
        m_toldPackages += model->package;
}

const MissingModel *TextCopyToast::untold() const
{
    const auto found =
        std::find_if(m_missing->known.begin(), m_missing->known.end(),
                     [this](const auto &model) { return !m_toldPackages.contains(model.package); });
    return found != m_missing->known.end() ? &*found : nullptr;
}

} // namespace tovek
