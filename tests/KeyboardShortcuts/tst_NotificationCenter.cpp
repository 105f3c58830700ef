// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "KeyboardShortcuts/NotificationCenter.h"

#include <QTest>

using namespace KeyboardShortcuts;

class TestNotificationCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        m_log.clear();
    }

    void tellsObserversOfTheNameInTheirOrder()
    {
        NotificationCenter center;
        const auto first = observe(center, QStringLiteral("a"), QStringLiteral("1"));
        const auto second = observe(center, QStringLiteral("a"), QStringLiteral("2"));
        const auto other = observe(center, QStringLiteral("b"), QStringLiteral("3"));
        center.post(QStringLiteral("a"), {{QStringLiteral("isActive"), true}});
        QCOMPARE(m_log, QStringList({QStringLiteral("1 1"), QStringLiteral("2 1")}));
    }

    void endsWithTheToken()
    {
        NotificationCenter center;
        auto token = observe(center, QStringLiteral("a"), QStringLiteral("1"));
        token = observe(center, QStringLiteral("a"), QStringLiteral("2"));
        center.post(QStringLiteral("a"));
        QCOMPARE(m_log, QStringList{QStringLiteral("2 0")});
        token.reset();
        center.post(QStringLiteral("a"));
        QCOMPARE(m_log.size(), 1);
    }

    void isOutlivedByATokenWithoutHarm()
    {
        NotificationCenter::Token token;
        {
            NotificationCenter center;
            token = observe(center, QStringLiteral("a"), QStringLiteral("1"));
        }
        token.reset();
    }

    void doesNotTellAnObserverThatEndedDuringTheCall()
    {
        NotificationCenter center;
        NotificationCenter::Token second;
        const auto first = center.observe(QStringLiteral("a"), [&](auto &) { second.reset(); });
        second = observe(center, QStringLiteral("a"), QStringLiteral("2"));
        center.post(QStringLiteral("a"));
        QVERIFY(m_log.isEmpty());
    }

    void letsAnObserverEndItself()
    {
        NotificationCenter center;
        int calls = 0;
        NotificationCenter::Token token;
        token = center.observe(QStringLiteral("a"), [&](auto &) {
            ++calls;
            token.reset();
        });
        center.post(QStringLiteral("a"));
        center.post(QStringLiteral("a"));
        QCOMPARE(calls, 1);
    }

    void doesNotTellAnObserverThatStartsDuringTheCall()
    {
        NotificationCenter center;
        NotificationCenter::Token late;
        const auto token = center.observe(QStringLiteral("a"), [&](auto &) {
            late = observe(center, QStringLiteral("a"), QStringLiteral("late"));
        });
        center.post(QStringLiteral("a"));
        QVERIFY(m_log.isEmpty());
    }

private:
    NotificationCenter::Token observe(NotificationCenter &center, const QString &name,
                                      const QString &mark)
    {
        return center.observe(name, [this, mark](const QVariantMap &info) {
            m_log << mark + QLatin1Char(' ')
                    + QString::number(info.value(QStringLiteral("isActive")).toBool());
        });
    }

    QStringList m_log;
};

QTEST_APPLESS_MAIN(TestNotificationCenter)
#include "tst_NotificationCenter.moc"
