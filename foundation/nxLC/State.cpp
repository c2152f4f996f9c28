// Opens, runs and closes Lua states.
#include "foundation/nxLC/State.h"

#include <memory>
#include <new>

#include "foundation/nxLC/impl/ScriptFunction.h"
#include "foundation/nxLC/impl/errors.h"
#include "foundation/nxLC/impl/libraries.h"

namespace nxLC {

namespace {

/// Compiling cannot be interrupted, and takes time with the square of some statements' number.
constexpr std::size_t longestSandboxed = std::size_t(512) << 10U;

}  // namespace

using nxRFL::Exception;

namespace {

lua_State* openState(Library library) {
    std::unique_ptr<lua_State, decltype(&lua_close)> state(luaL_newstate(), &lua_close);
    if (!state) throw std::bad_alloc();
    protect(state.get(), 0, 0, [library](lua_State* inner) {
        impl::openLibraries(inner, library);
        return 0;
    });
    return state.release();
}

}  // namespace

State::State(nxRFL::Database& database, Library library) : library_(library), state_(openState(library)) {
    try {
        reflection_ = &ReflectionData::bind(state_, database);
    } catch (...) {
        lua_close(state_);
        throw;
    }
}

State::~State() {
    impl::Binding& binding = *impl::Binding::find(state_);
    if (binding.meter.active()) {
        binding.closeWhenIdle = true;
    } else {
        lua_close(state_);
    }
}

ur::Reference<nxRFL::Function> State::load(std::string_view source, urString::CString const& name) {
    if (library_ == Library::sandboxed && source.starts_with(LUA_SIGNATURE[0]))
        throw Exception("a sandbox takes no compiled script");
    if (library_ == Library::sandboxed && source.size() > longestSandboxed)
        throw Exception("a sandbox takes no script of more than 512 KiB");
    impl::Binding& binding = *impl::Binding::find(state_);
    impl::Metered const metered(binding.meter);
    int place = 0;
    protect(binding.running, 0, 0, [&](lua_State* state) {
        if (luaL_loadbuffer(state, source.data(), source.size(), name.c_str()) != 0) return lua_error(state);
        place = impl::keepFunction(binding, state, lua_gettop(state));
        return 0;
    });
    return impl::functionAt(binding, place);
}

std::optional<Exception> State::run(std::string_view source, urString::CString const& name) {
    nxRFL::Stack results;
    return run(source, name, {}, results);
}

std::optional<Exception> State::run(std::string_view source, urString::CString const& name,
                                    nxRFL::Stack const& arguments, nxRFL::Stack& results) {
    try {
        load(source, name)->call(arguments, results);
        return std::nullopt;
    } catch (Exception const& error) {
        return error;
    } catch (std::exception const& error) {
        return Exception(error.what());
    }
}

}  // namespace nxLC
