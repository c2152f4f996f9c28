// Finds faults in a JSON text, and values that a tree cannot hold.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "plst/JsonReport.h"
#include "plst/impl/json/JsonScanner.h"

namespace nxPLST::impl {

/// Scans a text again and tracks the position in it, to fill a report.
class JsonInspector {
public:
    /// `charge` may be null.
    explicit JsonInspector(std::string_view text, ur::Charge* charge = nullptr)
        : text_(text), scanner_(text), charge_(charge) {}

    /// Reports the fault of a refused text. Call only one of these, once. Takes some fifty bytes for each level of
    /// nesting, which are charged: throws `ur::BudgetSpent`.
    void reportFault(JsonReport& report);
    /// Reports the losses of an accepted text.
    void reportLosses(JsonReport& report);

private:
    /// An open container and its current child.
    struct Frame {
        char const* start;
        bool isArray;
        std::size_t firstMember;  // in `members_`
        std::size_t index = 0;
        std::string_view key = {};  // as the text spells it
    };

    /// A member that has a value, of an object that is still open.
    struct Member {
        urString::CString key;
        std::string_view spelling;
    };

    // These return false at a fault.
    bool inspect();
    bool passValue(bool& valueComes);
    bool passBehindValue(bool& valueComes);
    bool passScalar();
    bool passKey(char const* expected);
    bool fail(char const* expected);

    void open(bool isArray);
    void close();
    void addMember();
    void addLoss(JsonLoss::Kind kind, char const* start);
    [[nodiscard]] std::size_t offset(char const* place) const { return static_cast<std::size_t>(place - text_.data()); }

    std::string_view text_;
    JsonScanner scanner_;
    ur::Charge* charge_;
    bool seeksLosses_ = false;
    bool endedEarly_ = false;  // between tokens
    std::vector<Frame> frames_;
    std::vector<Member> members_;
    std::vector<JsonLoss> losses_;  // a heap; the last one in the text is first
    std::size_t lossCount_ = 0;
};

}  // namespace nxPLST::impl
