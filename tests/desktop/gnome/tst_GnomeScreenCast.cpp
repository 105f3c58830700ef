// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// Pictures over mutter's ScreenCast, of GNOME's own shell and through a PipeWire of its own.

#include "fakes/FakeScreenGrabber.h"
#include "platform/mutter/MutterScreenGrabber.h"
#include "support/GnomeDesktop.h"
#include "support/Pixels.h"
#include "support/Skip.h"
#include "support/Wait.h"

#include <QStandardPaths>

using namespace tovek;
using namespace std::chrono_literals;

namespace {

constexpr int escape = 1;
constexpr auto patience = 20s;

QString missing()
{
    for (const char *name : {"pipewire", "wireplumber"}) {
        if (QStandardPaths::findExecutable(QLatin1String(name)).isEmpty())
            return QLatin1String(name) + QStringLiteral(" is not installed");
    }
    return ScreenCastFrames::program().isEmpty()
        ? QStringLiteral("this build has no tovek-screencast, for want of libpipewire")
        : GnomeDesktop::missing();
}

/// Colours that differ from pixel to pixel.
QImage background()
{
    QImage image(1600, 1200, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 251, y % 241, (x * 7 + y * 13) % 239));
    }
    return image;
}

QString text(QRect rect)
{
    return QStringLiteral("%1 x %2 pixels at %3, %4")
        .arg(rect.width())
        .arg(rect.height())
        .arg(rect.x())
        .arg(rect.y());
}

/// Around all pixels that differ, of pictures of one size.
QRect difference(const QImage &one, const QImage &other)
{
    QRect found;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y))
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

} // namespace

class TestGnomeScreenCast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        SKIP_BECAUSE(missing());
        GnomeDesktop::Setup setup;
        setup.scales = {1, 1};
        setup.background = background();
        QVERIFY2(m_desktop.start(setup), qPrintable(m_desktop.error()));
        QVERIFY(m_desktop.run(QStringLiteral("pipewire")));
        const QString run = m_desktop.environment().value(QStringLiteral("XDG_RUNTIME_DIR"));
        QVERIFY(waitUntil([&] { return QFile::exists(run + QStringLiteral("/pipewire-0")); }));
        QVERIFY(m_desktop.run(QStringLiteral("wireplumber")));
        // For the process that this one starts.
        for (const char *name : {"XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS"})
            qputenv(name, m_desktop.environment().value(QLatin1String(name)).toUtf8());
        m_grabber = std::make_unique<MutterScreenGrabber>(
            ScreenCastFrames::program(), [this] { return displays(); },
            std::make_unique<FakeScreenGrabber>());
        m_grabber->setLimit(patience);
    }
    void cleanupTestCase() { m_grabber.reset(); }

    void takesNativePixels_data()
    {
        QTest::addColumn<QList<double>>("scales");
        QTest::newRow("one pixel a point") << QList<double>{1, 1};
        QTest::newRow("two and a fraction") << QList<double>{2, 1.5};
        QTest::newRow("one again") << QList<double>{1, 1};
    }
    void takesNativePixels()
    {
        QFETCH(QList<double>, scales);
        QVERIFY(m_desktop.setScales(scales));
        // Its sign of a recording would be there in one picture and not in the other.
        m_desktop.evaluate(QStringLiteral("Main.layoutManager.panelBox.opacity = 0"));
        QVERIFY2(waitUntil([this] { return areSame(); }, patience), qPrintable(m_different));
        m_desktop.evaluate(QStringLiteral("Main.layoutManager.panelBox.opacity = 255"));
    }

    void showsWhatIsThereWhenItIsAsked()
    {
        m_desktop.evaluate(QStringLiteral("Main.layoutManager.panelBox.opacity = 0"));
        for (const char *color : {"#ff0000", "#00ff00", "#0000ff"}) {
            m_desktop.evaluate(
                QStringLiteral("global.mark?.destroy(); global.mark = new imports.gi.St.Widget({"
                               "style: 'background-color: %1', x: 300, y: 400, width: 50, "
                               "height: 40}); Main.uiGroup.add_child(global.mark)")
                    .arg(QLatin1String(color)));
            const QList<QImage> images = shots();
            QCOMPARE(images.size(), 2);
            QCOMPARE(images[0].pixelColor(320, 420), QColor(QLatin1String(color)));
        }
        m_desktop.evaluate(
            QStringLiteral("global.mark.destroy(); Main.layoutManager.panelBox.opacity = 255"));
    }

    void differsFromTheScreenByASignInThePanelAlone()
    {
        choose();
        QRect changed;
        // The panel has a clock as well, and a sign of the test's own hand, which moves aside.
        const bool hasSign = waitUntil(
            [&] {
                const QImage before = m_desktop.look();
                const QByteArray png = m_desktop.output(qEnvironmentVariable("TOVEK_PROGRAM"),
                                                        {"shot", "--output", "-"});
                const QImage shot = QImage::fromData(png, "PNG");
                if (shot.size() != before.size())
                    return false;
                changed = difference(shot, before);
                return !changed.isEmpty() && changed.left() > 1200 && changed.bottom() < 40;
            },
            patience);
        QVERIFY2(hasSign, qPrintable(text(changed)));
    }

    void opensOverlaysWithoutAPermission()
    {
        choose();
        const QStringList pictures = m_desktop.pictures(); // its background is one
        Program *tovek = m_desktop.run(qEnvironmentVariable("TOVEK_PROGRAM"), {"--background"});
        QVERIFY(tovek
                && tovek->waitForLine(QStringLiteral("Wayland: capturing over mutter's ScreenCast, "
                                                     "a private interface"),
                                      patience));
        QVERIFY(waitUntil([this] { return m_desktop.act(QStringLiteral("start-capture")); }));
        QVERIFY(waitUntil(
            [this] {
                return m_desktop.unmanagedTitles().size() == GnomeDesktop::monitors().size();
            },
            patience));
        m_desktop.tap(escape);
        QVERIFY(waitUntil([this] { return m_desktop.unmanagedTitles().isEmpty(); }, patience));
        QVERIFY(!tovek->lines().join(QLatin1Char('\n')).contains("gave no picture"));
        QCOMPARE(m_desktop.pictures(), pictures);
        // Nothing of it stays.
        QCOMPARE(m_desktop.output(QStringLiteral("pgrep"),
                                  {"-f", "-P", QString::number(tovek->pid()), "screencast"}),
                 QByteArray());
    }

private:
    void choose()
    {
        QDir().mkpath(m_desktop.configFolder() + QStringLiteral("/tovek"));
        QVERIFY(
            m_desktop.writeFile(m_desktop.configFolder() + QStringLiteral("/tovek/defaults.json"),
                                R"({"useMutterScreenCast": true})"));
    }
    std::vector<PortalDisplay> displays() const
    {
        std::vector<PortalDisplay> displays;
        for (qsizetype i = 0; i < GnomeDesktop::monitors().size(); ++i)
            displays.push_back({quint32(i + 1), m_desktop.place(i), GnomeDesktop::monitors()[i]});
        return displays;
    }
    QList<QImage> shots()
    {
        const auto content = m_grabber->shareableContent();
        QList<QImage> images;
        for (const CaptureDisplay &display :
             content ? content->displays : std::vector<CaptureDisplay>())
            images << m_grabber->capture(*content, display, {}).result().frozen->pixels().result();
        return images;
    }
    bool areSame()
    {
        const QList<QImage> images = shots();
        m_different = images.size() == GnomeDesktop::monitors().size()
            ? QString()
            : QStringLiteral("%1 pictures").arg(images.size());
        for (qsizetype i = 0; i < images.size(); ++i) {
            const QImage look = m_desktop.lookAt(i);
            if (differentPixels(images[i], look) != 0) {
                m_different += QStringLiteral("monitor %1 of %2 pixels a row, as %3: %4 differ; ")
                                   .arg(i)
                                   .arg(look.width())
                                   .arg(images[i].width())
                                   .arg(differentPixels(images[i], look));
            }
        }
        return m_different.isEmpty();
    }

    GnomeDesktop m_desktop;
    QString m_different; ///< what, the last time
    std::unique_ptr<MutterScreenGrabber> m_grabber;
};

QTEST_GUILESS_MAIN(TestGnomeScreenCast)
#include "tst_GnomeScreenCast.moc"
