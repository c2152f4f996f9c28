// What scripts can do with a scene.
#pragma once

#include "examples/scene/Editor.h"
#include "foundation/nxLC/State.h"
#include "foundation/nxLC/completion.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/urOS/IOStream.h"

namespace scene {

/// Lua with the classes of the library, the objects of the document and a table `scene`, in the sandbox with limits.
///
/// While it lives, the application output, to which scripts print, goes to its signal.
class Scripting {
public:
    explicit Scripting(Editor& editor);
    ~Scripting();

    /// Runs a line or a file as one step of that name. A mistake takes its changes back and is printed.
    bool run(std::string_view source, std::string const& name);
    bool runFile(std::filesystem::path const& path);
    [[nodiscard]] nxLC::Completion complete(std::string_view line) { return nxLC::completions(state_->get(), line); }
    /// For the program's own functions.
    [[nodiscard]] nxRFL::ExposeFunction& functions() { return functions_; }

    urRTB::Signal<std::string_view> printed;

private:
    /// Passes what is printed to the signal.
    class Output final : public urOS::IOStream {
    public:
        explicit Output(Scripting& owner) : owner_(owner) {}
        urUtil::Error read(void*, std::size_t, std::size_t*) override { return {0, "is only written"}; }
        urUtil::Error write(void const* bytes, std::size_t count, std::size_t* done) override;

    private:
        Scripting& owner_;
    };
    void exposeObjects();
    void exposeScene();

    Editor& editor_;
    Output output_{*this};
    nxRFL::Database database_;
    nxRFL::ExposeFunction functions_{database_, "scene"};
    std::optional<nxLC::State> state_;
};

}  // namespace scene
