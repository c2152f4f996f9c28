// Connects libedit to the main loop, and completes names from the script state.
#include "tools/nxhost/LineEditor.h"

#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <string_view>

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/completion.h"
#include "tools/nxhost/Loop.h"

namespace nxhost {
namespace {

constexpr int historySize = 1000;
constexpr std::size_t mostProposals = 100;

std::string defaultHistoryFile() {
    if (char const* const chosen = std::getenv("NXHOST_HISTORY")) return chosen;
    char const* const home = std::getenv("HOME");
    return home ? std::string(home) + "/.nxhost_history" : std::string();
}

/// Returns no name for a special file that could be read without end.
std::string onlyFile(std::string const& name) {
    std::error_code error;
    auto const type = std::filesystem::status(name, error).type();
    bool const fits = type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
    return fits ? name : std::string();
}

std::string_view commonStart(std::string_view a, std::string_view b) {
    return a.substr(0, static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin()));
}

}  // namespace

/// The functions that libedit calls.
struct LineEditor::Callbacks {
    static LineEditor& self(EditLine* editor) {
        void* data = nullptr;
        el_get(editor, EL_CLIENTDATA, &data);
        return *static_cast<LineEditor*>(data);
    }
    static char* prompt(EditLine* editor) { return const_cast<char*>(self(editor).prompt_); }
    static int readKey(EditLine* editor, wchar_t* key) {
        try {
            return self(editor).readKey(*key);
        } catch (Ended const&) {
            self(editor).interrupted_ = true;
        } catch (std::exception const& error) {
            std::fprintf(stderr, "nxhost: %s\n", error.what());
        }
        return -1;
    }
    static unsigned char complete(EditLine* editor, int /*key*/) {
        try {
            return self(editor).complete();
        } catch (std::exception const&) {
            return CC_ERROR;
        }
    }
};

LineEditor::LineEditor(Loop& loop, nxLC::State& state)
    : loop_(loop),
      state_(state),
      historyFile_(onlyFile(defaultHistoryFile())),
      editor_(el_init("nxhost", stdin, stdout, stderr)) {
    // Characters are UTF-8, whatever else the user's locale sets.
    if (!std::setlocale(LC_CTYPE, "") || MB_CUR_MAX == 1) std::setlocale(LC_CTYPE, "C.UTF-8");
    EditLine* const editor = editor_.get();
    el_set(editor, EL_CLIENTDATA, this);
    el_set(editor, EL_PROMPT, &Callbacks::prompt);
    el_set(editor, EL_EDITOR, "emacs");
    el_set(editor, EL_SIGNAL, 0);
    el_set(editor, EL_GETCFN, &Callbacks::readKey);
    el_set(editor, EL_HIST, &history, history_.get());
    el_wset(editor, EL_ADDFN, L"nxhost-complete", L"complete a name", &Callbacks::complete);  // el_set leaks
    el_set(editor, EL_BIND, "^I", "nxhost-complete", nullptr);
    HistEvent event;
    history(history_.get(), &event, H_SETSIZE, historySize);
    history(history_.get(), &event, H_SETUNIQUE, 1);
    if (!historyFile_.empty()) history(history_.get(), &event, H_LOAD, historyFile_.c_str());
}

LineEditor::~LineEditor() {
    HistEvent event;
    if (!historyFile_.empty()) history(history_.get(), &event, H_SAVE, historyFile_.c_str());
}

LineEditor::Result LineEditor::read(char const* prompt, std::string& line) {
    prompt_ = prompt;
    interrupted_ = false;
    el_set(editor_.get(), EL_PREP_TERM, 1);  // before the prompt appears and the user types
    int length = 0;
    char const* const text = el_gets(editor_.get(), &length);
    if (interrupted_) {
        LineInfo const* const typed = el_line(editor_.get());
        bool const isEmpty = typed->buffer == typed->lastchar;
        std::fputs("\n", stdout);
        std::fflush(stdout);
        if (isEmpty || loop_.interrupt().isFinal()) return Result::interrupted;
        loop_.interrupt().clear();
        return Result::dropped;
    }
    if (!text || length <= 0) {
        std::fputs("\n", stdout);
        return Result::end;
    }
    remember(text);
    line.assign(text, static_cast<std::size_t>(length));
    if (line.ends_with('\n')) line.pop_back();
    return Result::line;
}

/// Returns 1 for a key and 0 at the end of the input, as libedit's own function does. Collects the bytes of a
/// character.
int LineEditor::readKey(wchar_t& key) {
    std::mbstate_t state{};
    for (;;) {
        while (!loop_.runOnceOrInput(STDIN_FILENO)) el_set(editor_.get(), EL_REFRESH);
        char byte = 0;
        if (::read(STDIN_FILENO, &byte, 1) != 1) return 0;
        switch (std::mbrtowc(&key, &byte, 1, &state)) {
            case static_cast<std::size_t>(-2): break;
            case static_cast<std::size_t>(-1): state = {}; break;  // not a character: ignored
            default: return 1;
        }
    }
}

namespace {

/// The start of a text literal that the line does not end; `npos` if there is none.
std::size_t startOfText(std::string_view line) {
    std::size_t start = line.npos;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (start == line.npos && (line[at] == '"' || line[at] == '\'')) {
            start = at + 1;
        } else if (start != line.npos && line[at] == '\\') {
            ++at;
        } else if (start != line.npos && line[at] == line[start - 1]) {
            start = line.npos;
        }
    }
    return start;
}

/// The files whose path may continue the unfinished text in the line; folders end in a slash.
nxLC::Completion filesFor(std::string_view line) {
    std::size_t const start = startOfText(line);
    std::string_view const path = line.substr(start);
    std::size_t const slash = path.rfind('/');
    std::string_view const folder = slash == path.npos ? std::string_view() : path.substr(0, slash + 1);
    nxLC::Completion found{start, {}};
    std::error_code none;
    for (auto const& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, none)) {
        std::string name = std::string(folder) + entry.path().filename().string();
        if (!name.starts_with(path)) continue;
        if (entry.is_directory(none)) name += '/';
        found.names.emplace_back(name);
    }
    std::sort(found.names.begin(), found.names.end());
    return found;
}

}  // namespace

unsigned char LineEditor::complete() {
    LineInfo const* const typed = el_line(editor_.get());
    std::string_view const before(typed->buffer, static_cast<std::size_t>(typed->cursor - typed->buffer));
    nxLC::Completion const found =
        startOfText(before) == before.npos ? nxLC::completions(state_.get(), before) : filesFor(before);
    if (found.names.empty()) return CC_ERROR;
    std::string_view common = found.names.front();
    for (auto const& name : found.names) common = commonStart(common, name);
    std::string const rest(common.substr(before.size() - found.begin));
    if (!rest.empty()) return el_insertstr(editor_.get(), rest.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    if (found.names.size() == 1) return CC_ERROR;
    std::string list = "\n";
    for (auto const& name : found.names) {
        list += std::string(name) + "  ";
        if (&name - found.names.data() + 1 == static_cast<std::ptrdiff_t>(mostProposals)) break;
    }
    std::puts(list.c_str());
    std::fflush(stdout);
    return CC_REDISPLAY;
}

void LineEditor::remember(char const* line) {
    HistEvent event;
    if (line[0] != '\n') history(history_.get(), &event, H_ENTER, line);
}

}  // namespace nxhost
