// Finds an operation by name, calls it with items, observes it with hooks, and delays it to the end of a scope.
#include <cstdio>
#include <map>
#include <optional>

#include "dyd/Invocation.h"
#include "plst/make.h"

using nxDYD::Arg;
using ur::Reference;
using Args = ur::vector<Reference<Arg>>;

Reference<Arg> number(double value) { return ur::make<Arg>(nxPLST::itemOf(value)); }

// [function]
class Area : public nxDYD::Function {
public:
    Area() : Function("area") {}

private:
    Reference<Arg> onCall(Args& args) override {
        if (args.size() != 2) return nullptr;
        auto const width = nxPLST::valueOf<std::optional<double>>(args[0]->item());
        auto const height = nxPLST::valueOf<std::optional<double>>(args[1]->item());
        return width && height ? number(*width * *height) : nullptr;
    }
};
// [function]

// [hooks]
class Trace : public nxDYD::Hooks {
public:
    void preInvoke(nxDYD::Function* function, Args& args) override {
        std::printf("%s of %zu arguments\n", function->name().c_str(), args.size());
    }
    void postInvoke(nxDYD::Function* function, Args const&, Arg const* result) override {
        std::printf("%s gives %s\n", function->name().c_str(), result ? "a value" : "nothing");
    }
};
// [hooks]

int main() {
    std::map<urString::CString, Reference<nxDYD::Function>> operations;
    auto const area = ur::make<Area>();
    operations[area->name()] = area;

    // [call]
    Reference<nxDYD::Function> const found = operations["area"];
    Args args{number(3), number(4)};
    Reference<Arg> const result = found->call(args);
    std::printf("%g\n", nxPLST::valueOf<double>(result->item()));

    found->setHooks(ur::make<Trace>());
    {
        nxDYD::Invocation const later(found.get(), args);
        std::printf("put off; %zu arguments left here\n", args.size());
    }
    // [call]
    return 0;
}
