// Converts recordings to text and back.
#include "krcache/TraceRecorder.h"

#include <array>
#include <charconv>
#include <string_view>

#include "foundation/urOS/OStream.h"

namespace urKRCache {
namespace {

using Entry = TraceRecorder::Entry;

constexpr std::array<std::string_view, 6> names = {"hit", "build", "out", "in", "clear", "remove"};

/// Moves the text before `end` to `piece` and removes it, with `end`, from `text`. False if there is no `end`.
bool takeUpTo(std::string_view& text, char end, std::string_view& piece) {
    std::size_t const place = text.find(end);
    if (place == std::string_view::npos) return false;
    piece = text.substr(0, place);
    text.remove_prefix(place + 1);
    return true;
}

bool parse(std::string_view text, std::uint32_t& number) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool parse(std::string_view text, TraceRecorder::Event& event) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        event = static_cast<TraceRecorder::Event>(i);
        if (text == names[i]) return true;
    }
    return false;
}

bool takeEntry(std::string_view& text, Entry& entry) {
    std::string_view event;
    std::string_view key;
    std::string_view size;
    return takeUpTo(text, ' ', event) && takeUpTo(text, ' ', key) && takeUpTo(text, '\n', size) &&
           parse(event, entry.event) && parse(key, entry.key) && parse(size, entry.size);
}

}  // namespace

void TraceRecorder::record(Event event, std::uint32_t key, std::uint32_t size) {
    entries_.push_back({key, size, event});
}

urUtil::Error TraceRecorder::write(urOS::IOStream& stream) const {
    urOS::OStream out(stream);
    for (Entry const& entry : entries_) {
        out.print("%s %u %u\n", names[static_cast<std::size_t>(entry.event)].data(), entry.key, entry.size);
    }
    return out.flush();
}

urUtil::Error TraceRecorder::read(urOS::IOStream& stream) {
    urString::CString content;
    if (urUtil::Error error = stream.readAll(content); error.isError()) return error;
    ur::vector<Entry> entries;
    for (std::string_view text = content.view(); !text.empty();) {
        Entry entry;
        if (!takeEntry(text, entry)) return {0, "not a line of a trace"};
        entries.push_back(entry);
    }
    entries_ = std::move(entries);
    return {};
}

}  // namespace urKRCache
