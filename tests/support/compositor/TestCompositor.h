// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace tovek {

struct CompositorState;

/// An output of a test's compositor.
struct CompositorOutput
{
    QString name;
    QImage picture; ///< what lies on it below all surfaces, upright, in native pixels
    double scale = 1;
    QPoint at{}; ///< points, in the space of the desktop
    int32_t transform = 0; ///< how its panel is turned, as wl_output.transform counts
};

struct CompositorPlan
{
    std::vector<CompositorOutput> outputs{};
    QStringList withheld{}; ///< interfaces that are not offered
    uint32_t screencopyVersion = 3;
    std::vector<uint32_t> formats{1}; ///< of captures, as wl_shm counts; 1 is XRGB8888
    bool isUpsideDown = false; ///< captures over wlr-screencopy
    std::optional<QPoint> cursor{}; ///< points of the desktop; absent: there is no mouse
    bool hasCursorHardware = false; ///< which leaves it out of pictures
    bool keepsPointer = false; ///< from what opens below it, until the mouse moves
    bool hasKeyboard = false; ///< and a clipboard for the window that has it
    int overtakenCopies = 0; ///< another window has the keyboard when so many are heard of
    bool tellsRefusedCopies = false;
};

/// A Wayland compositor without a screen, in a thread of the test's own process, that does what a
/// real one does only in bad luck: strange formats, refusals, silence, outputs and protocols that
/// go. It composes surfaces truly, so that what a capture or a person sees can be compared.
class TestCompositor
{
public:
    explicit TestCompositor(CompositorPlan plan);
    ~TestCompositor();
    TestCompositor(const TestCompositor &) = delete;
    TestCompositor &operator=(const TestCompositor &) = delete;

    /// False where it cannot listen.
    [[nodiscard]] bool start();
    /// For WAYLAND_DISPLAY.
    QByteArray socket() const;

    enum class Captures {
        work,
        areRefused,
        areRefusedOnce,
        areSilent,
        stop, ///< the session ends instead; only ext-image-copy-capture
        loseTheirOutput, ///< it is unplugged when the first picture is asked for
    };
    void setCaptures(Captures captures);
    /// How many pictures were asked for so far.
    int captureCount();

    void setPicture(int output, const QImage &picture);
    void addOutput(const CompositorOutput &output);
    void removeOutput(int output);
    void setScale(int output, double scale);
    /// Offers this interface no longer; what exists stays.
    void withdraw(const char *interface);
    /// Breaks all connections, as a compositor that crashes does.
    void hangUp();
    /// From `hold` on nobody is told that a frame was shown; `release` tells them of all at once.
    enum class Frames { hold, release };
    void setFrames(Frames frames);
    /// Answers nobody for so long; returns at once.
    void beBusy(std::chrono::milliseconds duration);
    /// Takes away all surfaces of the layer shell.
    void closeLayers();

    /// What a person sees on an output, upright, without the cursor.
    QImage look(int output);
    /// The surfaces of the layer shell that show something now, by their names, lowest first.
    QStringList layers();
    /// How many there have been.
    int layerCount();

    /// What another program is offered by the clipboard, sorted.
    QStringList clipboardTypes();
    /// A pipe's end on which the clipboard's content arrives as this type; -1 without a content.
    int paste(const QByteArray &type);
    /// Another program copies something.
    void takeClipboard();
    /// As the plan's number of them.
    void overtakeCopies(int count);
    bool hasFocusedWindow();

private:
    /// Runs it in the compositor's thread, and waits for that.
    void inside(const std::function<void()> &call);

    std::unique_ptr<CompositorState> m_state;
    std::thread m_thread;
};

/// Points the process to a compositor for as long as this lives.
class UseCompositor
{
public:
    explicit UseCompositor(const TestCompositor &compositor);
    ~UseCompositor();

private:
    QByteArray m_before;
};

} // namespace tovek
