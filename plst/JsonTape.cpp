// Scans JSON text onto a tape.
#include "plst/JsonTape.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>

#include "plst/JsonReport.h"
#include "plst/impl/json/FastJsonScan.h"
#include "plst/impl/json/JsonInspector.h"
#include "plst/impl/json/YajlScan.h"

namespace nxPLST {

using impl::Inside;

/// Writes a tape; counts the content of each open container.
class JsonTape::Sink {
public:
    explicit Sink(JsonTape& tape) noexcept : tape_(tape) {}

    [[nodiscard]] bool isOpen() const noexcept { return !open_.empty(); }
    [[nodiscard]] Inside current() const noexcept {
        return tape_.entries_[open_.back()].kind == Kind::dictionary ? Inside::dictionary : Inside::array;
    }

    template <Inside>
    void null() {
        add(Kind::null);
    }
    template <Inside>
    void boolean(bool value) {
        add(Kind::boolean).isTrue = value;
    }
    template <Inside>
    void number(double value) {
        add(Kind::number).number = value;
    }
    template <Inside>
    void text(impl::ScannedText value) {
        count();
        key(value);
    }
    void key(impl::ScannedText name) {
        std::string_view const text = name.view;
        char const* const first = tape_.text_.data();
        Entry& entry = append(Kind::text);
        entry.size = static_cast<std::uint32_t>(text.size());
        entry.isUnescaped = std::less<>()(text.data(), first) || std::less<>()(first + tape_.text_.size(), text.data());
        entry.place = entry.isUnescaped ? tape_.unescaped_.size() : static_cast<std::size_t>(text.data() - first);
        if (!entry.isUnescaped) return;
        tape_.charge_.add(text.size());
        tape_.unescaped_.append(text);
    }
    void open(Inside inside) {
        add(inside == Inside::dictionary ? Kind::dictionary : Kind::array);
        chargeGrowth(open_);
        open_.push_back(tape_.entries_.size() - 1);
    }
    void close() { open_.pop_back(); }

private:
    void count() noexcept {
        if (!open_.empty()) ++tape_.entries_[open_.back()].size;
    }
    template <class T>
    void chargeGrowth(ur::vector<T> const& full) {
        if (full.size() < full.capacity()) return;
        tape_.charge_.add(std::max<std::size_t>(full.capacity(), 1) * sizeof(T));
    }
    Entry& append(Kind kind) {
        chargeGrowth(tape_.entries_);
        Entry& entry = tape_.entries_.emplace_back();
        entry.kind = kind;
        return entry;
    }
    Entry& add(Kind kind) {
        count();
        return append(kind);
    }

    JsonTape& tape_;
    ur::vector<std::size_t> open_;
};

bool JsonTape::read(std::string_view text) {
    text_ = text;
    auto const scan = [this](auto run) {
        entries_.clear();
        unescaped_.clear();
        Sink sink(*this);
        return run(sink);
    };
    if (text.size() <= std::numeric_limits<std::uint32_t>::max()) {
        if (scan([&](Sink& sink) { return impl::FastJsonScan<Sink>(text, sink).run(); })) return true;
        if (scan([&](Sink& sink) { return impl::YajlScan<Sink>(sink).run(text); })) return true;
    }
    entries_.clear();
    return false;
}

bool JsonTape::read(std::string_view text, JsonReport& report) {
    report = {};
    if (read(text)) return true;
    impl::JsonInspector(text, &charge_).reportFault(report);
    return false;
}

}  // namespace nxPLST
