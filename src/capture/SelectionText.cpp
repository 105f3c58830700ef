// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "capture/SelectionText.h"

#include "foundation/MainThread.h"
#include "foundation/WhenReady.h"

#include <QPointer>

namespace tovek {

SelectionText::SelectionText(Recognize recognize) : m_recognize(std::move(recognize)) { }

void SelectionText::start(const Request &request)
{
    Q_ASSERT(isMainThread());
    stop();
    m_missing = std::make_shared<MissingModels>();
    const TellMissing tellMissing = [missing = m_missing](const MissingModel &model) {
        missing->known.push_back(model);
        if (missing->onMore)
            missing->onMore();
    };
    const auto isCurrent = [this, serial = m_serial] { return serial == m_serial; };
    whenReady(request.pixels, this, [=, this](const QImage &pixels) {
        if (!isCurrent())
            return;
        const auto image = request.crop(pixels);
        if (!image)
            return request.onNoImage();
        if (!m_recognize)
            return;
        Use tellPart;
        if (request.onPart) {
            tellPart = [=, context = QPointer(this)](const std::vector<TextRegion> &regions) {
                if (context && isCurrent())
                    request.onPart(regions);
            };
        }
        m_recognition = m_recognize(*image, tellPart, tellMissing);
        whenReady(m_recognition, this, [=](const std::vector<TextRegion> &regions) {
            if (isCurrent())
                request.onRead(regions);
        });
    });
}

void SelectionText::stop()
{
    Q_ASSERT(isMainThread());
    m_recognition.cancel();
    m_recognition = {};
    ++m_serial;
}

} // namespace tovek
