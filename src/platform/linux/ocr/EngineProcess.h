// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include "reading/LineEngine.h"

#include <QByteArray>

#include <chrono>
#include <memory>

namespace tovek {

/// What an engine process is started with.
struct EngineSetup
{
    QByteArray program; ///< path of the recogniser process
    QByteArray dataFolder; ///< where the models are
    QByteArray languages; ///< as in "deu+eng"
    /// An engine is hung that takes longer to load its models or to read one line, however long
    /// the page is. The longest line takes about a second.
    std::chrono::milliseconds patience = std::chrono::seconds(6);

    bool operator==(const EngineSetup &) const = default;
};

/// An engine in a process of its own (see engine_main.cpp), which ends with this object.
class EngineProcess : public LineEngine
{
public:
    /// Starts the process and waits until it has loaded its models: about 0.1 s. Null when it
    /// cannot run, cannot load them or hangs.
    static std::unique_ptr<EngineProcess> create(const EngineSetup &setup);
    ~EngineProcess() override;
    EngineProcess(const EngineProcess &) = delete;
    EngineProcess &operator=(const EngineProcess &) = delete;

    std::optional<std::vector<EngineSymbol>> read(const LineStrip &strip, Models models) override;
    bool readsByWords() const override { return m_readsByWords; }
    /// The script that lines of one text are written in, by the engine's name for it; empty where
    /// it cannot tell. Of a process that was started with "osd" for languages.
    QString scriptOf(const std::vector<LineStrip> &lines);
    int processId() const { return m_processId; }

    /// Ends what waits for a process for longer than this, as if it had broken down. Any thread.
    static void giveUp(std::chrono::milliseconds olderThan);
    /// How many processes have been given up so far because they took too long. Any thread.
    static int hangs();

private:
    EngineProcess(int socket, int processId, const EngineSetup &setup);

    int m_socket;
    int m_processId;
    std::chrono::milliseconds m_patience;
    bool m_readsByWords;
};

} // namespace tovek
