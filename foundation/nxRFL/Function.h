// A callable that reflection knows: a native function, or one of a script.
#pragma once

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

/// Takes its arguments from one stack and leaves its results on another. Held by reference.
///
/// Derive from it and implement `onCall`. Failing is throwing an `Exception`. A function called as a method finds its
/// object as the first item. The database outlives it, unless the function has become unable to run before.
class NX_API Function : public ur::ReferenceCount {
public:
    /// `method` tells that the first argument is the object on which scripts call it.
    Function(Database* database, bool method) noexcept : database_(database), isMethod_(method) {}
    Function(Function const&) = delete;
    Function& operator=(Function const&) = delete;
    ~Function() override;

    /// Appends the results to `results`, which is not the stack of the arguments.
    void call(Stack const& arguments, Stack& results) const {
        parameters_ ? callWithDefaults(arguments, results) : onCall(arguments, results);
    }

    /// The function has a short way for calls whose arguments are all plain.
    [[nodiscard]] bool takesPlainValues() const noexcept { return takesPlainValues_; }
    /// The short way. False, with nothing done, when the arguments do not fit: `call` then says what is wrong.
    [[nodiscard]] bool callPlain(std::span<PlainValue const> arguments, PlainResult& result) const {
        return onCallPlain(arguments, result);
    }

    /// Raises unless there are `count` arguments, the object included. Defined with `Stack`.
    void validateArity(Stack const& arguments, unsigned count) const;

    /// False once what would run has gone, such as a script's state: calls then do nothing.
    [[nodiscard]] virtual bool canRun() const noexcept { return true; }
    [[nodiscard]] Database* getDB() const noexcept { return database_; }
    [[nodiscard]] bool isMethod() const noexcept { return isMethod_; }
    /// The name that messages give it, such as "nxNet::Request.addHeader"; empty until it is registered.
    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    virtual void setName(urString::CString name) { name_ = std::move(name); }
    /// The names of its types: of the result, of the object if it is a method, of the arguments. Empty when unknown.
    [[nodiscard]] ur::vector<urString::CString> const& signature() const noexcept { return signature_; }
    /// Whether an iterator with this as its value gives the script the elements of the result, an "object[2]".
    [[nodiscard]] bool givesSeveral() const noexcept;
    void setSignature(ur::vector<urString::CString> signature) noexcept { signature_ = std::move(signature); }
    /// Names the arguments, the first ones or all, without the object of a method. Those at the end may have values for
    /// calls that leave them out.
    void setParameters(std::initializer_list<Parameter> parameters);
    /// Empty when nobody has named them.
    [[nodiscard]] std::span<Parameter const> parameters() const noexcept;
    /// The functions of which a call runs one; empty for any other function.
    [[nodiscard]] virtual std::span<ur::Reference<Function> const> overloads() const noexcept { return {}; }
    /// Whether a call may have so many arguments, the object included. Requires: a known signature.
    [[nodiscard]] bool takes(unsigned arguments) const noexcept;

protected:
    virtual void onCall(Stack const& arguments, Stack& results) const = 0;
    /// Is called only after `setTakesPlainValues`.
    virtual bool onCallPlain(std::span<PlainValue const> arguments, PlainResult& result) const;
    void setTakesPlainValues() noexcept { takesPlainValues_ = true; }

private:
    [[noreturn]] void failArity(Stack const& arguments, unsigned count) const;
    void callWithDefaults(Stack const& arguments, Stack& results) const;
    [[nodiscard]] unsigned leastOf(unsigned most) const noexcept;

    Database* database_;
    bool isMethod_;
    bool takesPlainValues_ = false;
    urString::CString name_;
    ur::vector<urString::CString> signature_;
    std::shared_ptr<ur::vector<Parameter> const> parameters_;  ///< null when nobody has named them
};

}  // namespace nxRFL
