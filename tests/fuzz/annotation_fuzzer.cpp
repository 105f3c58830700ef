// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

#include "annotations/AnnotationRenderer.h"
#include "fuzz/FuzzInput.h"
#include "overlay/AnnotationEditor.h"

#include <QGuiApplication>

#include <array>
#include <cmath>
#include <utility>

using namespace tovek;

namespace {

constexpr Rect selection{40, 30, 200, 120};
constexpr Size screen{320, 200};
constexpr std::array tools{AnnotationTool::none, AnnotationTool::arrow, AnnotationTool::rectangle,
                           AnnotationTool::line, AnnotationTool::text};

bool isFinite(Point point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

void check(const AnnotationEditor &editor)
{
    const std::vector<Annotation> &all = editor.annotations();
    const auto selected = editor.selectedAnnotationIndex();
    require(!selected || *selected < all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        const AnnotationFields &fields = fieldsOf(all[i]);
        require(fields.isSelected == (selected == i));
        require(isFinite(fields.startPoint) && isFinite(fields.endPoint));
    }
    const auto edited = editor.editingTextAnnotationIndex();
    require(!edited
            || (*edited < all.size() && editor.isTextBoxOpen()
                && std::holds_alternative<TextAnnotation>(all[*edited])));
    const size_t drawn = all.size() + (editor.currentAnnotation() ? 1 : 0) - (edited ? 1 : 0);
    require(editor.drawnAnnotations().size() == drawn);
}

/// Someone with a mouse, whose button goes down and up in turn, and a keyboard.
struct Hand
{
    void act(FuzzInput &input)
    {
        const uint8_t kind = input.take<uint8_t>();
        const Point at{double(input.take<uint8_t>()) * 1.5 - 20, double(input.take<uint8_t>())};
        if (kind % 13 < 6)
            useMouse(kind % 13, at);
        else
            useKeyboard(kind, int(at.y));
    }

    AnnotationEditor editor;

private:
    void useMouse(int way, Point at)
    {
        if (way < 2 && !std::exchange(m_isDown, true))
            editor.press(at, 1 + way, selection);
        else if (way < 4 && m_isDown)
            editor.moveTo(at, selection);
        else if (way >= 4 && std::exchange(m_isDown, false))
            editor.release();
    }
    void useKeyboard(uint8_t kind, int number)
    {
        const AnnotationTool tool = tools.at(size_t(kind / 13) % tools.size());
        switch (kind % 13) {
        case 6:
            editor.selectTool(tool);
            break;
        case 7:
            editor.toggleTool(tool);
            break;
        case 8:
            editor.chooseColor(QColor::fromRgb(QRgb(kind) * 0x10101),
                               kind & 1 ? ColorTarget::newAnnotations
                                        : ColorTarget::selectedAnnotation);
            break;
        case 9:
            editor.deleteSelected();
            break;
        case 10:
            editor.nudgeSelected(AnnotationEditor::ArrowKey(kind / 13 % 4),
                                 AnnotationEditor::Step::large);
            break;
        case 11:
            if (editor.isTextBoxOpen())
                editor.setTypedText(QString(number % 20, QChar(0x40 + kind)));
            else
                editor.deselect();
            break;
        default:
            if (kind & 1)
                editor.undo();
            else
                editor.redo();
            break;
        }
    }

    bool m_isDown = false;
};

/// Back to the beginning and forth again.
void checkHistory(AnnotationEditor &editor)
{
    editor.release();
    editor.commitText();
    editor.deselect();
    const std::vector<Annotation> last = editor.annotations();
    int forth = 0;
    while (editor.redo().isHandled)
        ++forth;
    for (; forth > 0; --forth)
        require(editor.undo().isHandled);
    require(editor.annotations() == last);
    int steps = 0;
    for (; editor.undo().isHandled; ++steps)
        check(editor);
    require(editor.annotations().empty());
    for (; steps > 0; --steps)
        require(editor.redo().isHandled);
    editor.deselect();
    require(editor.annotations() == last);
}

} // namespace

// The toolkit and the font library keep for a lifetime what they allocate once.
extern "C" const char *__asan_default_options()
{
    return "detect_leaks=0";
}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    static QGuiApplication application(count, arguments); // texts have a size
    return 0;
}

/// Three bytes are an event: what happens, and where. Afterwards the picture is made.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size < 600 ? size : 600);
    Hand hand;
    AnnotationEditor &editor = hand.editor;
    while (!input.isAtEnd()) {
        hand.act(input);
        check(editor);
    }
    checkHistory(editor);
    QImage pixels(int(screen.width), int(screen.height), QImage::Format_RGB32);
    pixels.fill(Qt::white);
    const auto picture =
        AnnotationRenderer::render(editor.annotations(), {pixels, screen}, selection);
    require(picture && picture->bitmap.size() == QSize(200, 120));
    return 0;
}
