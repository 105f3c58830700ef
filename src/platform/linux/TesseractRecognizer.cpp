// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "platform/linux/TesseractRecognizer.h"

#include "foundation/HelperProgram.h"
#include "foundation/Log.h"
#include "foundation/Memory.h"
#include "platform/linux/fonts/FreeTypeGlyphs.h"
#include "platform/linux/ocr/LineProtocol.h"
#include "platform/linux/ocr/RecognitionModels.h"
#include "reading/PageReader.h"
#include "reading/fonts/FontReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QLocale>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <new>

namespace tovek {

namespace {

using namespace std::chrono_literals;

/// Longer than any that an engine still works on.
constexpr auto longestLine = 1500ms;
constexpr auto endInterval = 20ms;
/// Of a package of its own, which tells scripts.
constexpr const char *scriptModel = LineProtocol::scriptsOnly;

/// Empty where it is not installed.
QByteArray engineProgram()
{
    const QString program = helperProgram(QStringLiteral("tovek-ocr"));
    return QFileInfo(program).isExecutable() ? QFile::encodeName(program) : QByteArray();
}

std::vector<TextObservation> observationsOf(const std::vector<std::vector<ReadWord>> &lines)
{
    std::vector<TextObservation> observations;
    for (const std::vector<ReadWord> &line : lines) {
        TextObservation observation;
        for (const ReadWord &word : line) {
            if (!observation.text.isEmpty())
                observation.text += ' ';
            observation.ranges.push_back(
                {observation.text.size(), word.text.size(), QRectF(word.box)});
            observation.text += word.text;
        }
        observations.push_back(std::move(observation));
    }
    return observations;
}

RecognitionResult withoutMemory()
{
    return {{}, QStringLiteral("there is not enough memory")};
}

} // namespace

/// One recognition. The page is made first; then any number of threads read its runs, and the
/// last one to finish puts the answer together.
struct TesseractRecognizer::Job
{
    QPromise<RecognitionResult> promise;
    TellPart tellPart;
    TellMissing tellMissing;
    QElapsedTimer sinceAsked;
    QImage image;
    std::shared_ptr<EnginePool> engines;
    EngineSetup scriptSetup;
    std::unique_ptr<PageReader> reader;
    std::atomic<int> threads = 0;
    std::atomic<bool> lacksMemory = false;
    const int hangsBefore = EngineProcess::hangs();

    void finish(RecognitionResult result)
    {
        if (!promise.isCanceled())
            promise.addResult(std::move(result));
        promise.finish();
    }
};

TesseractRecognizer::TesseractRecognizer(std::chrono::milliseconds idleTime)
    : m_fonts(std::make_unique<FontReader>(std::make_unique<FreeTypeGlyphs>()))
    , m_threads(QThread::idealThreadCount())
{
    m_idle.setInterval(idleTime);
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, &TesseractRecognizer::becomeIdle);
}

TesseractRecognizer::~TesseractRecognizer()
{
    m_isEnding = true;
    for (const std::weak_ptr<Job> &weak : m_jobs) {
        if (const auto job = weak.lock())
            job->promise.future().cancel();
    }
    m_threads.clear();
    // Nobody waits for an engine any more, and least of all for one that has stopped.
    do
        EngineProcess::giveUp(0ms);
    while (!m_threads.waitForAll(endInterval));
}

void TesseractRecognizer::prepare()
{
    findEngines();
    if (m_setup.languages.isEmpty() || m_setup.program.isEmpty() || m_engines->count() > 0)
        return;
    m_idle.start();
    for (int i = 0; i < m_threads.mostThreads(); ++i) {
        m_threads.start([engines = m_engines] {
            if (auto engine = engines->take())
                engines->giveBack(std::move(engine));
        });
    }
}

QFuture<RecognitionResult> TesseractRecognizer::recognize(const QImage &image, double,
                                                          TellPart tellPart,
                                                          TellMissing tellMissing)
{
    findEngines();
    auto job = std::make_shared<Job>();
    job->sinceAsked.start();
    job->tellPart = std::move(tellPart);
    job->tellMissing = std::move(tellMissing);
    const QFuture<RecognitionResult> future = job->promise.future();
    job->promise.start();
    if (m_setup.languages.isEmpty()) {
        job->finish({{},
                     QStringLiteral("no text recognition model is installed; install the package "
                                    "tesseract-ocr-eng")});
        return future;
    }
    if (m_setup.program.isEmpty()) {
        job->finish({{},
                     QStringLiteral("the program tovek-ocr is missing beside this one; install "
                                    "Tovek again")});
        return future;
    }
    // What hangs must not take an engine's place from the next one.
    auto *watcher = new QFutureWatcher<RecognitionResult>(this);
    connect(watcher, &QFutureWatcherBase::canceled, this, [this] {
        QTimer::singleShot(longestLine, this, [] { EngineProcess::giveUp(longestLine); });
    });
    connect(watcher, &QFutureWatcherBase::finished, watcher, &QObject::deleteLater);
    watcher->setFuture(future);
    // Not from within the call, but before the result.
    const auto missing = missingModels(QLocale().uiLanguages(), {}, m_installed);
    QMetaObject::invokeMethod(
        this, [job, missing] { TesseractRecognizer::tellMissing(*job, missing); },
        Qt::QueuedConnection);
    job->image = image;
    job->engines = m_engines;
    job->scriptSetup = m_scriptSetup;
    std::erase_if(m_jobs, [](const std::weak_ptr<Job> &old) { return old.expired(); });
    m_jobs.push_back(job);
    m_idle.start();
    if (!m_threads.start([this, job] { start(job); }))
        job->finish({{}, QStringLiteral("the system gives no thread")});
    return future;
}

int TesseractRecognizer::warmEngines() const
{
    return m_engines ? m_engines->count() : 0;
}

void TesseractRecognizer::findEngines()
{
    const QString folder = modelFolder(QCoreApplication::applicationDirPath());
    m_installed = modelsIn(folder);
    const QStringList spoken = QLocale().uiLanguages();
    const QStringList reading = modelsFor(spoken, m_installed);
    QStringList scripts = m_seenScripts;
    scripts.removeIf([&](const QString &script) { return canRead(script, reading); });
    QStringList languages;
    for (const QString &script : scripts)
        languages += languageOf(script, m_installed);
    const QStringList models = modelsFor(languages + spoken, m_installed);
    std::vector<MissingModel> missing = missingModels(spoken, scripts, m_installed);
    for (const MissingModel &model : missing) {
        const bool isKnown =
            std::find(m_missing.begin(), m_missing.end(), model) != m_missing.end();
        if (!isKnown && !models.isEmpty())
            logLine(QStringLiteral("Text is misread: install %1 to read %2")
                        .arg(model.package, model.reads));
    }
    m_missing = std::move(missing);
    const EngineSetup setup{engineProgram(), QFile::encodeName(folder),
                            models.join('+').toLatin1()};
    m_scriptSetup = setup;
    m_scriptSetup.languages = scriptModel;
    if (!m_installed.contains(QLatin1String(scriptModel)))
        m_scriptSetup.program.clear();
    if (m_engines && setup == m_setup)
        return;
    m_setup = setup;
    m_engines = std::make_shared<EnginePool>([setup] { return EngineProcess::create(setup); });
}

void TesseractRecognizer::start(const std::shared_ptr<Job> &job)
{
    try {
        Page page = job->promise.isCanceled() ? Page{} : pageOf(job->image);
        auto exact = m_fonts->readingOf(page, job->image);
        job->reader = std::make_unique<PageReader>(std::move(page), job->engines, std::move(exact));
    } catch (const std::bad_alloc &) {
        return job->finish(withoutMemory());
    }
    job->image = {};
    if (job->tellPart) {
        // The job owns the reader, and with it this.
        const std::weak_ptr<Job> weak = job;
        job->reader->tellParts(
            {[this, weak](const auto &lines) { tellPart(weak.lock(), lines); },
             [&timer = job->sinceAsked] { return std::chrono::milliseconds(timer.elapsed()); }});
    }
    const std::size_t useful = std::min(job->reader->runs(), std::size_t(m_threads.mostThreads()));
    job->threads = std::max(1, int(useful));
    for (int i = 1; i < job->threads; ++i)
        m_threads.start([this, job] { read(job); });
    read(job);
}

void TesseractRecognizer::tellPart(const std::shared_ptr<Job> &job,
                                   const std::vector<std::vector<ReadWord>> &lines)
{
    QMetaObject::invokeMethod(this, [job, part = observationsOf(lines)] {
        const QFuture<RecognitionResult> future = job->promise.future();
        if (!future.isFinished() && !future.isCanceled())
            job->tellPart(part);
    });
}

void TesseractRecognizer::read(const std::shared_ptr<Job> &job)
{
    try {
        job->reader->read([&job] { return job->promise.isCanceled(); });
    } catch (const std::bad_alloc &) {
        job->lacksMemory = true;
    }
    if (--job->threads > 0)
        return;
    QMetaObject::invokeMethod(this, [this] { m_idle.start(); });
    if (job->promise.isCanceled()) {
        job->finish({});
    } else if (job->lacksMemory) {
        job->finish(withoutMemory());
    } else if (job->reader->isUnreadable() && EngineProcess::hangs() > job->hangsBefore) {
        job->finish({{}, QStringLiteral("the text recogniser does not answer")});
    } else if (job->reader->isUnreadable()) {
        job->finish({{},
                     QStringLiteral("the text recognition model cannot be used; reinstall the "
                                    "package tesseract-ocr-eng")});
    } else {
        job->finish({observationsOf(job->reader->takeLines()), {}});
        lookForScript(job);
        job->reader->learn([this] { return m_isEnding || m_threads.active() > 1; });
    }
}

void TesseractRecognizer::lookForScript(const std::shared_ptr<Job> &job)
{
    const std::vector<LineStrip> lines = job->reader->unsureLines();
    if (lines.empty() || job->scriptSetup.program.isEmpty() || m_isEnding)
        return;
    const auto engine = EngineProcess::create(job->scriptSetup);
    const QString script = engine ? engine->scriptOf(lines) : QString();
    if (script.isEmpty())
        return;
    QMetaObject::invokeMethod(this, [this, job, script] {
        sawScript(script);
        tellMissing(*job, missingModels({}, {script}, m_installed));
    });
}

void TesseractRecognizer::sawScript(const QString &script)
{
    if (languageOf(script, {}).isEmpty() || m_seenScripts.contains(script))
        return;
    m_seenScripts += script;
    findEngines();
}

void TesseractRecognizer::tellMissing(const Job &job, const std::vector<MissingModel> &missing)
{
    for (const MissingModel &model : missing) {
        if (job.tellMissing)
            job.tellMissing(model);
    }
}

void TesseractRecognizer::becomeIdle()
{
    if (m_threads.active() > 0) {
        m_idle.start();
        return;
    }
    m_seenScripts.clear();
    m_engines->clear();
    m_fonts->letGo();
    releaseMemory();
}

} // namespace tovek
