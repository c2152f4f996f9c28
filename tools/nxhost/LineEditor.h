// Reads lines typed at a terminal.
#pragma once

#include <histedit.h>

#include <memory>
#include <string>

namespace nxLC {
class State;
}

namespace nxhost {

class Loop;

/// Edits lines with libedit, with a history that is kept in a file between runs, and completion of names that scripts
/// can use. The main loop continues while it waits for keys.
///
/// NXHOST_HISTORY names the file; if it is empty there is none. The default is ~/.nxhost_history.
class LineEditor {
public:
    enum class Result {
        line,
        dropped,      ///< Ctrl-C on a line with text
        interrupted,  ///< Ctrl-C on an empty line, or a termination request; the signal is still pending
        end,          ///< the end of the input
    };

    LineEditor(Loop& loop, nxLC::State& state);
    LineEditor(LineEditor const&) = delete;
    LineEditor& operator=(LineEditor const&) = delete;
    ~LineEditor();

    /// Reads one line and removes its line end.
    Result read(char const* prompt, std::string& line);

private:
    struct End {
        void operator()(EditLine* editor) const noexcept { el_end(editor); }
        void operator()(History* history) const noexcept { history_end(history); }
    };
    struct Callbacks;

    [[nodiscard]] int readKey(wchar_t& key);
    [[nodiscard]] unsigned char complete();
    void remember(char const* line);

    Loop& loop_;
    nxLC::State& state_;
    std::string historyFile_;
    char const* prompt_ = "";
    bool interrupted_ = false;
    std::unique_ptr<History, End> history_{history_init()};
    std::unique_ptr<EditLine, End> editor_;
};

}  // namespace nxhost
