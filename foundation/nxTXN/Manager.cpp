// The public face of the history.
#include "foundation/nxTXN/Manager.h"

#include "foundation/nxTXN/impl/Core.h"

namespace nxTXN {
namespace {

urString::CString const noName;

}  // namespace

Manager::Manager() : Manager(impl::Sizes{}) {}
Manager::Manager(impl::Sizes const& sizes) : core_(std::make_unique<impl::Core>(*this, sizes)) {}
Manager::~Manager() = default;

void Manager::begin(urString::CString const& name, TransactionKind kind) { core_->begin(name, kind, nullptr); }
void Manager::beginCoalescing(urString::CString const& name, void const* key) {
    core_->begin(name, TransactionKind::recorded, key);
}
void Manager::endCoalescing() noexcept { core_->seal(); }
bool Manager::commit() { return core_->commit(); }
bool Manager::abort() { return core_->abort(); }
std::size_t Manager::depth() const noexcept { return core_->depth(); }

bool Manager::undo() { return core_->undo(); }
bool Manager::redo() { return core_->redo(); }
bool Manager::canUndo() const noexcept { return core_->ready() && core_->undoCount() > 0; }
bool Manager::canRedo() const noexcept { return core_->ready() && core_->redoCount() > 0; }
std::size_t Manager::undoCount() const noexcept { return core_->undoCount(); }
std::size_t Manager::redoCount() const noexcept { return core_->redoCount(); }
urString::CString const& Manager::undoName() const noexcept { return undoName(0); }
urString::CString const& Manager::redoName() const noexcept { return redoName(0); }
urString::CString const& Manager::undoName(std::size_t position) const noexcept {
    return position < undoCount() ? core_->nameOf(undoCount() - 1 - position) : noName;
}
urString::CString const& Manager::redoName(std::size_t position) const noexcept {
    return position < redoCount() ? core_->nameOf(undoCount() + position) : noName;
}

bool Manager::clear() { return core_->clear(); }
void Manager::setStepLimit(std::size_t steps) { core_->setLimits(steps, core_->byteLimit()); }
void Manager::setByteLimit(std::size_t bytes) { core_->setLimits(core_->stepLimit(), bytes); }
std::size_t Manager::historyBytes() const noexcept { return core_->bytes(); }
urRTB::Signal<>& Manager::changedSignal() noexcept { return core_->changed(); }

}  // namespace nxTXN
