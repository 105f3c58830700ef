// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "platform/TextRecognizer.h"

#include <QStringList>

namespace tovek {

/// The engine's name of a language, such as "deu" for "de-AT"; empty when it has none.
QString modelNameOf(const QString &language);

/// The installed models of the user's languages in the user's order, with English, which every
/// desktop shows too. `languages` as from QLocale::uiLanguages.
QStringList modelsFor(const QStringList &languages, const QStringList &installed);

/// Of a script, by the engine's name for it: the language that stands for it where one of its
/// models is installed, else its usual one. Empty for Latin and unknown ones.
QString languageOf(const QString &script, const QStringList &installed);

/// Whether a model among these reads the script.
bool canRead(const QString &script, const QStringList &models);

/// What is not installed of the models of the user's languages, and then of those for the scripts
/// that were seen.
std::vector<MissingModel> missingModels(const QStringList &languages, const QStringList &scripts,
                                        const QStringList &installed);

/// Whether one of the models is for a script that is read by words (see Script in reading/).
bool readByWords(const QStringList &models);

/// Where the engine's models may lie: only the folder that the engine's own environment variable
/// names, or else the distributions' folders, in which the user has chosen languages, and last the
/// one that an AppImage of the program brings.
QStringList modelFolders(const QString &programFolder);

/// The chosen one of these folders, or the first that exists. Empty when there is none.
QString modelFolder(const QString &programFolder);

/// The models in a folder, by their names.
QStringList modelsIn(const QString &folder);

} // namespace tovek
