// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/Tray.h"

#include <QTest>

using namespace tovek;

class TestTrayPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsWhatCanBeRecognised_data()
    {
        QTest::addColumn<Size>("picture");
        QTest::addColumn<Size>("room");
        QTest::addColumn<bool>("isItself");
        QTest::newRow("all the room it wants") << Size{72, 18} << Size{72, 22} << true;
        QTest::newRow("wide in a square") << Size{72, 18} << Size{22, 22} << false;
        QTest::newRow("wide in a large square") << Size{72, 18} << Size{48, 48} << true;
        QTest::newRow("just wide enough") << Size{72, 18} << Size{32, 32} << true;
        QTest::newRow("just not wide enough") << Size{72, 18} << Size{31, 31} << false;
        QTest::newRow("just high enough") << Size{27, 18} << Size{24, 24} << true;
        QTest::newRow("just not high enough") << Size{27, 18} << Size{23, 23} << false;
        QTest::newRow("square") << Size{18, 18} << Size{22, 22} << true;
        QTest::newRow("narrow") << Size{5, 18} << Size{22, 22} << true;
    }
    void showsWhatCanBeRecognised()
    {
        QFETCH(Size, picture);
        QFETCH(Size, room);
        QFETCH(bool, isItself);
        TrayPicture shown{picture, {}, {}};
        QCOMPARE(&shownIn(shown, room), &shown);
        shown.standIn = std::make_shared<TrayPicture>();
        QCOMPARE(&shownIn(shown, room), isItself ? &shown : shown.standIn.get());
        QCOMPARE(isLegibleIn(picture, room), isItself);
    }
};

QTEST_APPLESS_MAIN(TestTrayPicture)
#include "tst_TrayPicture.moc"
