// The reference host.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/Database.h"
#include "krcache/Manager.h"
#include "support/documents/Document.h"
#include "support/messaging/Broadcaster.h"
#include "support/messaging/DataSink.h"
#include "support/services/Registry.h"
#include "tools/nxhost/Connection.h"
#include "tools/nxhost/Diagnostics.h"
#include "tools/nxhost/Document.h"
#include "tools/nxhost/HostDomain.h"
#include "tools/nxhost/Loop.h"
#include "tools/nxhost/Options.h"
#include "tools/nxhost/TemporaryFolder.h"

namespace nxhost {

/// Owns all objects that libSupport needs from its host, and runs scripts.
///
/// Its constructor is the start-up, step by step; its members are destroyed in the reverse order. One at a time in a
/// process. Scripts run inside a context of the domain, which the caller begins.
class Host {
public:
    explicit Host(Options const& options);
    Host(Host const&) = delete;
    Host& operator=(Host const&) = delete;
    ~Host();

    [[nodiscard]] Loop& loop() noexcept { return loop_; }
    [[nodiscard]] HostDomain& domain() noexcept { return domain_; }
    [[nodiscard]] nxLC::State& state() noexcept { return *state_; }
    [[nodiscard]] Diagnostics const& diagnostics() const noexcept { return diagnostics_; }
    /// Lists everything that scripts can use, with the values in the table `host`.
    [[nodiscard]] urString::CString listing(nxRFL::ListingFormat format) const;

    /// Runs a script with the arguments of the command line. False if it failed, which has been reported.
    bool run(std::string_view source, urString::CString const& name);
    /// Runs the main loop until no work is left or the end is requested.
    void finish();

    /// Prints a script's error on the standard error: message, place and trace.
    void report(nxRFL::Exception const& error);
    /// Whether the script or a signal has requested the end.
    [[nodiscard]] bool isEnding() noexcept { return chosenCode_ || loop_.interrupt().pending() != 0; }
    /// Ignores the failures so far for the exit code, because the user has seen them.
    void clearFailures() noexcept { failed_ = false; }
    [[nodiscard]] bool hasChosenExit() const noexcept { return chosenCode_.has_value(); }
    [[nodiscard]] int exitCode() noexcept;

private:
    /// A value in the table `host`, which also holds functions.
    struct Value {
        char const* name;
        urString::CString type;
    };

    void registerClasses(nxRFL::Database& database);
    void registerFunctions(nxRFL::Database& database);
    void startUp(Options const& options);
    void openState(Options const& options);
    template <class T>
    void give(char const* name, T* object);
    void call(char const* chunk, nxRFL::Stack const& arguments);

    // Called by scripts.
    bool runOnce();
    void later(std::function<void()> function);
    ur::Reference<nxSupport::DataSink> fileSink(urString::CString const& path);
    void exit(int code);
    /// The listing of that class or table; empty if there is none of that name.
    [[nodiscard]] urString::CString describe(urString::CString const& name) const;
    void onCallbackError(nxRFL::Exception const& error);

    std::vector<std::string> const arguments_;
    std::vector<Value> values_;
    std::optional<int> chosenCode_;
    bool failed_ = false;

    // [members]
    Interrupt interrupt_;
    TemporaryFolder folder_{interrupt_};
    Loop loop_;
    nxSupport::ObjectCatalog catalog_;
    nxSupport::Document tree_{catalog_, "Document"};
    HostDomain domain_{loop_.queue(), tree_.history()};
    urKRCache::Manager cache_{folder_.path()};
    nxSupport::Broadcaster broadcaster_;
    nxRFL::Database database_;
    nxSupport::Registry registry_;
    Network network_{loop_.transfers()};
    Document document_{tree_, catalog_, domain_, loop_.transfers().options()};
    Diagnostics diagnostics_;
    std::unique_ptr<nxLC::State> state_;
    // [members]
};

}  // namespace nxhost
