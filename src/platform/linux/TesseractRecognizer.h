// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "foundation/Workers.h"
#include "platform/TextRecognizer.h"
#include "platform/linux/ocr/EngineProcess.h"

#include <QObject>
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
    QFuture<RecognitionResult> recognize(const QImage &image, double scale,
                                         TellPart tellPart) override;
    QStringList missingPackages() const override { return m_missingPackages; }
    /// Processes that are kept warm now.
    int warmEngines() const;

private:
    struct Job;
    void findEngines();
    void start(const std::shared_ptr<Job> &job);
    /// Any thread.
    void tellPart(const std::shared_ptr<Job> &job, const std::vector<std::vector<ReadWord>> &lines);
    void read(const std::shared_ptr<Job> &job);
    void becomeIdle();

    std::atomic<bool> m_isEnding = false;
    EngineSetup m_setup;
    QStringList m_missingPackages;
    std::shared_ptr<EnginePool> m_engines;
    std::unique_ptr<FontReader> m_fonts;
    std::vector<std::weak_ptr<Job>> m_jobs;
    QTimer m_idle;
    Workers m_threads; ///< the last member: they use the others
};

} // namespace tovek
