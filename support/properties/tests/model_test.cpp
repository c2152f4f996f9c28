// Random calls on properties and their history beside the model, every notification compared.
#include <cstdlib>
#include <random>

#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/tests/PropertyModel.h"
#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {
namespace {

// NX_PROPERTY_STEPS and NX_PROPERTY_SEED prolong and replay the play.
unsigned fromEnvironment(char const* name, unsigned otherwise) {
    char const* const text = std::getenv(name);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class Play {
public:
    explicit Play(unsigned seed) : random_(seed) {
        for (int i = 0; i < 4; ++i) inTransaction([this] { create(); });
    }

    void step() {
        switch (pick(12)) {
            case 0: return pick(4) == 0 ? limit() : begin();
            case 1: return pick(3) == 0 ? abort() : commit();
            case 2: return undo();
            case 3: return redo();
            case 4: return inTransaction([this] { properties_.size() < mostProperties ? create() : join(); });
            case 5: return inTransaction([this] { properties_.size() < mostProperties ? clone() : join(); });
            case 6: return inTransaction([this] { join(); });
            default: return inTransaction([this] { set(); });
        }
    }

    void check() {
        ASSERT_EQ(heard_.take(), model_.takeTold());
        ASSERT_EQ(manager_.undoCount(), model_.past.size());
        ASSERT_EQ(manager_.redoCount(), model_.future.size());
        for (auto const& [id, property] : properties_) {
            if (!model_.extant(id)) continue;
            int const value = model_.value(id);
            ASSERT_EQ(numberOf(*property), value == 0 ? -1 : value) << property->name();
            ASSERT_EQ(isMirrored(*property), model_.isMirrored(id)) << property->name();
        }
    }

private:
    static constexpr std::size_t mostProperties = 24;

    static bool isMirrored(Property const& property) {
        if (property.isTransacted()) return dynamic_cast<TxdProperty const&>(property).data()->untxdTwin() != nullptr;
        return dynamic_cast<UnTxdProperty const&>(property).data()->txdData() != nullptr;
    }
    unsigned pick(unsigned below) { return static_cast<unsigned>(random_() % below); }
    /// A property that takes part in the present state.
    std::pair<int, PropertyReference> any() {
        std::vector<std::pair<int, PropertyReference>> extant;
        for (auto const& entry : properties_) {
            if (model_.extant(entry.first)) extant.push_back(entry);
        }
        return extant.empty() ? std::pair(0, PropertyReference()) : extant[pick(unsigned(extant.size()))];
    }
    int newValue() { return newestValue_ += 20; }

    void add(int id, PropertyReference property) {
        if (pick(6) == 0) {
            model_.addValidator(id);
            property->connectValidation([](ur::Reference<Property const>, Item& candidate) {
                int const value = candidate ? int(nxPLST::asDouble(candidate)->value()) : 0;
                if (PropertyModel::isReplaced(value)) candidate = number(value + 1);
            });
        }
        heard_.follow(property);
        properties_.emplace_back(id, std::move(property));
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
        if (kind <= ModifyAll) {
            auto const type = static_cast<PropertyModType>(kind);
            EXPECT_EQ(property->setValue(number(value), type), model_.set(id, value, type));
        } else {
            EXPECT_EQ(property->setValue(number(value)), model_.setAll(id, value));
        }
    }

    template <class Action>
    void inTransaction(Action action) {
        bool const own = model_.depth() == 0;
        if (own) begin();
        action();
        if (own) commit();
    }
    void begin() {
        if (model_.depth() == 3) return;
        model_.begin();
        manager_.begin("step");
    }
    void commit() {
        if (model_.depth() == 0) return;
        model_.commit();
        manager_.commit();
        trim();
    }
    void abort() {
        if (model_.depth() == 0) return;
        model_.abort();
        manager_.abort();
    }
    void undo() {
        bool const can = model_.depth() == 0 && !model_.past.empty();
        EXPECT_EQ(manager_.undo(), can);
        if (can) model_.undo();
    }
    void redo() {
        bool const can = model_.depth() == 0 && !model_.future.empty();
        EXPECT_EQ(manager_.redo(), can);
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

    std::mt19937 random_;
    nxTXN::Manager manager_;
    PropertyModel model_;
    std::vector<std::pair<int, PropertyReference>> properties_;
    Recorder heard_;
    int newestValue_ = 0;
    std::size_t limit_ = 0;
};

TEST(PropertyPlay, StaysWithTheModelOverRandomCalls) {
    unsigned const seed = fromEnvironment("NX_PROPERTY_SEED", std::random_device()());
    unsigned const steps = fromEnvironment("NX_PROPERTY_STEPS", 100'000);
    SCOPED_TRACE("NX_PROPERTY_SEED=" + std::to_string(seed));
    constexpr unsigned stepsPerPlay = 250;
    for (unsigned play = 0; play * stepsPerPlay < steps && !testing::Test::HasFailure(); ++play) {
        Play random(seed + play);
        for (unsigned i = 0; i < stepsPerPlay && !testing::Test::HasFailure(); ++i) {
            SCOPED_TRACE("play " + std::to_string(play) + ", step " + std::to_string(i));
            random.step();
            random.check();
        }
    }
}

}  // namespace
}  // namespace nxSupport::test
