// Keeps properties and values equal.
#include "support/documents/impl/PropertyBinding.h"

#include "support/documents/Document.h"

namespace nxSupport::impl {

using ItemReference = Object::ItemReference;

namespace {

/// True while it lives.
class Flag {
public:
    explicit Flag(bool& flag) noexcept : flag_(flag), before_(std::exchange(flag, true)) {}
    Flag(Flag const&) = delete;
    Flag& operator=(Flag const&) = delete;
    ~Flag() { flag_ = before_; }

private:
    bool& flag_;
    bool const before_;
};

}  // namespace

PropertyBinding::PropertyBinding(ur::vector<Object*> objects, urString::CString name,
                                 PropertyDescription const* description)
    : objects_(std::move(objects)),
      name_(std::move(name)),
      description_(description),
      differs_(objects_.size()),
      own_(Property::createUnTxd(name_, objects_.front()->value(name_))),
      shown_(own_->cloneUnTxd()) {
    compareAll();
    show();
    listening_ = own_->subscribe([this](auto const&, PropertyModType stage) { onStage(stage); });
    validating_ = own_->subscribeValidation([this](auto const&, ItemReference& candidate) { correct(candidate); });
}

/// A value that the objects would refuse leaves what they have.
void PropertyBinding::correct(ItemReference& candidate) const {
    if (showing_ || !description_) return;
    auto nearest = description_->readOnly ? nullptr : description_->nearest(candidate);
    candidate = nearest ? std::move(nearest) : own_->value();
}

// A listener may let go of the binding.
void PropertyBinding::onStage(PropertyModType stage) {
    ur::Reference<PropertyBinding> const self(this);
    Document* const document = objects_.front()->document();
    if (!document || showing_) return;
    if (stage == ModifyStart || stage == ModifyEnd) document->history().endCoalescing();
    if (stage == ModifyPerform && (own_->value() || !isMixed())) setAll(own_->value());
}

void PropertyBinding::setAll(ItemReference const& value) {
    ur::vector<ur::Reference<Object>> const held(objects_.begin(), objects_.end());
    nxTXN::Manager& history = held.front()->document()->history();
    auto const& label = description_ && !description_->label.empty() ? description_->label : name_;
    history.beginCoalescing(urString::CString("Set ").append(label), this);
    try {
        Flag const setting(setting_);
        for (auto const& object : held) object->setValue(name_, value);
    } catch (...) {
        history.abort();
        throw;
    }
    history.commit();
    compareAll();
    show();
}

void PropertyBinding::objectChanged(std::size_t index) {
    if (setting_) return;
    ur::Reference<PropertyBinding> const self(this);
    index == 0 ? compareAll() : compare(index);
    show();
}

void PropertyBinding::compare(std::size_t index) {
    bool const differs = !nxPLST::equal(objects_[index]->value(name_), objects_.front()->value(name_));
    if (differs == differs_[index]) return;
    differs_[index] = differs;
    differing_ += differs ? 1 : std::size_t(-1);
}

void PropertyBinding::compareAll() {
    for (std::size_t i = 1; i < objects_.size(); ++i) compare(i);
}

void PropertyBinding::show() {
    auto const value = isMixed() ? nullptr : objects_.front()->value(name_);
    if (nxPLST::equal(own_->value(), value)) return;
    Flag const showing(showing_);
    own_->setValue(value);
}

}  // namespace nxSupport::impl
