// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QUrl>
#include <QVariantMap>
#include <QWidget>

#include <functional>

class QLabel;

namespace tovek {

/// The tab that names the program and its version.
class AboutTabView : public QWidget
{
    Q_OBJECT

public:
    /// `information` as BundleInformation gives it; `openUrl` shows a page in the browser.
    AboutTabView(const QVariantMap &information, std::function<void(const QUrl &)> openUrl,
                 QWidget *parent = nullptr);

    static QUrl website();

protected:
    void changeEvent(QEvent *event) override;

private:
    void colorVersion();

    QLabel *m_version;
};

} // namespace tovek
