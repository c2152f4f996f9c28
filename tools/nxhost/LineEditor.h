// Lines typed at a terminal.
#pragma once

#include <histedit.h>

#include <memory>
#include <string>

namespace nxLC {
class State;
}

namespace nxhost {

class Loop;

/// Edits lines with libedit: history, kept in a file between runs, and completion of what scripts see. The main loop
/// goes on while it waits for keys.
///
/// The file is the one that NXHOST_HISTORY names, none if that is empty, by default ~/.nxhost_history.
class LineEditor {
public:
    enum class Result {
        line,
        dropped,      ///< Ctrl-C on a line with something in it
        interrupted,  ///< Ctrl-C on an empty line, or the request to terminate; still pending
        end,          ///< of the input
    };

    LineEditor(Loop& loop, nxLC::State& state);
    LineEditor(LineEditor const&) = delete;
    LineEditor& operator=(LineEditor const&) = delete;
    ~LineEditor();

    /// The line without its end.
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
