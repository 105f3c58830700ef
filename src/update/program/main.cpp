// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "update/program/UpdateBuild.h"
#include "update/program/UpdateProgram.h"

#include <QNetworkProxyFactory>

int main(int argc, char **argv)
{
    const tovek::UpdateBuild build{QUrl(QStringLiteral(TOVEK_UPDATE_FEED)),
                                   QByteArray::fromBase64(TOVEK_UPDATE_KEY)};
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    return tovek::runUpdateProgram(argc, argv, build);
}
