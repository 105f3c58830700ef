// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

/// Reads every #include under src/ and fails on an arrow that runs upwards or sideways.
class TestArchitecture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void includesOnlyWhatTheRoomMayKnow_data()
    {
        QTest::addColumn<QString>("file");
        QDirIterator files(source(), {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next().mid(source().size() + 1);
            QTest::newRow(qPrintable(path)) << path;
        }
    }
    void includesOnlyWhatTheRoomMayKnow()
    {
        QFETCH(QString, file);
        for (const QString &target : includesOf(file))
            QVERIFY2(allowed(file, target),
                     qPrintable(QStringLiteral("%1 includes %2").arg(file, target)));
    }

    void knowsAForbiddenArrow()
    {
        QVERIFY(!allowed(QStringLiteral("overlay/A.cpp"), QStringLiteral("capture/B.h")));
        QVERIFY(!allowed(QStringLiteral("annotations/A.cpp"), QStringLiteral("text/B.h")));
        QVERIFY(!allowed(QStringLiteral("capture/A.cpp"), QStringLiteral("platform/x11/B.h")));
        QVERIFY(!allowed(QStringLiteral("platform/A.cpp"), QStringLiteral("platform/x11/B.h")));
        QVERIFY(!allowed(QStringLiteral("platform/x11/A.cpp"), QStringLiteral("overlay/B.h")));
        QVERIFY(!allowed(QStringLiteral("foundation/A.cpp"), QStringLiteral("platform/B.h")));
        QVERIFY(!allowed(QStringLiteral("KeyboardShortcuts/A.cpp"), QStringLiteral("app/B.h")));
        QVERIFY(!allowed(QStringLiteral("app/A.cpp"), QStringLiteral("update/program/B.h")));
        QVERIFY(
            !allowed(QStringLiteral("app/AppDelegate.cpp"), QStringLiteral("platform/linux/B.h")));
        QVERIFY(
            allowed(QStringLiteral("app/PlatformFactory.cpp"), QStringLiteral("platform/x11/B.h")));
        QVERIFY(!allowed(QStringLiteral("reading/A.cpp"), QStringLiteral("platform/B.h")));
        QVERIFY(!allowed(QStringLiteral("platform/x11/overlay/A.cpp"),
                         QStringLiteral("platform/x11/keys/B.h")));
        QVERIFY(allowed(QStringLiteral("platform/x11/keys/A.cpp"),
                        QStringLiteral("platform/linux/B.h")));
    }

    void allowsNoArrowThatNobodyUses()
    {
        QHash<QString, QSet<QString>> used;
        QDirIterator files(source(), {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next().mid(source().size() + 1);
            for (const QString &target : includesOf(path))
                used[roomOf(path)].insert(roomOf(target));
        }
        QStringList idle;
        for (auto room = rooms().begin(); room != rooms().end(); ++room) {
            for (const QString &to : room.value()) {
                if (!used.value(room.key()).contains(to))
                    idle << room.key() + " -> " + to;
            }
        }
        QVERIFY2(idle.isEmpty(), qPrintable(idle.join(QStringLiteral(", "))));
    }

private:
    static QString source() { return qEnvironmentVariable("TOVEK_SOURCE_DIR") + "/src"; }

    /// What a file of ours includes of ours.
    static QStringList includesOf(const QString &file)
    {
        QFile opened(source() + QLatin1Char('/') + file);
        if (!opened.open(QIODevice::ReadOnly))
            return {};
        static const QRegularExpression include(QStringLiteral("^ *#include \"([^\"]+)\""),
                                                QRegularExpression::MultilineOption);
        auto matches = include.globalMatch(QString::fromUtf8(opened.readAll()));
        QStringList targets;
        while (matches.hasNext()) {
            const QString target = matches.next().captured(1);
            // Generated headers stand in no room.
            if (!target.endsWith(QStringLiteral(".moc"))
                && !target.endsWith(QStringLiteral("-client.h")))
                targets << target;
        }
        return targets;
    }

    static const QHash<QString, QStringList> &rooms()
    {
        // What each room may include beside itself. Rules of a room include no platform; their
        // library, which links no widgets, guards that by itself.
        static const QHash<QString, QStringList> arrows{
            {"foundation", {}},
            {"look", {"foundation"}},
            {"platform", {"foundation"}},
            {"reading", {"foundation"}},
            {"reading/fonts", {"reading"}},
            {"platform/linux",
             {"platform", "platform/linux/ocr", "platform/linux/fonts", "reading", "reading/fonts",
              "foundation"}},
            {"platform/linux/fonts", {"reading/fonts"}},
            {"platform/linux/ocr", {"platform", "reading"}},
            {"platform/linux/clipboard", {"platform", "foundation"}},
            {"platform/null", {"platform", "platform/linux", "foundation"}},
            {"platform/mutter", {"platform/portal", "platform/linux", "platform", "foundation"}},
            {"platform/portal", {"platform/linux", "platform", "foundation"}},
            {"platform/x11", {"foundation"}},
            {"platform/x11/capture", {"platform/x11", "platform", "foundation"}},
            {"platform/x11/overlay",
             {"platform/x11/capture", "platform/x11", "platform", "foundation"}},
            {"platform/x11/keys", {"platform/x11", "platform/linux", "platform", "foundation"}},
            {"platform/x11/clipboard", {"platform/x11", "foundation", "platform/linux/clipboard"}},
            {"platform/x11/tray", {"platform/x11", "platform"}},
            {"platform/wayland", {"foundation"}},
            {"platform/wayland/clipboard",
             {"platform/wayland", "foundation", "platform/linux/clipboard"}},
            {"platform/wayland/capture",
             {"platform/wayland", "platform/linux", "platform", "foundation"}},
            {"platform/wayland/overlay",
             {"platform/wayland/capture", "platform/wayland", "platform", "foundation"}},
            {"platform/wayland/keys",
             {"platform/wayland", "platform/linux", "platform", "foundation"}},
            {"annotations", {"foundation"}},
            {"text", {"platform", "foundation"}},
            {"overlay", {"annotations", "text", "platform", "foundation"}},
            {"feedback", {"platform", "foundation"}},
            {"update", {"platform", "foundation"}},
            // A program of its own: nothing else includes what uses the network.
            {"update/program", {"update", "look", "foundation"}},
            {"KeyboardShortcuts", {"platform", "foundation"}},
            {"capture", {"overlay", "text", "platform", "foundation"}},
            {"command", {"text", "platform", "foundation"}},
            {"menubar", {"platform", "foundation"}},
            {"app",
             {"command", "menubar", "capture", "overlay", "text", "KeyboardShortcuts", "feedback",
              "update", "look", "platform", "foundation"}},
        };
        return arrows;
    }

    static bool allowed(const QString &from, const QString &to)
    {
        const QString fromRoom = roomOf(from);
        const QString toRoom = roomOf(to);
        if (fromRoom == toRoom)
            return true;
        // The one place that chooses between the desktop's implementations.
        static const QRegularExpression factory(
            QStringLiteral("^app/(Platform(Factory|Parts)|(X11|Wayland|Portal)Platform)\\."));
        if (factory.match(from).hasMatch() && toRoom.startsWith("platform"))
            return true;
        return rooms().value(fromRoom).contains(toRoom);
    }

    static QString roomOf(const QString &path) { return path.left(path.lastIndexOf('/')); }
};

QTEST_APPLESS_MAIN(TestArchitecture)
#include "tst_Architecture.moc"
