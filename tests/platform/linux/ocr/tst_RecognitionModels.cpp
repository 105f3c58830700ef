// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/RecognitionModels.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace tovek;

class TestRecognitionModels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(".*")); }

    void namesTheLanguageOfALocale_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("expected");
        QTest::newRow("language alone") << "de"
                                        << "deu";
        QTest::newRow("with a country") << "de-AT"
                                        << "deu";
        QTest::newRow("with an underscore") << "pt_BR"
                                            << "por";
        QTest::newRow("simplified Chinese") << "zh-CN"
                                            << "chi_sim";
        QTest::newRow("traditional by script") << "zh-Hant-TW"
                                               << "chi_tra";
        QTest::newRow("traditional by country") << "zh-HK"
                                                << "chi_tra";
        QTest::newRow("no language") << "C"
                                     << "";
        QTest::newRow("empty") << ""
                               << "";
    }
    void namesTheLanguageOfALocale()
    {
        QFETCH(QString, language);
        QTEST(modelNameOf(language), "expected");
    }

    void namesThePackagesOfMissingModels_data()
    {
        QTest::addColumn<QStringList>("languages");
        QTest::addColumn<QStringList>("scripts");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QStringList>("expected");
        const QStringList none;
        QTest::newRow("a language") << QStringList{"de-AT", "de"} << none << QStringList{"eng"}
                                    << QStringList{"tesseract-ocr-deu for your language"};
        QTest::newRow("simplified Chinese")
            << QStringList{"zh-Hans-CN", "zh", "en"} << none << QStringList{"eng"}
            << QStringList{"tesseract-ocr-chi-sim for your language"};
        QTest::newRow("all is there")
            << QStringList{"de", "en"} << none << QStringList{"deu", "eng"} << none;
        QTest::newRow("no language") << QStringList{"C", ""} << none << QStringList{"eng"} << none;
        QTest::newRow("a script that was seen")
            << QStringList{"en"} << QStringList{"Devanagari"} << QStringList{"eng"}
            << QStringList{"tesseract-ocr-hin for Hindi"};
        QTest::newRow("a script of which one language is there")
            << QStringList{"en"} << QStringList{"Cyrillic"} << QStringList{"eng", "ukr"} << none;
        QTest::newRow("a language and its script")
            << QStringList{"ru"} << QStringList{"Cyrillic", "Arabic"} << QStringList{"eng"}
            << QStringList{"tesseract-ocr-rus for your language", "tesseract-ocr-ara for Arabic"};
        QTest::newRow("what is no other script")
            << QStringList{"en"} << QStringList{"Latin", "Fraktur"} << QStringList{"eng"} << none;
    }
    void namesThePackagesOfMissingModels()
    {
        QFETCH(QStringList, languages);
        QFETCH(QStringList, scripts);
        QFETCH(QStringList, installed);
        QStringList told;
        for (const MissingModel &model : missingModels(languages, scripts, installed))
            told += model.package + " for " + model.reads;
        QTEST(told, "expected");
    }

    void readsASeenScriptWithAModelThatIsThere()
    {
        QCOMPARE(languageOf("Cyrillic", {"eng", "ukr"}), QString("uk"));
        QCOMPARE(languageOf("Cyrillic", {"eng"}), QString("ru"));
        QCOMPARE(languageOf("Latin", {"eng"}), QString());
        QVERIFY(canRead("Cyrillic", {"ukr", "eng"}));
        QVERIFY(!canRead("Arabic", {"ukr", "eng"}));
        QVERIFY(!canRead("Latin", {"eng"}));
    }
    void tellsModelsThatAreReadByWords()
    {
        QVERIFY(readByWords({"deu", "ara", "eng"}));
        QVERIFY(readByWords({"chi_sim"}));
        QVERIFY(!readByWords({"rus", "ell", "eng"}));
        QVERIFY(!readByWords({}));
    }

    void takesTheUsersInstalledLanguagesAndEnglish_data()
    {
        QTest::addColumn<QStringList>("languages");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QStringList>("expected");
        const QStringList installed{"deu", "eng", "fra", "osd"};
        QTest::newRow("English only")
            << QStringList{"en-GB", "en"} << installed << QStringList{"eng"};
        QTest::newRow("German first")
            << QStringList{"de-DE", "de"} << installed << QStringList{"deu", "eng"};
        QTest::newRow("in the user's order")
            << QStringList{"fr", "de"} << installed << QStringList{"fra", "deu", "eng"};
        QTest::newRow("English before German")
            << QStringList{"en", "de"} << installed << QStringList{"eng", "deu"};
        QTest::newRow("not installed") << QStringList{"pl"} << installed << QStringList{"eng"};
        QTest::newRow("no English model")
            << QStringList{"de"} << QStringList{"deu"} << QStringList{"deu"};
        QTest::newRow("nothing installed") << QStringList{"en"} << QStringList{} << QStringList{};
        QTest::newRow("only what is no language")
            << QStringList{"en"} << QStringList{"osd"} << QStringList{};
    }
    void takesTheUsersInstalledLanguagesAndEnglish()
    {
        QFETCH(QStringList, languages);
        QFETCH(QStringList, installed);
        QTEST(modelsFor(languages, installed), "expected");
    }

    void listsTheModelsOfAFolder()
    {
        QTemporaryDir folder;
        for (const char *name : {"eng.traineddata", "chi_sim.traineddata", "readme.txt"}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QCOMPARE(modelsIn(folder.path()), (QStringList{"chi_sim", "eng"}));
        QCOMPARE(modelsIn({}), QStringList());
        QCOMPARE(modelsIn(folder.filePath("missing")), QStringList());
    }

    void obeysTheEnginesOwnVariable()
    {
        qputenv("TESSDATA_PREFIX", "/some/where");
        QCOMPARE(modelFolder({}), QString("/some/where"));
        qunsetenv("TESSDATA_PREFIX");
        QVERIFY(modelFolder({}) != "/some/where");
    }

    void takesWhatTheProgramBringsWhereTheSystemHasNothing()
    {
        const QStringList folders = modelFolders("/opt/tovek/bin");
        QCOMPARE(folders.first(), QString("/usr/share/tesseract-ocr/5/tessdata"));
        QCOMPARE(folders.last(), QString("/opt/tovek/share/tessdata"));
    }
};

QTEST_APPLESS_MAIN(TestRecognitionModels)
#include "tst_RecognitionModels.moc"
