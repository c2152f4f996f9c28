// A parsed JSON text, for readers that do not need items.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"

namespace nxPLST {

struct JsonReport;

/// The values of a JSON text in sequence: each container before its content, each key before its value.
///
/// Contains everything in the text, nulls and repeated keys included. A value: copies share only the text that was
/// read, to which entries may point. One thread at a time.
class NX_API JsonTape {
public:
    enum class Kind : std::uint8_t { null, boolean, number, text, array, dictionary };

    /// A value or a key, in the order of the text.
    struct Entry {
        Kind kind = Kind::null;
        bool isTrue = false;       ///< of a boolean
        bool isUnescaped = false;  ///< for a text with escapes: its unescaped bytes lie in the tape
        std::uint32_t size = 0;    ///< of a text in bytes; of a container in elements or members
        union {
            double number = 0;
            std::size_t place;  ///< of a text
        };
    };

    JsonTape() = default;
    /// Charges the tape's memory: `read` throws `ur::BudgetSpent` beyond the limit. `account` may be null.
    explicit JsonTape(std::shared_ptr<ur::Account> account) : charge_(std::move(account), 0) {}

    /// Parses `text`, which must be a single JSON value and must live while the texts of entries are used. False for
    /// texts that `convertFromJSON` refuses, and from 4 GiB on; then there are no entries.
    bool read(std::string_view text);
    /// The same; `report` says why a text is refused. It has no losses.
    bool read(std::string_view text, JsonReport& report);

    [[nodiscard]] ur::vector<Entry> const& entries() const noexcept { return entries_; }
    /// Requires: `entry` is a text or a key.
    [[nodiscard]] std::string_view textOf(Entry const& entry) const noexcept {
        return (entry.isUnescaped ? std::string_view(unescaped_) : text_).substr(entry.place, entry.size);
    }

private:
    class Sink;

    std::string_view text_;
    ur::vector<Entry> entries_;
    std::string unescaped_;
    ur::Charge charge_;
};

}  // namespace nxPLST
