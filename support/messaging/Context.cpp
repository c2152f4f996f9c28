// Contexts, their post functions, and the table of modes.
#include "support/messaging/Context.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/urOS/FirstError.h"
#include "support/messaging/Domain.h"
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

Context::Context(Domain* domain, Mode mode) : mode_(mode), domain_(domain) { domain->beginContext(*this); }

Context::~Context() noexcept(false) {
    urOS::FirstError errors("nxSupport::Context: while it ended");
    if (domain_) domain_->impl_->end(*this, errors);
    errors.guard([this] { runPostFunctions(); });
    domain_ = nullptr;
    errors.leaveDestructor();
}

void Context::runPostFunctions() {
    if (!domain_ || postFunctions_.empty()) return;
    urRTB::ScopedConnection const watch(domain_->destroying.addCallback([this](Domain*) { domain_ = nullptr; }));
    while (!postFunctions_.empty()) {
        for (PostFunction const& function : std::exchange(postFunctions_, {})) {
            if (!domain_) return;
            function(domain_);
        }
    }
}

void Context::addPostFunction(PostFunction function) const { postFunctions_.push_back(std::move(function)); }

bool Context::isActive(Context const* context) noexcept {
    return std::ranges::find(DomainImpl::active(), context) != DomainImpl::active().end();
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
