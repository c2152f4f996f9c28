// Start-up, running and shut-down.
#include "tools/nxhost/Host.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/urThread/Runnable.h"
#include "plst/make.h"
#include "script/initialize.h"
#include "script/luaFunctions.h"
#include "support/documents/documentFiles.h"
#include "support/messaging/AppInitMsg.h"
#include "support/messaging/InitializeLuaMsg.h"
#include "support/messaging/InitializeReflectionMsg.h"
#include "support/services/PerfScope.h"
#include "support/services/Timeline.h"
#include "tools/nxhost/Cache.h"
#include "tools/nxhost/FileSink.h"
#include "tools/nxhost/requireFunction.h"

namespace nxhost {

using nxSupport::Context;
using urString::CString;

namespace {

urKRCache::Manager* theCache = nullptr;

/// Run once with the module search paths, the script's name and its arguments. It replaces `os.exit`, which would skip
/// the shut-down.
constexpr char const* prelude = R"lua(
    local places, script = ...
    nx = {}
    arg = {[0] = script, select(3, ...)}
    if package then package.path = places .. package.path end
    local exit = host.exit
    if os.exit then os.exit = function(code) exit(code == false and 1 or code ~= true and code or 0) end end
)lua";

/// Calls a script with its arguments. Drops its results, so that they need not be convertible.
constexpr char const* runner = "(...)(select(2, ...))";
constexpr std::string_view runnerInTrace = "\n\tnxhost:1: in main chunk";

/// A script's function in the run queue.
class Later final : public urThread::Runnable {
public:
    explicit Later(std::function<void()> function) : function_(std::move(function)) {}
    void run() override {
        nxSupport::ScriptCallScope const call("later");
        function_();
    }

private:
    std::function<void()> function_;
};

ur::Reference<nxPLST::Dictionary> startParameters(std::vector<std::string> const& arguments) {
    return nxPLST::dictionary({{"arguments", arguments}});
}

/// Converts folders to Lua search patterns.
CString packagePath(std::string_view places) {
    CString result;
    while (!places.empty()) {
        std::string_view const place = places.substr(0, places.find(';'));
        places.remove_prefix(std::min(place.size() + 1, places.size()));
        if (place.empty()) continue;
        result.append(place).append(place.find('?') == place.npos ? "/?.lua;" : ";");
    }
    return result;
}

}  // namespace

// [start]
// The order of the library's start-up: domain, broadcaster and cache exist; a context creates the call information, to
// which the domain adds the services; the library subscribes; then the two messages are sent.
Host::Host(Options const& options)
    : arguments_(options.arguments),
      loop_(options.network, interrupt_),
      diagnostics_(options, domain_, cache_, tree_.history(), *database_.account()) {
    theCache = &cache_;
    urKRCache::setCacheManagerFunc([] { return theCache; });
    cache_.setMemoryLimit64(options.cacheLimit);
    tree_.history().setStepLimit(options.undoSteps);
    tree_.history().setByteLimit(options.undoMemory);
    database_.setErrorHandler([this](nxRFL::Exception const& error) { onCallbackError(error); });
    loop_.transfers().setPipeErrorHandler([this](nxRFL::Exception const& error) { onCallbackError(error); });

    domain_.offer(&broadcaster_);
    domain_.offer(&cache_);
    domain_.offer(&tree_.history());
    domain_.offer(&registry_);
    domain_.offer<nxNet::Manager>(&network_);
    domain_.offer<nxSupport::Domain>(&domain_);
    if (!options.document.empty()) {
        auto const error = nxSupport::open(tree_, options.document);
        if (error.isError()) throw std::runtime_error(std::string(error.message()));
    }
    startUp(options);
}

Host::~Host() {
    if (loop_.transfers().hasPendingWrites()) std::fprintf(stderr, "nxhost: data that wait for a pipe are lost\n");
    loop_.interrupt().watch(nullptr);
    loop_.queue().close();
    state_.reset();
    urKRCache::setCacheManagerFunc(nullptr);
    theCache = nullptr;
}

void Host::startUp(Options const& options) {
    Context const context(&domain_, Context::NoTxn);
    // Like any other module, at a later priority than the library, whose classes are then already registered.
    auto const subscription = broadcaster_.subscribe<nxSupport::InitializeReflectionMsg>(
        {}, [this](nxSupport::InitializeReflectionMsg& message) { registerClasses(*message.getDB()); });
    nxSupport::initialize(database_);
    openState(options);
    nxSupport::initialize(*state_);
    nxSupport::AppInitMsg start(startParameters(options.arguments));
    broadcaster_.broadcast(start);
}
// [start]

void Host::registerClasses(nxRFL::Database& database) {
    exposeNetwork(database);
    exposeDocument(database, document_);
    exposeCache(database, loop_.transfers().options().sandboxed ? cache_.getMemoryLimit64() : 0);
    registerFunctions(database);
}

void Host::registerFunctions(nxRFL::Database& database) {
    nxRFL::ExposeFunction(database, "host")
        .add("turn", [this] { return runOnce(); })
        .add("later", [this](std::function<void()> function) { later(std::move(function)); }, {"body"})
        .add("fileSink", [this](CString const& path) { return fileSink(path); }, {"path"})
        .add("exit", [this](int code) { exit(code); }, {"code"})
        .add("statistics", [this] { return diagnostics_.statistics(); })
        .add("describe", [this](CString const& name) { return describe(name); }, {"name"})
        .add("span",
             [](CString const& name, ur::Reference<nxRFL::Function> const& function) {
                 requireFunction(function != nullptr, "host.span", "2 (body)");
                 nxSupport::ScriptCallScope const span(name);
                 nxRFL::Stack results;
                 function->call({}, results);
             },
             {"name", "body"});
}

void Host::openState(Options const& options) {
    state_ = std::make_unique<nxLC::State>(database_, options.library);
    loop_.interrupt().watch(state_.get());
    give<nxSupport::Domain>("domain", &domain_);
    give<nxNet::Manager>("network", &network_);
    give("registry", &registry_);
    give("document", &document_);
    give("cache", &cache_);
    nxRFL::Stack words;
    nxRFL::Writer writer(words);
    writer.writeText(packagePath(options.scriptPath));
    writer.writeText(options.script.value_or(""));
    for (std::string const& argument : arguments_) writer.writeText(argument);
    call(prelude, words);
    state_->setLimits(options.limits);
}

template <class T>
void Host::give(char const* name, T* object) {
    nxRFL::Stack arguments;
    nxRFL::Writer writer(arguments);
    writer.writeText(name);
    nxRFL::write(writer, object);
    call("local name, value = ... host[name] = value", arguments);
    values_.push_back({name, database_.nameOf(ur::TypeInfo::of<T>())});
}

void Host::call(char const* chunk, nxRFL::Stack const& arguments) {
    nxRFL::Stack results;
    if (auto const error = state_->run(chunk, "=nxhost", arguments, results)) throw *error;
}

CString Host::describe(CString const& name) const {
    CString const text = CString("\n").append(listing(nxRFL::ListingFormat::text));
    for (char const* kind : {"class", "table"}) {
        for (char const* behind : {"\n", ":"}) {
            std::size_t const at = text.find(CString::format("\n%s %s%s", kind, name.c_str(), behind));
            if (at == CString::npos) continue;
            std::size_t end = text.find('\n', at + 1);
            while (end + 1 < text.size() && text[end + 1] == ' ') end = text.find('\n', end + 1);
            return text.substr(at + 1, end - at);
        }
    }
    return {};
}

CString Host::listing(nxRFL::ListingFormat format) const {
    CString text = nxRFL::listing(database_, format);
    if (format == nxRFL::ListingFormat::luaStubs) text += nxSupport::luaFunctionStubs();
    if (format == nxRFL::ListingFormat::text) text += nxSupport::luaFunctionListing();
    bool const isJson = format == nxRFL::ListingFormat::json;
    if (isJson) {
        text.erase(text.rfind(']')).append(database_.tables().empty() ? "" : ",");
        text.append(nxSupport::luaFunctionJson()).append("],\"values\":[");
    }
    char const* separator = "";
    for (auto const& [name, type] : values_) {
        if (isJson) {
            text += CString::format("%s{\"name\":\"host.%s\",\"type\":\"%s\"}", separator, name, type.c_str());
            separator = ",";
        } else if (format == nxRFL::ListingFormat::luaStubs) {
            CString className = type;
            className.replace("::", ".");
            text += CString::format("---@type %s\nhost.%s = nil\n", className.c_str(), name);
        } else {
            text += CString::format("value %s host.%s\n", type.c_str(), name);
        }
    }
    if (isJson) text.append("]}\n");
    return text;
}

bool Host::run(std::string_view source, CString const& name) {
    if (isEnding()) return false;
    nxSupport::PerfScope time;
    time.charge(nxSupport::Perf_TaskExecute);
    nxSupport::ScriptCallScope const scope(name.view().substr(1));  // without the first character of a chunk's name
    try {
        nxRFL::Stack arguments;
        nxRFL::Writer writer(arguments);
        writer.writeFunction(state_->load(source, name));
        for (std::string const& argument : arguments_) writer.writeText(argument);
        call(runner, arguments);
        return true;
    } catch (nxRFL::Exception const& error) {
        report(error);
        failed_ = true;
        return false;
    }
}

void Host::finish() {
    try {
        do {
            while (!isEnding() && loop_.runOnce()) continue;
        } while (!isEnding() && domain_.waitForAsyncTask());
    } catch (Ended const&) {
    }
}

void Host::report(nxRFL::Exception const& error) {
    if (chosenCode_) return;                             // the script has asked for the end
    if (loop_.interrupt().pending() == SIGPIPE) return;  // the reader of the output has closed it
    CString trace = error.trace();
    if (trace.endsWith(runnerInTrace)) trace.erase(trace.size() - runnerInTrace.size());
    std::fprintf(stderr, "nxhost: %s%s%s\n", error.message().c_str(), trace.empty() ? "" : "\n", trace.c_str());
}

int Host::exitCode() noexcept {
    if (chosenCode_) return *chosenCode_;
    constexpr int signalBase = 128;
    if (int const signal = loop_.interrupt().pending()) return signalBase + signal;
    return failed_ ? ExitCode::scriptFailed : ExitCode::done;
}

bool Host::runOnce() {
    try {
        bool const result = loop_.runOnce();
        if (!isEnding()) return result;
    } catch (Ended const&) {
    }
    throw nxRFL::Exception("interrupted");
}

void Host::later(std::function<void()> function) {
    requireFunction(function != nullptr, "host.later", "1 (body)");
    auto call = [this, function = std::move(function)] {
        if (!isEnding()) function();
    };
    loop_.queue().add(ur::make<Later>(std::move(call)));
}

ur::Reference<nxSupport::DataSink> Host::fileSink(CString const& path) {
    if (loop_.transfers().options().sandboxed) throw nxRFL::Exception("files are not for the sandbox");
    return ur::make<FileSink>(path, loop_.transfers());
}

void Host::exit(int code) {
    chosenCode_ = code & 0xFF;
    state_->end();  // ends scripts that catch the error as well
    throw nxRFL::Exception("the script ends");
}

void Host::onCallbackError(nxRFL::Exception const& error) {
    domain_.noteFailure();
    failed_ = true;
    report(error);
}

}  // namespace nxhost
