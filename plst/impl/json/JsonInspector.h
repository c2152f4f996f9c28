// Finds faults in a JSON text, and values that a tree cannot hold.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "plst/JsonReport.h"
#include "plst/impl/json/FastJsonScan.h"
#include "plst/impl/json/JsonScanner.h"

namespace nxPLST::impl {

/// Lets yajl read a text again and tracks the position in it, to fill a report.
///
/// Yajl decides whether the text is JSON, and how far. Only the step from its last token to the fault is explained
/// here.
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

    // The values of the text, as `YajlScan` passes them.

    void setEnd(std::size_t position) noexcept { tokenEnd_ = text_.data() + position; }
    [[nodiscard]] bool isOpen() const noexcept { return !frames_.empty(); }
    [[nodiscard]] Inside current() const noexcept { return frames_.back().inside; }
    template <Inside inside>
    void null() {
        addLoss(JsonLoss::Kind::nullValue, tokenEnd_ - 4);
        endValue();
    }
    template <Inside inside>
    void boolean(bool) {
        addScalar();
    }
    template <Inside inside>
    void number(double) {
        addNumber();
    }
    template <Inside inside>
    void text(ScannedText) {
        addScalar();
    }
    void key(ScannedText name);
    void open(Inside inside);
    void close();

private:
    /// What the last token was.
    enum class Last { nothing, opening, key, value };

    /// An open container and its current child.
    struct Frame {
        char const* start;
        Inside inside;
        std::size_t firstMember;  // in `members_`
        std::size_t index = 0;
        std::string_view key = {};  // as the text spells it
    };

    /// A member that has a value, of an object that is still open.
    struct Member {
        urString::CString key;
        std::string_view spelling;
    };

    void addScalar();
    void addNumber();
    void addMember();
    void endValue() noexcept;
    void addLoss(JsonLoss::Kind kind, char const* start);

    // These return false at the fault.
    bool passToFault();
    bool passToChild();
    bool passKey(char const* expected);
    bool passScalar();
    bool fail(char const* expected);

    [[nodiscard]] std::size_t offset(char const* place) const { return static_cast<std::size_t>(place - text_.data()); }

    std::string_view text_;
    JsonScanner scanner_;
    ur::Charge* charge_;
    bool seeksLosses_ = false;
    bool endedEarly_ = false;  // between tokens
    Last last_ = Last::nothing;
    char const* tokenEnd_ = text_.data();  // of the token that yajl has read, perhaps to refuse it
    char const* lastEnd_ = text_.data();   // of the last token that was accepted
    urString::CString key_;                // of the current member, if losses are sought
    std::vector<Frame> frames_;
    std::vector<Member> members_;
    std::vector<JsonLoss> losses_;  // a heap; the last one in the text is first
    std::size_t lossCount_ = 0;
};

}  // namespace nxPLST::impl
