// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/TextToast.h"

#include "foundation/MainThread.h"

#include <QPointer>

#include <algorithm>

namespace tovek {

TextToast::TextToast(const CaptureFeedback &feedback) : m_feedback(feedback) { }

void TextToast::copied(const std::shared_ptr<MissingModels> &missing,
                       const std::optional<Screen> &screen)
{
    m_message = QStringLiteral("Text copied to clipboard");
    show(QStringLiteral("doc.text"), missing, screen);
}

void TextToast::noneFound(const std::shared_ptr<MissingModels> &missing,
                          const std::optional<Screen> &screen)
{
    m_message = QStringLiteral("No text detected");
    show(QStringLiteral("xmark.circle.fill"), missing, screen);
}

void TextToast::show(const QString &symbol, const std::shared_ptr<MissingModels> &missing,
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
    m_feedback.toast(model ? withAdvice(*model) : m_message, symbol, screen);
    if (model)
        m_toldPackages += model->package;
}

void TextToast::learnedMore()
{
    // One that asks for a package already says something else, and stays as it is.
    const MissingModel *model = untold();
    if (model && m_feedback.extendToast && m_feedback.extendToast(m_message, withAdvice(*model)))
        m_toldPackages += model->package;
}

QString TextToast::withAdvice(const MissingModel &model) const
{
    return QStringLiteral("%1. Install %2 to read %3").arg(m_message, model.package, model.reads);
}

const MissingModel *TextToast::untold() const
{
    const auto found =
        std::find_if(m_missing->known.begin(), m_missing->known.end(),
                     [this](const auto &model) { return !m_toldPackages.contains(model.package); });
    return found != m_missing->known.end() ? &*found : nullptr;
}

} // namespace tovek
