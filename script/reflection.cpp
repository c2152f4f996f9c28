// The registered members and what they do.
#include "script/reflection.h"

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/urOS/Uuid.h"
#include "net/reflection.h"
#include "script/reflectedValues.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/DataSink.h"
#include "support/messaging/Domain.h"
#include "support/services/Registry.h"

namespace nxSupport {

using nxRFL::Database;
using nxRFL::ExposeClass;
using urString::CString;

namespace {

/// Raises unless the script gave a function for the argument, which is such as "2 (body)".
template <class Callable>
void requireFunction(Callable const& function, char const* name, char const* argument) {
    if (!function)
        throw nxRFL::Exception(CString::format("%s: argument %s must be function, but is null", name, argument));
}

void exec(Domain& domain, CString const& modeName, std::function<void(Context const&)> const& function) {
    Context::Mode mode{};
    if (!Context::modeFromString(mode, modeName))
        throw nxRFL::Exception(CString::format("Invalid nxSupport::Context mode: %s", modeName.c_str()));
    requireFunction(function, "nxSupport::Context.exec", "3 (body)");
    Context const context(&domain, mode);
    function(context);
}

void addPostFunction(Context& context, std::function<void(Domain*)> const& function) {
    requireFunction(function, "nxSupport::Context.addPostFunction", "1 (callback)");
    context.addPostFunction(function);
}

/// Sinks may count on being given a buffer.
void processData(DataSink& sink, urThread::Buffer& data) { sink.processData(ur::Reference<urThread::Buffer>(&data)); }

/// The service of that class in the current call information, or null.
nxRFL::Object findService(nxRFL::Class& serviceClass) {
    return nxRFL::Object(ci().getByType(serviceClass.getType()), serviceClass);
}

urUtil::Color toColor(urUtil::HSL const& hsl) {
    urUtil::Color color;
    urUtil::HSLtoRGB(hsl, color);
    return color;
}

/// Upper-case digits in groups of 8, 4, 4, 4 and 12, however the identifier writes itself.
CString generateUuid() {
    urOS::Uuid uuid;
    uuid.generate();
    CString digits = uuid.asString();
    digits.replace("-", "");
    CString text = digits.substr(0, 8);
    for (std::size_t const position : {8, 12, 16}) text.append("-").append(digits.substr(position, 4));
    return text.append("-").append(digits.substr(20, 12)).toUpperCase();
}

void registerTransactions(Database& database) {
    ExposeClass<nxTXN::Manager>(database, "nxTXN::Manager", nxRFL::impl::ownableType<nxTXN::Manager>);
    ExposeClass<nxTXN::Object>(database, "nxTXN::Object");
    ExposeClass<nxTXN::RefCountedObject>(database, "nxTXN::RefCountedObject").addBase<nxTXN::Object>();
}

void registerSupport(Database& database) {
    // A context ends with its scope, even if scripts still refer to it.
    ExposeClass<Context>(database, "nxSupport::Context")
        .setAliveTest([](void const* context) { return Context::isActive(static_cast<Context const*>(context)); })
        .addStaticMethod("exec", &exec, {"domain", "mode", "body"})
        .addMethod("addPostFunction", &addPostFunction, {"callback"});
    ExposeClass<DataSink>(database, "nxSupport::DataSink")
        .setHasHiddenSubclasses()
        .addMethod("processData", &processData, {"buffer"})
        .addMethod("close", &DataSink::close, {"completed"})
        .addMethod("closed", &DataSink::closed)
        .addMethod("completed", &DataSink::completed);
    // Those of documents go with their document.
    ExposeClass<Domain>(database, "nxSupport::Domain")
        .setAliveTest([](void const* domain) { return Domain::isAlive(static_cast<Domain const*>(domain)); })
        .addProperty("rootContext", &Domain::getRootContext)
        .addProperty("currentContext", &Domain::getCurrentContext);
    ExposeClass<Registry>(database, "nxSupport::Registry")
        .addMethod("setKey", &Registry::setKey, {"key", "value"})
        .addMethod("hasKey", &Registry::hasKey, {"key"})
        .addMethod("getKey", &Registry::getKey, {"key"});
}

void registerFunctions(Database& database) {
    nxRFL::ExposeFunction(database, "nxSupport")
        .add("ci", &findService, {"class"})
        .add("RGBtoHSL", &urUtil::RGBtoHSL, {"rgb"})
        .add("HSLtoRGB", &toColor, {"hsl"})
        .add("generateUuid", &generateUuid);
}

}  // namespace

void registerReflection(InitializeReflectionMsg& message) {
    Database& database = *message.getDB();
    registerTransactions(database);
    registerSupport(database);
    registerFunctions(database);
    nxNet::initializeReflection(&database);
}

}  // namespace nxSupport
