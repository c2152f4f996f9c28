// A Lua state that the host owns.
#pragma once

#include <optional>
#include <string_view>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"

namespace nxLC {

/// The libraries that scripts may use.
enum class Library {
    everything,  ///< all libraries of Lua
    sandboxed,   ///< no files, processes, environment variables, code or package loading, finalizers or debug library
};

/// A Lua state bound to a reflection database: opens both, runs scripts, closes both.
///
/// The host owns it. A script may destroy it: it then closes when the outermost call has returned. After that,
/// functions of the state that native code still holds do nothing. One thread at a time, except `interrupt`.
class NX_API State {
public:
    /// The database must outlive the state. Throws when memory is exhausted.
    explicit State(nxRFL::Database& database, Library library = Library::everything);
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    ~State();

    [[nodiscard]] lua_State* get() const noexcept { return state_; }
    [[nodiscard]] ReflectionData& reflection() const noexcept { return *reflection_; }

    /// Returns the script as a function without calling it. `name` appears in messages: "@" and a file name, "=" and
    /// any text, or the source itself. Throws an `nxRFL::Exception` if the script is invalid; a sandbox rejects
    /// compiled scripts.
    [[nodiscard]] ur::Reference<nxRFL::Function> load(std::string_view source, urString::CString const& name);
    /// Loads and calls a script. Returns the error with the script's trace, or nothing.
    [[nodiscard]] std::optional<nxRFL::Exception> run(std::string_view source, urString::CString const& name);
    /// The same, with arguments and results.
    [[nodiscard]] std::optional<nxRFL::Exception> run(std::string_view source, urString::CString const& name,
                                                      nxRFL::Stack const& arguments, nxRFL::Stack& results);

    /// Applies to every later call from native code into scripts.
    void setLimits(Limits const& limits) noexcept { reflection_->setLimits(limits); }
    /// Ends the running script, if any. Safe in signal handlers and on any thread.
    void interrupt() noexcept { reflection_->interrupt(); }
    /// For a native function that the script has called: when it throws, the script ends, even if it catches errors.
    /// Nothing more of it runs, not even finalizers of its proxies, and later calls fail.
    void end() noexcept { reflection_->end(); }

private:
    Library library_;
    lua_State* state_;
    ReflectionData* reflection_;
};

}  // namespace nxLC
