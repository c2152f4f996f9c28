// Reading, evaluating, printing.
#include "tools/nxhost/Prompt.h"

#include "foundation/nxRFL/Writer.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/Host.h"

namespace nxhost {

using nxRFL::Exception;
using nxRFL::Function;
using ur::Reference;

namespace {

constexpr char const* showSource =
    "local function show(...) if select('#', ...) > 0 then print(...) end end "
    "show((...)())";

}  // namespace

Prompt::Prompt(Host& host)
    : host_(host), show_(host.state().load(showSource, "=nxhost")), editor_(host.loop(), host.state()) {}

void Prompt::run() {
    Interrupt& interrupt = host_.loop().interrupt();
    while (readChunk()) {
        if (chunk_) evaluate(chunk_);
        if (host_.hasChosenExit() || interrupt.isFinal()) break;
        interrupt.clear();
    }
    host_.forgive();
}

bool Prompt::readChunk() {
    chunk_ = nullptr;
    std::string text;
    try {
        do {
            std::string line;
            switch (editor_.read(text.empty() ? "> " : ">> ", line)) {
                case LineEditor::Result::line: break;
                case LineEditor::Result::dropped: return true;
                case LineEditor::Result::interrupted: return !text.empty();  // the lines before are dropped
                case LineEditor::Result::end: return false;
            }
            text += line + "\n";
            chunk_ = compile(text);
        } while (!chunk_);
    } catch (Exception const& error) {
        host_.report(error);
    }
    return true;
}

Reference<Function> Prompt::compile(std::string const& text) const {
    nxLC::State& state = host_.state();
    std::size_t const expression = text.starts_with('=') ? 1 : 0;  // as Lua's own prompt has it
    try {
        return state.load("return " + text.substr(expression), "=prompt");
    } catch (Exception const&) {
        // A statement, or the beginning of something.
    }
    try {
        return state.load(text, "=prompt");
    } catch (Exception const& error) {
        if (error.message().endsWith("near '<eof>'")) return nullptr;
        throw;
    }
}

void Prompt::evaluate(Reference<Function> const& chunk) const {
    nxRFL::Stack arguments;
    nxRFL::Stack results;
    nxRFL::Writer writer(arguments);
    writer.writeFunction(chunk);
    nxSupport::ScriptCallScope const call("prompt");
    try {
        show_->call(arguments, results);
    } catch (Exception const& error) {
        host_.report(error);
    }
}

}  // namespace nxhost
