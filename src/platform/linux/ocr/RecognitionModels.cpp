// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/ocr/RecognitionModels.h"

#include <QDir>
#include <QHash>

#include <algorithm>

namespace tovek {

namespace {

// clang-format off
const QHash<QString, QString> &namesByCode()
{
    static const QHash<QString, QString> names {
        {"af", "afr"}, {"am", "amh"}, {"ar", "ara"}, {"as", "asm"}, {"az", "aze"}, {"be", "bel"},
        {"bg", "bul"}, {"bn", "ben"}, {"bo", "bod"}, {"br", "bre"}, {"bs", "bos"}, {"ca", "cat"},
        {"cs", "ces"}, {"cy", "cym"}, {"da", "dan"}, {"de", "deu"}, {"el", "ell"}, {"en", "eng"},
        {"eo", "epo"}, {"es", "spa"}, {"et", "est"}, {"eu", "eus"}, {"fa", "fas"}, {"fi", "fin"},
        {"fo", "fao"}, {"fr", "fra"}, {"fy", "fry"}, {"ga", "gle"}, {"gd", "gla"}, {"gl", "glg"},
        {"gu", "guj"}, {"he", "heb"}, {"hi", "hin"}, {"hr", "hrv"}, {"hu", "hun"}, {"hy", "hye"},
        {"id", "ind"}, {"is", "isl"}, {"it", "ita"}, {"ja", "jpn"}, {"ka", "kat"}, {"kk", "kaz"},
        {"km", "khm"}, {"kn", "kan"}, {"ko", "kor"}, {"ky", "kir"}, {"la", "lat"}, {"lb", "ltz"},
        {"lo", "lao"}, {"lt", "lit"}, {"lv", "lav"}, {"mi", "mri"}, {"mk", "mkd"}, {"ml", "mal"},
        {"mn", "mon"}, {"mr", "mar"}, {"ms", "msa"}, {"mt", "mlt"}, {"my", "mya"}, {"nb", "nor"},
        {"ne", "nep"}, {"nl", "nld"}, {"nn", "nor"}, {"no", "nor"}, {"oc", "oci"}, {"or", "ori"},
        {"pa", "pan"}, {"pl", "pol"}, {"pt", "por"}, {"ro", "ron"}, {"ru", "rus"}, {"sa", "san"},
        {"si", "sin"}, {"sk", "slk"}, {"sl", "slv"}, {"sq", "sqi"}, {"sr", "srp"}, {"sv", "swe"},
        {"sw", "swa"}, {"ta", "tam"}, {"te", "tel"}, {"th", "tha"}, {"tr", "tur"}, {"uk", "ukr"},
        {"ur", "urd"}, {"uz", "uzb"}, {"vi", "vie"}, {"yi", "yid"},
    };
    return names;
}

/// A script's name for people, and the languages that are written in it, the one first that is
/// the likeliest on a desktop of another language.
struct ScriptLanguages
{
    QString name;
    QStringList languages;
};

const QHash<QString, ScriptLanguages> &languagesByScript()
{
    static const QHash<QString, ScriptLanguages> languages {
        {"Arabic", {"Arabic", {"ar", "fa", "ur"}}}, {"Armenian", {"Armenian", {"hy"}}},
        {"Bengali", {"Bengali", {"bn", "as"}}},     {"Cyrillic", {"Cyrillic", {"ru", "uk", "bg",
            "sr", "be", "mk", "kk", "ky", "mn"}}},
        {"Devanagari", {"Hindi", {"hi", "mr", "ne", "sa"}}}, {"Ethiopic", {"Amharic", {"am"}}},
        {"Georgian", {"Georgian", {"ka"}}},         {"Greek", {"Greek", {"el"}}},
        {"Gujarati", {"Gujarati", {"gu"}}},         {"Gurmukhi", {"Punjabi", {"pa"}}},
        {"Han", {"Chinese", {"zh-Hans", "zh-Hant", "ja"}}}, {"Hangul", {"Korean", {"ko"}}},
        {"Hebrew", {"Hebrew", {"he", "yi"}}},       {"Japanese", {"Japanese", {"ja"}}},
        {"Kannada", {"Kannada", {"kn"}}},           {"Khmer", {"Khmer", {"km"}}},
        {"Korean", {"Korean", {"ko"}}},             {"Lao", {"Lao", {"lo"}}},
        {"Malayalam", {"Malayalam", {"ml"}}},       {"Myanmar", {"Burmese", {"my"}}},
        {"Oriya", {"Odia", {"or"}}},                {"Sinhala", {"Sinhala", {"si"}}},
        {"Tamil", {"Tamil", {"ta"}}},               {"Telugu", {"Telugu", {"te"}}},
        {"Thai", {"Thai", {"th"}}},                 {"Tibetan", {"Tibetan", {"bo"}}},
    };
    return languages;
}
// clang-format on

const QString englishModel = QStringLiteral("eng");

} // namespace

QString modelNameOf(const QString &language)
{
    QString code = language;
    code.replace('_', '-');
    const QStringList parts = code.split('-');
    if (parts.first() != QStringLiteral("zh"))
        return namesByCode().value(parts.first());
    const bool isTraditional = parts.contains(QStringLiteral("Hant"))
        || parts.contains(QStringLiteral("TW")) || parts.contains(QStringLiteral("HK"));
    return isTraditional ? QStringLiteral("chi_tra") : QStringLiteral("chi_sim");
}

QStringList modelsFor(const QStringList &languages, const QStringList &installed)
{
    QStringList models;
    for (const QString &language : languages) {
        const QString name = modelNameOf(language);
        if (!name.isEmpty() && installed.contains(name) && !models.contains(name))
            models += name;
    }
    if (installed.contains(englishModel) && !models.contains(englishModel))
        models += englishModel;
    return models;
}

QString languageOf(const QString &script, const QStringList &installed)
{
    const auto known = languagesByScript().constFind(script);
    if (known == languagesByScript().constEnd())
        return {};
    const QStringList &languages = known->languages;
    const auto found =
        std::find_if(languages.begin(), languages.end(), [&](const QString &language) {
            return installed.contains(modelNameOf(language));
        });
    return found != languages.end() ? *found : languages.first();
}

bool canRead(const QString &script, const QStringList &models)
{
    const QStringList languages = languagesByScript().value(script).languages;
    return std::any_of(languages.begin(), languages.end(), [&](const QString &language) {
        return models.contains(modelNameOf(language));
    });
}

std::vector<MissingModel> missingModels(const QStringList &languages, const QStringList &scripts,
                                        const QStringList &installed)
{
    std::vector<MissingModel> missing;
    const auto add = [&](const QString &language, const QString &reads) {
        QString name = modelNameOf(language);
        if (name.isEmpty() || installed.contains(name))
            return;
        const QString package = QStringLiteral("tesseract-ocr-") + name.replace('_', '-');
        const bool isKnown =
            std::any_of(missing.begin(), missing.end(),
                        [&](const MissingModel &model) { return model.package == package; });
        if (!isKnown)
            missing.push_back({package, reads});
    };
    for (const QString &language : languages)
        add(language, QStringLiteral("your language"));
    for (const QString &script : scripts)
        add(languageOf(script, installed), languagesByScript().value(script).name);
    return missing;
}

bool readByWords(const QStringList &models)
{
    static const QStringList all = QStringLiteral("amh ara asm ben bod chi_sim chi_tra fas guj heb "
                                                  "hin jpn kan khm kor lao mal mar mya nep ori pan "
                                                  "san sin tam tel tha urd yid")
                                       .split(' ');
    return std::any_of(models.begin(), models.end(),
                       [](const QString &model) { return all.contains(model); });
}

QStringList modelFolders(const QString &programFolder)
{
    const QString chosen = qEnvironmentVariable("TESSDATA_PREFIX");
    if (!chosen.isEmpty())
        return {chosen};
    return {QStringLiteral("/usr/share/tesseract-ocr/5/tessdata"),
            QStringLiteral("/usr/share/tessdata"),
            QStringLiteral("/usr/share/tesseract/tessdata"),
            QStringLiteral("/usr/local/share/tessdata"),
            QStringLiteral("/usr/share/tesseract-ocr/4.00/tessdata"),
            QDir::cleanPath(programFolder + QStringLiteral("/../share/tessdata"))};
}

QString modelFolder(const QString &programFolder)
{
    const QStringList folders = modelFolders(programFolder);
    if (folders.size() == 1)
        return folders.first();
    const auto found = std::find_if(folders.begin(), folders.end(),
                                    [](const QString &folder) { return QDir(folder).exists(); });
    return found == folders.end() ? QString() : *found;
}

QStringList modelsIn(const QString &folder)
{
    if (folder.isEmpty())
        return {};
    QStringList models = QDir(folder).entryList({QStringLiteral("*.traineddata")}, QDir::Files);
    models.replaceInStrings(QStringLiteral(".traineddata"), QString());
    return models;
}

} // namespace tovek
