// A transaction object for tests: a value, a reference and a list, and a log of its hooks.
#pragma once

#include <functional>
#include <string>

#include "foundation/nxTXN/Manager.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/fields.h"

namespace nxTXN::test {

/// A log of events, as words separated by spaces; reading it empties it.
class Log {
public:
    void add(std::string const& word) { text_ += (text_.empty() ? "" : " ") + word; }
    std::string take() { return std::exchange(text_, {}); }

private:
    std::string text_;
};

class Node : public RefCountedObject {
public:
    inline static int alive = 0;

    Node(Manager& manager, std::string name, Log* log = nullptr, double value = 0)
        : RefCountedObject(manager), value_(value), name_(std::move(name)), log_(log) {
        ++alive;
    }
    ~Node() override { --alive; }

    [[nodiscard]] double value() const { return value_; }
    [[nodiscard]] ur::Reference<Node> const& next() const { return next_; }
    [[nodiscard]] ur::vector<Node*> const& list() const { return list_; }
    void setValue(double value) { set(value_, value); }
    void setNext(ur::Reference<Node> next) { set(next_, std::move(next)); }
    void setList(ur::vector<Node*> list) { set(list_, std::move(list)); }

    std::function<void(std::string const& hook)> onHook;  ///< called after each hook has been logged
    RestoreHook restoreHook = nullptr;
    std::size_t ownedBytes = 0;

    void told(std::string const& hook) const {
        if (log_) log_->add(name_ + ":" + hook);
        if (onHook) onHook(hook);
    }

protected:
    void onTransact(Serializer& serializer) override {
        serializer.beginObject(this, restoreHook);
        RefCountedObject::onTransact(serializer);
        serializer.field(value_);
        serializer.field(next_);
        serializer.field(list_);
        serializer.endObject(this);
    }
    void onTxnRestored() override { told("restored"); }
    void onTxnModified() override { told("modified"); }
    void onTxnDestroyed() override { told("destroyed"); }
    void onTxnExtant() override { told(isTxnExtant() ? "extant" : "gone"); }
    void onTxnGetSize(ObjectSize& size) const override {
        size.raiseBase(sizeof *this);
        RefCountedObject::onTxnGetSize(size);
        size.add(ownedBytes);
    }
    void txnDelete() override {
        told("deleted");
        RefCountedObject::txnDelete();
    }

private:
    template <class T>
    void set(T& member, T value) {
        transact();
        member = std::move(value);
    }

    double value_;
    ur::Reference<Node> next_;
    ur::vector<Node*> list_;
    std::string name_;
    Log* log_;
};

using NodeReference = ur::Reference<Node>;

/// Runs `change` in a transaction of its own.
template <class Change>
void edit(Manager& manager, Change change, char const* name = "edit") {
    manager.begin(name);
    change();
    manager.commit();
}

}  // namespace nxTXN::test
