// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The program that checks for updates, as it is built for a server of a test's own: the variables
// TEST_FEED, TEST_KEY (Base64) and TEST_CERTIFICATE (a file) say which. The real one has the first
// two from its build and trusts the system's certificates.

#include "update/program/UpdateBuild.h"
#include "update/program/UpdateProgram.h"

#include <QCoreApplication>
#include <QNetworkProxyFactory>
#include <QSslCertificate>
#include <QSslConfiguration>

namespace {

/// As soon as there is an application; the toolkit's TLS cannot be set up before that.
void trustTheServer()
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(
        QSslCertificate::fromPath(qEnvironmentVariable("TEST_CERTIFICATE")));
    QSslConfiguration::setDefaultConfiguration(configuration);
}
Q_COREAPP_STARTUP_FUNCTION(trustTheServer)

} // namespace

int main(int argc, char **argv)
{
    tovek::UpdateBuild build;
    build.feed = QUrl(qEnvironmentVariable("TEST_FEED"));
    build.publicKey = QByteArray::fromBase64(qgetenv("TEST_KEY"));
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    return tovek::runUpdateProgram(argc, argv, build);
}
