// The common part of all functions.
#include "foundation/nxRFL/Function.h"

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Parameter.h"
#include "foundation/nxRFL/Reader.h"

namespace nxRFL {

using urString::CString;

Function::~Function() = default;

bool Function::onCallPlain(std::span<PlainValue const> /*arguments*/, PlainResult& /*result*/) const { return false; }

bool Function::givesSeveral() const noexcept { return !signature_.empty() && signature_.front().startsWith("object["); }

void Function::failArity(Stack const& arguments, unsigned count) const {
    CString message = describe();
    if (isMethod_ && Reader(arguments).kind() != Kind::object)
        throw Exception(message.append(" must be called on an object: object:name(...)"));
    unsigned const object = isMethod_ ? 1 : 0;
    unsigned const most = count - object;
    unsigned const least = leastOf(count) - object;
    if (least < most) message.append(CString::format(" takes %u to %u arguments", least, most));
    if (least == most) message.append(CString::format(" takes %u argument%s", most, most == 1 ? "" : "s"));
    throw Exception(message.append(CString::format(", but got %u", arguments.size() - object)));
}

void Function::failOnNullCallback(Stack const& arguments) const {
    Reader reader(arguments, *this);
    for (std::size_t i = 1; i < signature_.size() && reader.kind() != Kind::none; ++i, reader.skip()) {
        if (signature_[i] == "function" && reader.isNull()) reader.fail("function");
    }
    throw;
}

CString Function::describe() const { return name_.empty() ? CString("the function") : name_; }

void Function::setParameters(std::initializer_list<Parameter> parameters) {
    onSetParameters({parameters.begin(), parameters.size()});
}

void Function::onSetParameters(std::span<Parameter const> parameters) {
    if (!signature_.empty()) requireArguments(parameters.size(), mostArguments());
    parameters_ = std::make_shared<ur::vector<Parameter>>(parameters.begin(), parameters.end());
    if (!signature_.empty()) requireDefaultsAtTheEnd();
}

void Function::requireDefaultsAtTheEnd() const {
    auto const named = parameters();
    for (std::size_t i = 0; i < named.size(); ++i) {
        if (named[i].without && !mayOmit(i)) failDefault(named[i], "comes before an argument without one");
    }
}

void Function::failDefault(Parameter const& parameter, CString const& reason) const {
    throw Exception(describe().append(": the default of ").append(parameter.name).append(" ").append(reason));
}

void Function::requireArguments(std::size_t names, std::size_t most) const {
    if (names <= most) return;
    throw Exception(describe().append(
        CString::format(" takes %zu argument%s, but has names for %zu", most, most == 1 ? "" : "s", names)));
}

std::span<Parameter const> Function::parameters() const noexcept {
    return parameters_ ? std::span<Parameter const>(*parameters_) : std::span<Parameter const>();
}

/// The fewest arguments, the object included, if the most are `most`.
unsigned Function::leastOf(unsigned most) const noexcept {
    std::size_t const object = isMethod_ ? 1 : 0;
    auto const named = parameters();
    std::size_t const firstOptional = most - optionals_;
    auto const mayGo = [&](std::size_t argument) {
        bool const hasDefault = argument - object < named.size() && named[argument - object].without;
        return hasDefault || argument >= firstOptional;
    };
    while (most > object && mayGo(most - 1)) --most;
    return most;
}

bool Function::mayOmit(std::size_t argument) const noexcept {
    if (signature_.empty()) return argument < parameters().size() && parameters()[argument].without;
    return argument + (isMethod_ ? 1 : 0) >= leastOf(static_cast<unsigned>(signature_.size()) - 1);
}

bool Function::takes(unsigned arguments) const noexcept {
    auto const most = static_cast<unsigned>(signature_.size()) - 1;
    return arguments <= most && arguments >= leastOf(most);
}

void Function::callWithDefaults(Stack const& arguments, Stack& results) const {
    std::size_t const object = isMethod_ ? 1 : 0;
    auto const named = parameters();
    if (signature_.empty() || arguments.size() < object || !takes(arguments.size()) ||
        arguments.size() - object >= mostArguments()) {
        return onCall(arguments, results);
    }
    Stack all(arguments);
    Writer writer(all);
    for (std::size_t i = arguments.size() - object; i < mostArguments(); ++i) {
        i < named.size() && named[i].without ? writer.writeItem(*named[i].without) : writer.writeNull();
    }
    onCall(all, results);
}

}  // namespace nxRFL
