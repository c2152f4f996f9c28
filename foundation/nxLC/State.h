// A Lua state of one's own.
#pragma once

#include <optional>
#include <string_view>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"

namespace nxLC {

/// What scripts may do.
enum class Library {
    everything,  ///< all that Lua has
    sandboxed,   ///< no files, processes, environment variables, loading of code or packages, finalizers, debug library
};

/// A Lua state bound to a reflection database: opens both, runs scripts, closes both.
///
/// The host owns it. Scripts may end up destroying it: it then closes when the outermost call has returned. Functions
/// of it that native code still holds do nothing from then on. One thread at a time, except `interrupt`.
class NX_API State {
public:
    /// The database outlives the state. Throws when there is no memory.
    explicit State(nxRFL::Database& database, Library library = Library::everything);
    State(State const&) = delete;
    State& operator=(State const&) = delete;
    ~State();

    [[nodiscard]] lua_State* get() const noexcept { return state_; }
    [[nodiscard]] ReflectionData& reflection() const noexcept { return *reflection_; }

    /// The script as a function, not yet called. `name` stands in messages: "@" and a file name, "=" and any text, or
    /// the source itself. Throws an `nxRFL::Exception` when it is no valid script; a sandbox takes no compiled ones.
    [[nodiscard]] ur::Reference<nxRFL::Function> load(std::string_view source, urString::CString const& name);
    /// Loads and calls a script. Gives the error, with the script's trace, or nothing.
    [[nodiscard]] std::optional<nxRFL::Exception> run(std::string_view source, urString::CString const& name);
    /// The same, with arguments and results.
    [[nodiscard]] std::optional<nxRFL::Exception> run(std::string_view source, urString::CString const& name,
                                                      nxRFL::Stack const& arguments, nxRFL::Stack& results);

    /// For every call from native code into scripts from now on.
    void setLimits(Limits const& limits) noexcept { reflection_->setLimits(limits); }
    /// Ends the script that runs, if one does. Safe in signal handlers and on any thread.
    void interrupt() noexcept { reflection_->interrupt(); }
    /// For a native function that the script has called: when it throws, the script ends, whatever it catches. Nothing
    /// more of it runs, finalizers of its proxies included, and later calls fail.
    void end() noexcept { reflection_->end(); }

private:
    Library library_;
    lua_State* state_;
    ReflectionData* reflection_;
};

}  // namespace nxLC
