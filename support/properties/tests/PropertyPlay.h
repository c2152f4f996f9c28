// Calls drawn at random, on properties with their history and on the plain model of them.
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

/// Plays on both sides at once and compares everything that they hold, tell and return.
class PropertyPlay {
public:
    /// `draw` gives any number.
    explicit PropertyPlay(std::function<unsigned()> draw) : draw_(std::move(draw)) {
        for (int i = 0; i < 4; ++i) inTransaction([this] { create(); });
    }

    /// One call; empty, or what differs after it.
    std::string step() {
        wrongResult_ = nullptr;
        act();
        return difference();
    }

private:
    static constexpr std::size_t mostProperties = 24;
    static constexpr std::size_t mostLevels = 3;

    void act() {
        switch (pick(12)) {
            case 0: return pick(4) == 0 ? limit() : begin();
            case 1: return pick(3) == 0 ? abort() : commit();
            case 2: return undo();
            case 3: return redo();
            case 4: return inTransaction([this] { properties_.size() < mostProperties ? create() : set(); });
            case 5: return inTransaction([this] { properties_.size() < mostProperties ? clone() : set(); });
            case 6: return inTransaction([this] { pick(2) == 0 ? join() : set(); });
            default: return inTransaction([this] { set(); });
        }
    }

    std::string difference() {
        std::string const told = heard_.take();
        std::string const expected = model_.takeTold();
        if (wrongResult_) return wrongResult_;
        if (told != expected) return "told: " + told + "\nmodel: " + expected;
        if (manager_.undoCount() != model_.past.size()) return "another number of steps to undo";
        if (manager_.redoCount() != model_.future.size()) return "another number of steps to redo";
        for (auto const& [id, property] : properties_) {
            if (!model_.extant(id)) continue;
            int const value = model_.value(id);
            if (numberOf(*property) != (value == 0 ? -1 : value)) return "another value of " + std::to_string(id);
            if (isMirrored(*property) != model_.isMirrored(id)) return "another link of " + std::to_string(id);
        }
        return {};
    }
    static bool isMirrored(Property const& property) {
        if (property.isTransacted()) return dynamic_cast<TxdProperty const&>(property).data()->untxdTwin() != nullptr;
        return dynamic_cast<UnTxdProperty const&>(property).data()->txdData() != nullptr;
    }
    void expect(bool holds, char const* what) {
        if (!holds) wrongResult_ = what;
    }

    unsigned pick(unsigned below) { return draw_() % below; }
    /// A property that takes part in the present state; 0 and null when there is none.
    std::pair<int, PropertyReference> any() {
        std::vector<std::pair<int, PropertyReference>> extant;
        for (auto const& entry : properties_) {
            if (model_.extant(entry.first)) extant.push_back(entry);
        }
        return extant.empty() ? std::pair(0, PropertyReference()) : extant[pick(static_cast<unsigned>(extant.size()))];
    }
    int newValue() { return newestValue_ += 20; }

    void add(int id, PropertyReference property) {
        if (pick(6) == 0) {
            model_.addValidator(id);
            property->connectValidation(&replaceSome);
        }
        heard_.follow(property);
        properties_.emplace_back(id, std::move(property));
    }
    static void replaceSome(ur::Reference<Property const> /*property*/, Item& candidate) {
        auto const item = nxPLST::asDouble(candidate);
        int const value = item ? static_cast<int>(item->value()) : 0;
        if (PropertyModel::isReplaced(value)) candidate = number(value + 1);
    }
    void create() {
        bool const transacted = pick(2) == 0;
        int const value = newValue();
        int const id = transacted ? model_.createTxd(value) : model_.createUnTxd(value);
        urString::CString const name(std::to_string(id));
        add(id, transacted ? Property::createTxd(manager_, name, number(value))
                           : Property::createUnTxd(name, number(value)));
    }
    void clone() {
        auto const [original, property] = any();
        if (!property) return;
        bool const transacted = pick(2) == 0;
        int const id = transacted ? model_.cloneTxd(original) : model_.cloneUnTxd(original);
        urString::CString const name(std::to_string(id));
        add(id, transacted ? property->cloneTxd(manager_, name) : property->cloneUnTxd(name));
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
        int const value = newValue();
        unsigned const kind = pick(8);
        auto const type = static_cast<PropertyModType>(kind);
        bool const expected = kind <= ModifyAll ? model_.set(id, value, type) : model_.setAll(id, value);
        bool const unchanged =
            kind <= ModifyAll ? property->setValue(number(value), type) : property->setValue(number(value));
        expect(unchanged == expected, "another result of setValue");
    }

    template <class Action>
    void inTransaction(Action action) {
        bool const own = model_.depth() == 0;
        if (own) begin();
        action();
        if (own) commit();
    }
    void begin() {
        if (model_.depth() == mostLevels) return;
        model_.begin();
        manager_.begin("step");
    }
    void commit() {
        expect(manager_.commit() == (model_.depth() > 0), "another result of commit");
        if (model_.depth() > 0) model_.commit();
        trim();
    }
    void abort() {
        expect(manager_.abort() == (model_.depth() > 0), "another result of abort");
        if (model_.depth() > 0) model_.abort();
    }
    void undo() {
        bool const can = model_.depth() == 0 && !model_.past.empty();
        expect(manager_.undo() == can, "another result of undo");
        if (can) model_.undo();
    }
    void redo() {
        bool const can = model_.depth() == 0 && !model_.future.empty();
        expect(manager_.redo() == can, "another result of redo");
        if (can) model_.redo();
    }
    void limit() {
        if (model_.depth() > 0) return;
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
    char const* wrongResult_ = nullptr;
    int newestValue_ = 0;
    std::size_t limit_ = 0;
};

}  // namespace nxSupport::test
