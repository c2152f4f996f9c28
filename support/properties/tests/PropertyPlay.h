// Makes random calls on properties with their history and on the plain model.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/tests/PropertyModel.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {

/// Makes each call on both sides and compares all values, notifications and results.
class PropertyPlay {
public:
    /// `draw` returns any number.
    explicit PropertyPlay(std::function<unsigned()> draw) : draw_(std::move(draw)) {
        heard_.values = true;
        for (int i = 0; i < 4; ++i) inTransaction([this] { create(); });
    }

    /// Makes one call. Returns an empty text, or the first difference after the call.
    std::string step() {
        wrongResult_ = nullptr;
        act();
        std::string const notified = heard_.take();
        std::string const expected = model_.take();
        if (wrongResult_) return wrongResult_;
        if (notified != expected) return "told: " + notified + "\nmodel: " + expected;
        if (manager_.undoCount() != model_.past.size()) return "another number of steps to undo";
        if (manager_.redoCount() != model_.future.size()) return "another number of steps to redo";
        for (auto const& [id, property] : properties_) {
            if (!model_.extant(id)) continue;
            if (numberOf(*property) != model_.value(id)) return "another value of " + std::to_string(id);
            if (isMirrored(*property) != model_.isMirrored(id)) return "another link of " + std::to_string(id);
        }
        return {};
    }

private:
    using Kind = PropertyModel::Kind;
    static constexpr std::size_t mostProperties = 24;

    void act() {
        bool const full = properties_.size() == mostProperties;
        switch (pick(12)) {
            case 0: return pick(4) == 0 ? limit() : begin();
            case 1: return pick(3) == 0 ? abort() : commit();
            case 2: return turn(&nxTXN::Manager::undo, &PropertyModel::undo, model_.past);
            case 3: return turn(&nxTXN::Manager::redo, &PropertyModel::redo, model_.future);
            case 4: return inTransaction([&] { full ? set() : create(); });
            case 5: return inTransaction([&] { full ? set() : clone(); });
            case 6: return inTransaction([&] { pick(2) == 0 ? join() : set(); });
            default: return inTransaction([&] { set(); });
        }
    }
    static bool isMirrored(Property const& property) {
        if (property.isTransacted()) return dynamic_cast<TxdProperty const&>(property).data()->untxdTwin() != nullptr;
        return dynamic_cast<UnTxdProperty const&>(property).data()->txdData() != nullptr;
    }
    void expect(bool holds, char const* what) {
        if (!holds) wrongResult_ = what;
    }

    unsigned pick(unsigned below) { return draw_() % below; }
    /// A property that is part of the present state.
    std::pair<int, PropertyReference> any() {
        std::vector<std::pair<int, PropertyReference>> extant;
        for (auto const& entry : properties_) {
            if (model_.extant(entry.first)) extant.push_back(entry);
        }
        return extant.empty() ? std::pair(0, PropertyReference()) : extant[pick(static_cast<unsigned>(extant.size()))];
    }

    void add(int id, PropertyReference property) {
        if (pick(6) == 0) {
            model_.addValidator(id);
            validators_.push_back(property->subscribeValidation([this](auto const& notified, Item& candidate) {
                heard_.add(*notified, "validate");
                auto const value = static_cast<int>(nxPLST::asDouble(candidate)->value());
                if (PropertyModel::isReplaced(value)) candidate = number(value + 1);
            }));
        }
        heard_.follow(property);
        properties_.emplace_back(id, std::move(property));
    }
    void create() {
        auto const kind = static_cast<Kind>(pick(2));
        int const id = model_.create(kind, newestValue_ += 20);
        urString::CString const name(std::to_string(id));
        add(id, kind == Kind::transacted ? Property::createTxd(manager_, name, number(newestValue_))
                                         : Property::createUnTxd(name, number(newestValue_)));
    }
    void clone() {
        auto const [original, property] = any();
        if (!property) return;
        auto const kind = static_cast<Kind>(pick(2));
        int const id = model_.clone(kind, original);
        urString::CString const name(std::to_string(id));
        add(id, kind == Kind::transacted ? property->cloneTxd(manager_, name) : property->cloneUnTxd(name));
    }
    void join() {
        auto const [id, property] = any();
        auto const [otherId, other] = any();
        if (!property) return;
        model_.join(id, otherId);
        property->join(other);
    }
    void set() {
        auto const [id, property] = any();
        if (!property) return;
        int const value = newestValue_ += 20;
        auto const type = static_cast<PropertyModType>(pick(8));
        bool const expected = type <= ModifyAll ? model_.set(id, value, type) : model_.set(id, value);
        bool const unchanged =
            type <= ModifyAll ? property->setValue(number(value), type) : property->setValue(number(value));
        expect(unchanged == expected, "another result of setValue");
    }

    template <class Action>
    void inTransaction(Action action) {
        bool const own = !model_.isOpen;
        if (own) begin();
        action();
        if (own) commit();
    }
    void begin() {
        if (model_.isOpen) return;
        model_.begin();
        manager_.begin("step");
    }
    void commit() {
        expect(manager_.commit() == model_.isOpen, "another result of commit");
        if (model_.isOpen) model_.commit();
        trim();
    }
    void abort() {
        expect(manager_.abort() == model_.isOpen, "another result of abort");
        if (model_.isOpen) model_.abort();
    }
    void turn(bool (nxTXN::Manager::*real)(), void (PropertyModel::*plain)(),
              std::vector<PropertyModel::Step> const& steps) {
        bool const can = !model_.isOpen && !steps.empty();
        expect((manager_.*real)() == can, "another result of undo or redo");
        if (can) (model_.*plain)();
    }
    void limit() {
        if (model_.isOpen) return;
        limit_ = pick(20);
        manager_.setStepLimit(limit_);
        trim();
    }
    void trim() {
        while (limit_ > 0 && model_.past.size() + model_.future.size() > limit_) {
            auto& side = model_.past.empty() ? model_.future : model_.past;
            side.erase(side.begin());
        }
    }

    std::function<unsigned()> draw_;
    nxTXN::Manager manager_;
    PropertyModel model_;
    std::vector<std::pair<int, PropertyReference>> properties_;
    Recorder heard_;
    std::vector<urRTB::ScopedConnection> validators_;
    char const* wrongResult_ = nullptr;
    int newestValue_ = 0;
    std::size_t limit_ = 0;
};

}  // namespace nxSupport::test
