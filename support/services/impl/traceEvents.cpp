// Writing a recording as trace-event JSON.
#include <string>
#include <string_view>

#include "foundation/urOS/OStream.h"
#include "foundation/urString/IString.h"
#include "support/messaging/Context.h"
#include "support/services/Performance.h"
#include "support/services/impl/Recording.h"

namespace nxSupport {
namespace {

using impl::Recording;

// Performance scopes may begin in one context and end in another: what is to nest, nests on a track of its own.
constexpr int mainTrack = 1;
constexpr int performanceTrack = 2;

constexpr std::array<char const*, 5> categories = {"context", "script", "cache", "performance", "cache"};
constexpr std::array<char const*, 6> reasons = {"limit",        "request",       "removal",
                                                "page failure", "build failure", "page out"};

/// Writes `text`, made valid UTF-8 where it is not, as a JSON string.
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

/// The label without the number behind it.
std::string activityName(std::uint32_t code) {
    urString::CString const label = Performance::labelFormat(static_cast<PerformanceCode>(code));
    std::string_view const name = label.view().substr(0, label.find('='));
    return std::string(name.substr(0, name.find_last_not_of(" .") + 1));
}

/// Writes the events of one recording.
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
        out_.write(",\n{\"name\":");
        writeQuoted(out_, nameOf(event));
        bool const isOpen = event.duration == Recording::open;
        bool const isInstant = event.kind == Kind::drop;
        out_.print(",\"cat\":\"%s\",\"ph\":\"%s\",\"pid\":1,\"tid\":%d",
                   categories[static_cast<std::size_t>(event.kind)],
                   isInstant ? "i"
                   : isOpen  ? "B"
                             : "X",
                   event.kind == Kind::performance ? performanceTrack : mainTrack);
        writeMicroseconds(out_, "ts", event.begin);
        if (!isOpen && !isInstant) writeMicroseconds(out_, "dur", event.duration);
        if (event.kind == Kind::build) out_.print(",\"args\":{\"bytes\":%u}", event.bytes);
        if (isInstant) writeDrop(event);
        out_.put('}');
    }

    void writeDrop(Event const& event) {
        out_.print(",\"s\":\"t\",\"args\":{\"bytes\":%u,\"why\":\"%s\"}", event.bytes,
                   reasons[static_cast<std::size_t>(event.why)]);
    }

    [[nodiscard]] std::string nameOf(Event const& event) const {
        switch (event.kind) {
            case Kind::context:
                return std::string(Context::modeToString(static_cast<Context::Mode>(event.name)).view());
            case Kind::performance: return activityName(event.name);
            case Kind::script: return text(event);
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
};

}  // namespace

urUtil::Error Timeline::write(urOS::IOStream& stream) const { return Writer(*recording_, stream).write(); }

}  // namespace nxSupport
