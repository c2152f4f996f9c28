// Records time lines and writes them as trace-event JSON.
#include "support/services/Timeline.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <string_view>

#include "foundation/urOS/OStream.h"
#include "foundation/urString/IString.h"
#include "support/messaging/Context.h"
#include "support/services/Performance.h"
#include "support/services/impl/Recording.h"

namespace nxSupport {

using impl::Recording;

namespace {

// Performance scopes may begin in one context and end in another, so they have a track of their own.
constexpr int mainTrack = 1;
constexpr int performanceTrack = 2;

constexpr std::array<char const*, 8> categories = {"context", "script", "cache", "performance",
                                                   "cache",   "span",   "mark",  "counter"};
constexpr std::array<char const*, 6> reasons = {"limit",        "request",       "removal",
                                                "page failure", "build failure", "page out"};

/// Writes `text` as a JSON string; replaces invalid UTF-8.
void writeQuoted(urOS::OStream& out, std::string_view text) {
    out.put('"');
    for (char const c : urString::IString(text, urString::Encoding::utf8).asUTF8()) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            out.print("\\u%04x", byte);
            continue;
        }
        if (c == '"' || c == '\\') out.put('\\');
        out.put(c);
    }
    out.put('"');
}

void writeMicroseconds(urOS::OStream& out, char const* member, std::int64_t nanoseconds) {
    out.print(",\"%s\":%lld.%03d", member, static_cast<long long>(nanoseconds / 1000),
              static_cast<int>(nanoseconds % 1000));
}

void writeTrackName(urOS::OStream& out, int track, char const* name) {
    out.print("{\"name\":\"thread_name\",\"ph\":\"M\",\"pid\":1,\"tid\":%d,\"args\":{\"name\":\"%s\"}}", track, name);
}

/// The label without the number after it.
std::string activityName(std::uint32_t code) {
    urString::CString const label = Performance::labelFormat(static_cast<PerformanceCode>(code));
    std::string_view const name = label.view().substr(0, label.find('='));
    return std::string(name.substr(0, name.find_last_not_of(" .") + 1));
}

/// Writes the events of a recording.
class Writer {
public:
    Writer(Recording const& recording, urOS::IOStream& stream) : recording_(recording), out_(stream) {}

    urUtil::Error write() {
        out_.write("{\"displayTimeUnit\":\"ms\",\"traceEvents\":[\n");
        writeTrackName(out_, mainTrack, "main");
        out_.write(",\n");
        writeTrackName(out_, performanceTrack, "performance");
        for (Event const& event : recording_.events) write(event);
        out_.print("\n],\"otherData\":{\"dropped\":%zu}}\n", recording_.dropped);
        return out_.flush();
    }

private:
    using Event = Recording::Event;
    using Kind = Recording::Kind;

    void write(Event const& event) {
        bool const isOpen = event.duration == Recording::open;
        switch (event.kind) {
            case Kind::span: return writeSpan(event);
            case Kind::mark: begin(event, "i", event.begin).write(",\"s\":\"t\""); break;
            case Kind::counter:
                begin(event, "C", event.begin)
                    .print(",\"args\":{\"value\":%.17g}", std::bit_cast<double>(event.duration));
                break;
            case Kind::drop:
                begin(event, "i", event.begin)
                    .print(",\"s\":\"t\",\"args\":{\"bytes\":%u,\"why\":\"%s\"}", event.bytes,
                           reasons[static_cast<std::size_t>(event.why)]);
                break;
            default:
                begin(event, isOpen ? "B" : "X", event.begin);
                if (!isOpen) writeMicroseconds(out_, "dur", event.duration);
                if (event.kind == Kind::build) out_.print(",\"args\":{\"bytes\":%u}", event.bytes);
        }
        out_.put('}');
    }

    /// Writes the members that every event has; the caller adds more and closes the brace.
    urOS::OStream& begin(Event const& event, char const* phase, std::int64_t when) {
        out_.write(",\n{\"name\":");
        writeQuoted(out_, nameOf(event));
        out_.print(",\"cat\":\"%s\",\"ph\":\"%s\",\"pid\":1,\"tid\":%d",
                   categories[static_cast<std::size_t>(event.kind)], phase,
                   event.kind == Kind::performance ? performanceTrack : mainTrack);
        writeMicroseconds(out_, "ts", when);
        return out_;
    }

    /// Spans may overlap: viewers draw the begin and end events with one number on their own track.
    void writeSpan(Event const& event) {
        auto const number = static_cast<unsigned long long>(++spans_);
        begin(event, "b", event.begin).print(",\"id\":%llu}", number);
        if (event.duration == Recording::open) return;
        begin(event, "e", event.begin + event.duration).print(",\"id\":%llu,\"args\":{\"result\":", number);
        writeQuoted(out_, recording_.names[event.bytes].view());
        out_.write("}}");
    }

    [[nodiscard]] std::string nameOf(Event const& event) const {
        switch (event.kind) {
            case Kind::context:
                return std::string(Context::modeToString(static_cast<Context::Mode>(event.name)).view());
            case Kind::performance: return activityName(event.name);
            case Kind::script:
            case Kind::span:
            case Kind::mark:
            case Kind::counter: return text(event);
            case Kind::build: return "build " + text(event);
            case Kind::drop: return "drop " + text(event);
        }
        return {};
    }
    [[nodiscard]] std::string text(Event const& event) const {
        return std::string(recording_.names[event.name].view());
    }

    Recording const& recording_;
    urOS::OStream out_;
    std::size_t spans_ = 0;
};

}  // namespace

Timeline::Timeline(std::size_t limit) : recording_(std::make_unique<Recording>(limit)) {}

Timeline::~Timeline() {
    if (active_ == this) active_ = nullptr;
}

// Starting a running watch again has no effect, and neither has starting its event again.
void Timeline::beginPerformance(PerformanceCode code) noexcept {
    if (!isActivity(code)) return;
    Recording::Index& index = recording_->openActivities[static_cast<std::size_t>(code)];
    if (index != Recording::notKept) return;
    recording_->attempt(
        [&] { index = recording_->begin(Recording::Kind::performance, static_cast<std::uint32_t>(code)); });
}

void Timeline::endPerformance(PerformanceCode code) noexcept {
    if (!isActivity(code)) return;
    recording_->end(std::exchange(recording_->openActivities[static_cast<std::size_t>(code)], Recording::notKept));
}

std::size_t Timeline::beginScriptCall(std::string_view name) noexcept {
    auto& open = recording_->openScripts;
    std::size_t const depth = open.size();
    recording_->attempt([&] {
        open.push_back(Recording::notKept);
        open.back() = recording_->beginNamed(Recording::Kind::script, name);
    });
    return depth;
}

void Timeline::endScriptCalls(std::size_t depth) noexcept {
    auto& open = recording_->openScripts;
    std::int64_t const now = recording_->sinceOrigin(Recording::Clock::now());
    for (; open.size() > depth; open.pop_back()) recording_->end(open.back(), now);
}

std::size_t Timeline::beginSpan(std::string_view name) noexcept {
    Recording::Index index = Recording::notKept;
    recording_->attempt([&] { index = recording_->beginNamed(Recording::Kind::span, name); });
    return index;
}

void Timeline::endSpan(std::size_t span, std::string_view result) noexcept {
    if (span == Recording::notKept) return;
    recording_->attempt([&] {
        recording_->events[span].bytes = recording_->nameOf(result);
        recording_->end(span);
    });
}

void Timeline::mark(std::string_view name) noexcept {
    recording_->attempt([&] { recording_->beginNamed(Recording::Kind::mark, name); });
}

void Timeline::count(std::string_view counter, double value) noexcept {
    recording_->attempt([&] {
        Recording::Index const index = recording_->beginNamed(Recording::Kind::counter, counter);
        if (index != Recording::notKept) recording_->events[index].duration = std::bit_cast<std::int64_t>(value);
    });
}

void Timeline::onBegin(Context const& context, ContextObserver::Clock::time_point when) noexcept {
    recording_->attempt([&] {
        auto& open = recording_->openContexts.emplace_back(&context, Recording::notKept);
        open.second = recording_->begin(Recording::Kind::context, context.mode(), when);
    });
}

// Searches from the back. Contexts of several domains need not end in the reverse order of their beginning.
void Timeline::onEnd(Context const& context, ContextObserver::Clock::time_point when,
                     ContextObserver::Clock::duration /*lasted*/) noexcept {
    auto& open = recording_->openContexts;
    auto const place = std::find_if(open.rbegin(), open.rend(), [&](auto const& one) { return one.first == &context; });
    if (place == open.rend()) return;
    recording_->end(place->second, recording_->sinceOrigin(when));
    open.erase(std::next(place).base());
}

void Timeline::onBuildBegin(ur::TypeInfo keyClass) noexcept {
    recording_->attempt([&] {
        auto& open = recording_->openBuilds;
        open.push_back(Recording::notKept);
        open.back() = recording_->beginNamed(Recording::Kind::build, keyClass);
    });
}

void Timeline::onBuildEnd(unsigned bytes) noexcept {
    auto& open = recording_->openBuilds;
    if (open.empty()) return;
    Recording::Index const index = open.back();
    open.pop_back();
    recording_->end(index);
    if (index != Recording::notKept) recording_->events[index].bytes = bytes;
}

void Timeline::onLeave(ur::TypeInfo keyClass, unsigned bytes, urKRCache::Leaving why) noexcept {
    recording_->attempt([&] {
        Recording::Index const index = recording_->beginNamed(Recording::Kind::drop, keyClass);
        if (index == Recording::notKept) return;
        recording_->events[index].duration = 0;
        recording_->events[index].bytes = bytes;
        recording_->events[index].why = why;
    });
}

std::size_t Timeline::eventCount() const noexcept { return recording_->events.size(); }
std::size_t Timeline::droppedCount() const noexcept { return recording_->dropped; }

urUtil::Error Timeline::write(urOS::IOStream& stream) const { return Writer(*recording_, stream).write(); }

}  // namespace nxSupport
