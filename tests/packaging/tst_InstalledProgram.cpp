// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "desktop/Launched.h"
#include "desktop/Session.h"
#include "packaging/Prefix.h"
#include "support/Skip.h"

#include <QRegularExpression>
#include <QTest>

using namespace tovek;

namespace {

constexpr std::chrono::seconds patience(60);

} // namespace

/// The program as a package installs it, with its helpers in another folder than its own.
class TestInstalledProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(TestDesktop::missing());
        QVERIFY2(m_prefix.install(), qPrintable(m_prefix.error));
        qputenv("TOVEK_PROGRAM", m_prefix.path(QStringLiteral("bin/tovek")).toUtf8());
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }

    void leavesTheClipboardBehindWhenItQuits()
    {
        Session session;
        session.readsText = true;
        QVERIFY2(session.start(), qPrintable(session.error));
        QVERIFY(session.copy({200, 200}, {420, 330}));
        const QByteArray before = session.pasted();
        QVERIFY(!before.isEmpty());
        QVERIFY(session.desktop.run(
            QStringLiteral("/usr/bin/gdbus"),
            {"call", "--session", "--dest", "org.tovek.Tovek", "--object-path", "/org/tovek/Tovek",
             "--method", "org.freedesktop.Application.ActivateAction", "quit", "[]", "{}"}));
        QCOMPARE(session.tovek->program().waitForExit(patience), std::optional(0));
        QCOMPARE(session.pasted(), before);
    }

    void findsItsRecogniser()
    {
        if (!QFile::exists(QStringLiteral("/usr/share/tesseract-ocr/5/tessdata/eng.traineddata")))
            QSKIP("no English recognition model is installed");
        Session session;
        session.readsText = true;
        QVERIFY2(session.start(), qPrintable(session.error));
        Program *window = session.desktop.run(
            QStringLiteral(TOVEK_TEXT_WINDOW),
            {"80", "60", "600", "300", "DejaVu Sans", "14", "light", "words to read"});
        QVERIFY(window && window->waitForLine(QStringLiteral("painted"), patience));
        QVERIFY(session.open(RunningTovek::captureText));
        session.select({82, 62}, {678, 358});
        ClipboardReader reader(session.desktop.displayName());
        QVERIFY(session.isClosed());
        QVERIFY(waitUntil([&] { return reader.hasOwner(); }, patience));
        QCOMPARE(reader.read(QStringLiteral("UTF8_STRING")),
                 std::optional(QByteArray("words to read")));
    }

    void isStartedByTheBusForWhatIsAskedOfIt_data()
    {
        QTest::addColumn<QStringList>("message");
        QTest::addColumn<bool>("wantsSettings");
        const QString interface = QStringLiteral("org.freedesktop.Application.");
        QTest::newRow("launched") << QStringList{interface + "Activate", "{}"} << true;
        QTest::newRow("an action of its desktop file")
            << QStringList{interface + "ActivateAction", "start-capture", "[]", "{}"} << false;
    }
    void isStartedByTheBusForWhatIsAskedOfIt()
    {
        QFETCH(QStringList, message);
        QFETCH(bool, wantsSettings);
        Launched l;
        QVERIFY(l.startDesktop());
        QVERIFY(offer(*l.desktop));
        QVERIFY(l.call(message));
        const auto isCapturing = [&] {
            return !l.eye->overlays(QStringLiteral("tovek")).isEmpty();
        };
        const auto isOpen = [&] { return !windowsTitled(*l.eye, "General").isEmpty(); };
        QVERIFY(waitUntil([&] { return wantsSettings ? isOpen() : isCapturing(); }, patience));
        // The other does not come either.
        QVERIFY(!waitUntil([&] { return wantsSettings ? isCapturing() : isOpen(); },
                           std::chrono::seconds(1)));
        QVERIFY(l.activateAction(QStringLiteral("quit")));
    }

private:
    /// Has the bus start the installed program.
    bool offer(TestDesktop &desktop) const
    {
        const QString name = QStringLiteral("org.tovek.Tovek.service");
        QFile installed(m_prefix.path(QStringLiteral("share/dbus-1/services/") + name));
        QFile service(QDir(desktop.services()).filePath(name));
        if (!installed.open(QIODevice::ReadOnly) || !service.open(QIODevice::WriteOnly))
            return false;
        // It names the prefix that the build was configured for.
        QString text = QString::fromUtf8(installed.readAll());
        text.replace(QRegularExpression(QStringLiteral("(?<=\nExec=)\\S+")),
                     m_prefix.path(QStringLiteral("bin/tovek")));
        service.write(text.toUtf8());
        service.close();
        Program *reload =
            desktop.run(QStringLiteral("/usr/bin/gdbus"),
                        {"call", "--session", "--dest", "org.freedesktop.DBus", "--object-path",
                         "/org/freedesktop/DBus", "--method", "org.freedesktop.DBus.ReloadConfig"});
        return reload && reload->waitForExit(patience) == 0;
    }

    Prefix m_prefix;
};

QTEST_GUILESS_MAIN(TestInstalledProgram)
#include "tst_InstalledProgram.moc"
