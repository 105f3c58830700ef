// SPDX-FileCopyrightText: 2026 The Tovek developers
// SPDX-License-Identifier: MIT

// The recogniser process: it holds one engine and reads lines until its socket (descriptor 0) is
// closed. It is a process of its own so that the resident program carries neither the engine's
// library nor its models, gets all memory back when it ends, and outlives a model that makes the
// engine abort. Arguments: the folder of the models, the languages as in "deu+eng".

#include "platform/linux/ocr/LineProtocol.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <sys/socket.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>
#include <vector>

namespace {

using namespace tovek::LineProtocol;

constexpr int socketFd = 0;

bool sendAll(const void *from, std::size_t size)
{
    const auto *at = static_cast<const char *>(from);
    while (size > 0) {
        const ssize_t sent = ::send(socketFd, at, size, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        at += sent;
        size -= std::size_t(sent);
    }
    return true;
}

bool open(tesseract::TessBaseAPI &api, const char *folder, const char *languages)
{
    const std::vector<std::string> names{"debug_file"};
    const std::vector<std::string> values{"/dev/null"};
    if (api.Init(folder, languages, tesseract::OEM_LSTM_ONLY, nullptr, 0, &names, &values, false)
        != 0)
        return false;
    // A strip is one line, dark on light: no page analysis, no second try with inverted colours.
    api.SetPageSegMode(tesseract::PSM_RAW_LINE);
    api.SetVariable("tessedit_do_invert", "0");
    return true;
}

/// The engine with all models, and those with some of them, which are loaded when they are first
/// asked for: a desktop in a Latin script never needs them.
class Engines
{
public:
    Engines(const char *folder, std::string languages, tesseract::TessBaseAPI &all)
        : m_folder(folder)
        , m_languages(std::move(languages))
        , m_all(all)
    {
    }
    /// The one with all models where there is no other.
    tesseract::TessBaseAPI &with(std::uint32_t models)
    {
        const std::string other = "+eng";
        const auto at = m_languages.rfind(other);
        if (models == all || at == std::string::npos || at + other.size() != m_languages.size())
            return m_all;
        Loaded &loaded = models == english ? m_english : m_native;
        if (!loaded.isTried) {
            loaded.isTried = true;
            auto api = std::make_unique<tesseract::TessBaseAPI>();
            const std::string chosen = models == english ? "eng" : m_languages.substr(0, at);
            if (open(*api, m_folder, chosen.c_str()))
                loaded.api = std::move(api);
        }
        return loaded.api ? *loaded.api : m_all;
    }

private:
    struct Loaded
    {
        std::unique_ptr<tesseract::TessBaseAPI> api;
        bool isTried = false;
    };
    const char *m_folder;
    std::string m_languages;
    tesseract::TessBaseAPI &m_all;
    Loaded m_english;
    Loaded m_native;
};

Symbol symbolAt(const tesseract::ResultIterator &it, const char *text)
{
    Symbol symbol;
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    it.BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom);
    symbol.left = float(left);
    symbol.right = float(right);
    symbol.confidence = it.Confidence(tesseract::RIL_SYMBOL);
    symbol.startsWord = it.IsAtBeginningOf(tesseract::RIL_WORD);
    symbol.length = std::uint8_t(std::min(std::strlen(text), sizeof(symbol.text)));
    std::memcpy(symbol.text, text, symbol.length);
    return symbol;
}

std::vector<Symbol> read(tesseract::TessBaseAPI &api, const std::vector<unsigned char> &grey,
                         int width)
{
    std::vector<Symbol> symbols;
    api.SetImage(grey.data(), width, int(stripHeight), 1, width);
    api.SetSourceResolution(300);
    if (api.Recognize(nullptr) != 0)
        return symbols;
    const std::unique_ptr<tesseract::ResultIterator> it(api.GetIterator());
    if (!it)
        return symbols;
    do {
        const std::unique_ptr<char[]> text(it->GetUTF8Text(tesseract::RIL_SYMBOL));
        if (text && text[0] != '\0' && text[0] != ' ')
            symbols.push_back(symbolAt(*it, text.get()));
    } while (it->Next(tesseract::RIL_SYMBOL));
    return symbols;
}

/// Tells the script of several lines at once: one line is too little for it.
class ScriptEngine
{
public:
    bool open(const char *folder)
    {
        const std::vector<std::string> names{"debug_file", "min_characters_to_try"};
        const std::vector<std::string> values{"/dev/null", fewestCharacters};
        if (m_api.Init(folder, scriptsOnly, tesseract::OEM_TESSERACT_ONLY, nullptr, 0, &names,
                       &values, false)
            != 0)
            return false;
        m_api.SetPageSegMode(tesseract::PSM_OSD_ONLY);
        return true;
    }
    /// The lines lie one below the other in `grey`.
    std::vector<Symbol> read(const std::vector<unsigned char> &grey, std::size_t width,
                             std::size_t lines)
    {
        constexpr std::size_t margin = 24; // around each line
        constexpr unsigned char paper = 255;
        const std::size_t pitch = stripHeight + margin;
        const std::size_t pageWidth = width + 2 * margin;
        const std::size_t pageHeight = lines * pitch + margin;
        std::vector<unsigned char> page(pageWidth * pageHeight, paper);
        for (std::size_t row = 0; row < lines * stripHeight; ++row) {
            const std::size_t y = margin + row / stripHeight * pitch + row % stripHeight;
            std::copy_n(grey.data() + row * width, width, page.data() + y * pageWidth + margin);
        }
        m_api.SetImage(page.data(), int(pageWidth), int(pageHeight), 1, int(pageWidth));
        m_api.SetSourceResolution(150);
        int degrees = 0;
        float upright = 0;
        const char *name = nullptr;
        Symbol script;
        if (!m_api.DetectOrientationScript(&degrees, &upright, &name, &script.confidence) || !name
            || degrees != 0)
            return {};
        script.length = std::uint8_t(std::min(std::strlen(name), sizeof(script.text)));
        std::memcpy(script.text, name, script.length);
        return {script};
    }

private:
    static constexpr const char *fewestCharacters = "20";
    tesseract::TessBaseAPI m_api;
};

/// Answers until the socket is closed or says what cannot be.
template <typename Read>
void serve(Read read)
{
    LineRequest request;
    while (readAll(socketFd, &request, sizeof(request)) && request.width <= widestStrip
           && request.lines <= mostLines) {
        std::vector<unsigned char> grey(std::size_t(request.width) * stripHeight * request.lines);
        if (!readAll(socketFd, grey.data(), grey.size()))
            break;
        const std::vector<Symbol> symbols = read(request, grey);
        const LineReply reply{std::uint32_t(symbols.size())};
        if (!sendAll(&reply, sizeof(reply))
            || !sendAll(symbols.data(), symbols.size() * sizeof(Symbol)))
            break;
    }
}

int serveScripts(const char *folder)
{
    ScriptEngine engine;
    const char isReady = engine.open(folder) ? 1 : 0;
    if (!sendAll(&isReady, 1) || !isReady)
        return 1;
    serve([&](const LineRequest &request, const std::vector<unsigned char> &grey) {
        return engine.read(grey, request.width, request.lines);
    });
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    if (std::strcmp(argv[2], scriptsOnly) == 0)
        return serveScripts(argv[1]);
    tesseract::TessBaseAPI api;
    const char isReady = open(api, argv[1], argv[2]) ? 1 : 0;
    if (!sendAll(&isReady, 1) || !isReady)
        return 1;
    Engines engines(argv[1], argv[2], api);
    serve([&](const LineRequest &request, const std::vector<unsigned char> &grey) {
        return read(engines.with(request.models), grey, int(request.width));
    });
    return 0;
}
