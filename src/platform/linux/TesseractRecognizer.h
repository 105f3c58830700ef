// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Workers.h"
#include "platform/TextRecognizer.h"
#include "platform/linux/ocr/EngineProcess.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <memory>

namespace tovek {

class EnginePool;
class FontReader;
struct ReadWord;

/// Recognises with the Tesseract engine, as many processes of it as there are cores, which stay
/// warm between recognitions and end after two minutes without one. The models are looked for at
/// each recognition, so that one installed meanwhile is found.
class TesseractRecognizer : public QObject, public TextRecognizer
{
    Q_OBJECT

public:
    explicit TesseractRecognizer(std::chrono::milliseconds idleTime = std::chrono::minutes(2));
    ~TesseractRecognizer() override;

    void prepare() override;
    using TextRecognizer::recognize;
    QFuture<RecognitionResult> recognize(const QImage &image, double scale, TellPart tellPart,
                                         TellMissing tellMissing) override;
    /// Processes that are kept warm now.
    int warmEngines() const;

private:
    struct Job;
    void findEngines();
    void start(const std::shared_ptr<Job> &job);
    /// Any thread.
    void tellPart(const std::shared_ptr<Job> &job, const std::vector<std::vector<ReadWord>> &lines);
    void read(const std::shared_ptr<Job> &job);
    /// Of text that no model read; any thread.
    void lookForScript(const std::shared_ptr<Job> &job);
    void sawScript(const QString &script);
    static void tellMissing(const Job &job, const std::vector<MissingModel> &missing);
    void becomeIdle();

    std::atomic<bool> m_isEnding = false;
    EngineSetup m_setup;
    EngineSetup m_scriptSetup; ///< without a program where scripts cannot be told
    QStringList m_installed;
    std::vector<MissingModel> m_missing; ///< for the desktop's languages and the scripts seen
    /// That no model for the desktop's languages reads, until there is nothing to recognise for a
    /// while. What is installed for them is used meanwhile.
    QStringList m_seenScripts;
    std::shared_ptr<EnginePool> m_engines;
    std::unique_ptr<FontReader> m_fonts;
    std::vector<std::weak_ptr<Job>> m_jobs;
    QTimer m_idle;
    Workers m_threads; ///< the last member: they use the others
};

} // namespace tovek
