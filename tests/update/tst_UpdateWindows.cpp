// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "look/Look.h"
#include "update/UpdateChoice.h"
#include "update/program/UpdateWindow.h"
#include "update/program/UpdateWindows.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

using namespace tovek;

class TestUpdateWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        useModernLook();
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void init()
    {
        QTest::failOnWarning(
            QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
        m_answers.clear();
        m_cancels = 0;
        m_reads = 0;
        m_windows = std::make_unique<UpdateWindows>(UpdateWindows::Arrival::inFront);
        m_windows->onAnswered = [this](UpdateAnswer answer) { m_answers.append(answer); };
        m_windows->onCanceled = [this] { ++m_cancels; };
        m_windows->onMessageRead = [this] { ++m_reads; };
    }
    void cleanup() { m_windows.reset(); }

    void offersWithNotesAndThreeAnswers()
    {
        m_windows->showOffer(offer(), QStringLiteral("1.0"));
        QVERIFY(window().accessibleDescription().contains(QStringLiteral("2.0")));
        QVERIFY(window().accessibleDescription().contains(QStringLiteral("1.0")));
        const auto *notes = window().findChild<QPlainTextEdit *>();
        QVERIFY(notes && notes->isReadOnly());
        QCOMPARE(notes->toPlainText(), QStringLiteral("<b>Faster</b>\nFiner"));
        QStringList texts;
        for (const QPushButton *button : window().findChildren<QPushButton *>())
            texts.append(button->text());
        QCOMPARE(texts, (QStringList{"Skip This Version", "Remind Me Later", "Install Update"}));
        QVERIFY(button("Install Update")->isDefault());
        QVERIFY(button("Skip This Version")->x() < button("Remind Me Later")->x());
        QVERIFY(button("Remind Me Later")->x() < button("Install Update")->x());
    }

    void answersOnce_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<UpdateAnswer>("answer");
        QTest::newRow("skip") << QStringLiteral("Skip This Version") << UpdateAnswer::skip;
        QTest::newRow("later") << QStringLiteral("Remind Me Later") << UpdateAnswer::later;
        QTest::newRow("install") << QStringLiteral("Install Update") << UpdateAnswer::install;
        QTest::newRow("Escape") << QString() << UpdateAnswer::later;
    }
    void answersOnce()
    {
        QFETCH(QString, chosen);
        QFETCH(UpdateAnswer, answer);
        m_windows->showOffer(offer(), QStringLiteral("1.0"));
        if (chosen.isEmpty()) {
            QTest::keyPress(&window(), Qt::Key_Escape);
        } else {
            QPushButton *pressed = button(chosen);
            QTest::mouseClick(pressed, Qt::LeftButton);
            QTest::mouseClick(pressed, Qt::LeftButton);
        }
        QCOMPARE(m_answers, QList<UpdateAnswer>{answer});
    }

    void closingTheOfferIsNotAnAnswerForEver()
    {
        m_windows->showOffer(offer(), QStringLiteral("1.0"));
        window().close();
        QCOMPARE(m_answers, QList<UpdateAnswer>{UpdateAnswer::later});
    }

    void showsTheDownload()
    {
        m_windows->showDownload(0, 4'000'000);
        auto *bar = window().findChild<QProgressBar *>();
        QVERIFY(bar);
        QCOMPARE(bar->value(), bar->minimum());
        m_windows->showDownload(1'000'000, 4'000'000);
        QCOMPARE(bar->value() * 4, bar->maximum());
        QCOMPARE(window().accessibleDescription(), QStringLiteral("1.0 MB of 4.0 MB"));
        m_windows->showDownload(4'000'000, 4'000'000);
        QCOMPARE(bar->value(), bar->maximum());
        QCOMPARE(m_cancels, 0);
    }

    void cancelsTheDownload_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("button") << false;
        QTest::newRow("Escape") << true;
    }
    void cancelsTheDownload()
    {
        QFETCH(bool, byKey);
        m_windows->showDownload(0, 10);
        if (byKey)
            QTest::keyPress(&window(), Qt::Key_Escape);
        else
            QTest::mouseClick(button("Cancel"), Qt::LeftButton);
        QCOMPARE(m_cancels, 1);
    }

    void cancelsNothingWhileItInstalls()
    {
        m_windows->showDownload(10, 10);
        m_windows->showInstalling();
        QVERIFY(!button("Cancel")->isEnabled());
        QTest::keyPress(&window(), Qt::Key_Escape);
        QCOMPARE(m_cancels, 0);
    }

    void cancelsTheCheck()
    {
        m_windows->showChecking();
        QTest::mouseClick(button("Cancel"), Qt::LeftButton);
        QCOMPARE(m_cancels, 1);
    }

    void tellsAMessageOnce_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("button") << false;
        QTest::newRow("Escape") << true;
    }
    void tellsAMessageOnce()
    {
        QFETCH(bool, byKey);
        m_windows->showMessage(UpdateView::MessageKind::warning, QStringLiteral("Title"),
                               QStringLiteral("Because of <this>."));
        QCOMPARE(window().accessibleName(), QStringLiteral("Title"));
        if (byKey)
            QTest::keyPress(&window(), Qt::Key_Escape);
        else
            QTest::mouseClick(button("OK"), Qt::LeftButton);
        QCOMPARE(m_reads, 1);
    }

    void showsOneWindowAtATime()
    {
        m_windows->showChecking();
        m_windows->showOffer(offer(), QStringLiteral("1.0"));
        m_windows->showDownload(0, 10);
        m_windows->showInstalling();
        m_windows->showMessage(UpdateView::MessageKind::information, QStringLiteral("Title"), {});
        int visible = 0;
        for (const QWidget *widget : QApplication::topLevelWidgets())
            visible += widget->isVisible() && widget->isWindow();
        QCOMPARE(visible, 1);
        m_windows->hide();
        QVERIFY(!m_windows->window());
        QVERIFY(m_answers.isEmpty());
        QCOMPARE(m_cancels + m_reads, 0);
    }

    void takesNoFocusWhenItComesByItself()
    {
        m_windows = std::make_unique<UpdateWindows>(UpdateWindows::Arrival::modest);
        m_windows->onAnswered = [](UpdateAnswer) {};
        m_windows->showOffer(offer(), QStringLiteral("1.0"));
        QVERIFY(window().testAttribute(Qt::WA_ShowWithoutActivating));
        m_windows->showDownload(0, 10);
        QVERIFY(!window().testAttribute(Qt::WA_ShowWithoutActivating));
    }

private:
    static UpdateOffer offer()
    {
        UpdateItem item{*Version::fromString(QStringLiteral("2.0")),
                        QStringLiteral("2.0"),
                        QStringLiteral("<b>Faster</b>\nFiner"),
                        {},
                        {},
                        {}};
        return {item, {}};
    }
    UpdateWindow &window() const { return *m_windows->window(); }
    QPushButton *button(const QString &text) const
    {
        for (QPushButton *button : window().findChildren<QPushButton *>()) {
            if (button->text() == text)
                return button;
        }
        return nullptr;
    }

    std::unique_ptr<UpdateWindows> m_windows;
    QList<UpdateAnswer> m_answers;
    int m_cancels = 0;
    int m_reads = 0;
};

QTEST_MAIN(TestUpdateWindows)
#include "tst_UpdateWindows.moc"
