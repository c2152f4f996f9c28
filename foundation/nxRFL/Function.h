// A reflected callable: a native or a script function.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>

#include "foundation/nxRFL/PlainValue.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

namespace nxRFL {

class Database;
class Stack;
struct Parameter;

/// Takes arguments from one stack and appends results to another. Held by reference.
///
/// Derive from it and implement `onCall`, which throws an `Exception` to fail. A method finds its object as the first
/// item. The database outlives the function, unless the function can no longer run.
class NX_API Function : public ur::ReferenceCount {
public:
    /// `method` says whether the first argument is the object on which scripts call it.
    Function(Database* database, bool method) noexcept : database_(database), isMethod_(method) {}
    Function(Function const&) = delete;
    Function& operator=(Function const&) = delete;
    ~Function() override;

    /// Appends the results to `results`, which must not be the stack of the arguments. When the function calls a
    /// callback for which it got nil, this raises an `Exception` that names the argument.
    void call(Stack const& arguments, Stack& results) const {
        try {
            parameters_ || optionals_ > 0 ? callWithDefaults(arguments, results) : onCall(arguments, results);
        } catch (std::bad_function_call const&) {
            failOnNullCallback(arguments);
        }
    }

    /// Whether the function has a fast path for calls with plain arguments only.
    [[nodiscard]] bool takesPlainValues() const noexcept { return takesPlainValues_; }
    /// The fast path. False, with nothing done, when the arguments do not fit: `call` then reports the reason.
    [[nodiscard]] bool callPlain(std::span<PlainValue const> arguments, PlainResult& result) const {
        return onCallPlain(arguments, result);
    }

    /// Raises unless there are `count` arguments, the object included. Defined with `Stack`.
    void validateArity(Stack const& arguments, unsigned count) const;

    /// False once the target is gone, such as a closed script state: calls then do nothing.
    [[nodiscard]] virtual bool canRun() const noexcept { return true; }
    [[nodiscard]] Database* getDB() const noexcept { return database_; }
    [[nodiscard]] bool isMethod() const noexcept { return isMethod_; }
    /// The name in messages, such as "nxNet::Request.addHeader"; empty until the function is registered.
    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    virtual void setName(urString::CString name) { name_ = std::move(name); }
    /// How messages refer to the function: its name, or where a script defines it: "the function at tool.lua:3".
    [[nodiscard]] virtual urString::CString describe() const;
    /// The type names of the result, of the object if it is a method, and of the arguments. Empty when unknown.
    [[nodiscard]] ur::vector<urString::CString> const& signature() const noexcept { return signature_; }
    /// Whether an iterator with this value function passes the elements of the result, an "object[2]", as two values.
    [[nodiscard]] bool givesSeveral() const noexcept;
    void setSignature(ur::vector<urString::CString> signature) noexcept { signature_ = std::move(signature); }
    /// Names the first or all arguments, without the object of a method. Arguments at the end may have defaults for
    /// calls that omit them. Raises when there are more names than arguments, when a default comes before an argument
    /// without one, and for a default of another type than its argument.
    void setParameters(std::initializer_list<Parameter> parameters);
    void setParameters(std::span<Parameter const> parameters) { onSetParameters(parameters); }
    /// Empty when the arguments have no names.
    [[nodiscard]] std::span<Parameter const> parameters() const noexcept;
    /// Whether calls may omit that argument, counted from 0 without the object: it has a default, or is a
    /// `std::optional`, and so are all after it.
    [[nodiscard]] bool mayOmit(std::size_t argument) const noexcept;
    /// The functions among which a call chooses; empty for any other function.
    [[nodiscard]] virtual std::span<ur::Reference<Function> const> overloads() const noexcept { return {}; }
    /// The most arguments of a call, without the object. Requires: a known signature.
    [[nodiscard]] std::size_t mostArguments() const noexcept { return signature_.size() - (isMethod_ ? 2 : 1); }
    /// Whether a call may have that many arguments, the object included. Requires: a known signature.
    [[nodiscard]] bool takes(unsigned arguments) const noexcept;

protected:
    virtual void onCall(Stack const& arguments, Stack& results) const = 0;
    /// Called only after `setTakesPlainValues`.
    virtual bool onCallPlain(std::span<PlainValue const> arguments, PlainResult& result) const;
    virtual void onSetParameters(std::span<Parameter const> parameters);
    /// Raises unless the function has `names` arguments at least, when it has `most`.
    void requireArguments(std::size_t names, std::size_t most) const;
    void setTakesPlainValues() noexcept { takesPlainValues_ = true; }
    /// The last arguments are `std::optional`: calls that omit them pass none.
    void setOptionals(std::size_t count) noexcept { optionals_ = static_cast<std::uint32_t>(count); }
    /// Raises an `Exception` about the default of a parameter.
    [[noreturn]] void failDefault(Parameter const& parameter, urString::CString const& reason) const;

private:
    [[noreturn]] void failArity(Stack const& arguments, unsigned count) const;
    [[noreturn]] void failOnNullCallback(Stack const& arguments) const;
    void callWithDefaults(Stack const& arguments, Stack& results) const;
    [[nodiscard]] unsigned leastOf(unsigned most) const noexcept;
    void requireDefaultsAtTheEnd() const;

    Database* database_;
    bool isMethod_;
    bool takesPlainValues_ = false;
    std::uint32_t optionals_ = 0;  ///< the number of arguments at the end that are optional by their types
    urString::CString name_;
    ur::vector<urString::CString> signature_;
    std::shared_ptr<ur::vector<Parameter> const> parameters_;  ///< null when the arguments have no names
};

}  // namespace nxRFL
