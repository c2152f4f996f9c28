// A JSON text taken apart, for those who make something else of it than items.
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

/// The values of a JSON text in a row: each container before what it holds, each key before its value.
///
/// It has everything that the text says, nulls and repeated keys included. A value: copies share nothing but the text
/// that was read, in which entries may lie. One thread at a time.
class NX_API JsonTape {
public:
    enum class Kind : std::uint8_t { null, boolean, number, text, array, dictionary };

    /// A value or a key, in the order of the text.
    struct Entry {
        Kind kind = Kind::null;
        bool isTrue = false;       ///< of a boolean
        bool isUnescaped = false;  ///< of a text that had escapes: it lies with the tape
        std::uint32_t size = 0;    ///< of a text in bytes, of a container in elements or members
        union {
            double number = 0;
            std::size_t place;  ///< of a text
        };
    };

    JsonTape() = default;
    /// Charges what the tape takes: reading throws `ur::BudgetSpent` when that is too much. No account is null.
    explicit JsonTape(std::shared_ptr<ur::Account> account) : charge_(std::move(account), 0) {}

    /// Takes apart the one value that is all of `text`, which lives as long as the texts of entries are asked for.
    /// False for what `convertFromJSON` refuses, and from 4 GiB on; then there are no entries.
    bool read(std::string_view text);

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
