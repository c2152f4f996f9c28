// The table of modes, and what a context can be asked at any time.
#include "support/messaging/Context.h"

#include <array>
#include <utility>

#include "support/messaging/impl/DomainImpl.h"

namespace nxSupport {

namespace {

struct ModeName {
    Context::Mode mode;
    urString::CString name;
};

std::array<ModeName, 12> const& modeNames() {
    static std::array<ModeName, 12> const table{{
        {Context::InteractionStart, "InteractionStart"},
        {Context::InteractionPerform, "InteractionPerform"},
        {Context::InteractionEnd, "InteractionEnd"},
        {Context::Momentary, "Momentary"},
        {Context::Transient, "Transient"},
        {Context::Const, "Const"},
        {Context::ConstWithRedraw, "ConstWithRedraw"},
        {Context::NoTxn, "NoTxn"},
        {Context::Undecided, "Undecided"},
        {Context::AppOnly, "AppOnly"},
        {Context::Bootstrap, "Bootstrap"},
        {Context::Bare, "Bare"},
    }};
    return table;
}

}  // namespace

void Context::addPostFunction(PostFunction function) const {
    if (!postFunctions_) postFunctions_ = std::make_unique<ur::vector<PostFunction>>();
    postFunctions_->push_back(std::move(function));
}

bool Context::isActive(Context const* context) noexcept {
    Context const* active = DomainImpl::latest;
    while (active && active != context) active = active->before_;
    return active != nullptr;
}

urString::CString const& Context::modeToString(Mode mode) noexcept {
    static urString::CString const none;
    return mode < modeNames().size() ? modeNames()[mode].name : none;
}

bool Context::modeFromString(Mode& mode, urString::CString const& name) noexcept {
    for (ModeName const& entry : modeNames()) {
        if (entry.name != name) continue;
        mode = entry.mode;
        return true;
    }
    return false;
}

TransactionType mapTransactionType(Context::Mode mode) noexcept {
    switch (mode) {
        case Context::InteractionStart:
        case Context::InteractionPerform:
        case Context::InteractionEnd:
        case Context::Momentary: return TxnRecorded;
        case Context::Transient: return TxnTransient;
        case Context::Const:
        case Context::ConstWithRedraw: return TxnConst;
        case Context::NoTxn:
        case Context::AppOnly:
        case Context::Bootstrap:
        case Context::Bare: return TxnNone;
        case Context::Undecided: break;
    }
    return TxnUndecided;
}

}  // namespace nxSupport
