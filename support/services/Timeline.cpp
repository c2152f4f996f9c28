// Recording events.
#include "support/services/Timeline.h"

#include <algorithm>

#include "support/messaging/Context.h"
#include "support/services/impl/Recording.h"

namespace nxSupport {

using impl::Recording;

Recording::Index Recording::begin(Kind kind, std::uint32_t name, Clock::time_point when) {
    if (isFull()) {
        ++dropped;
        return notKept;
    }
    events.push_back({.begin = sinceOrigin(when), .duration = open, .name = name, .kind = kind});
    return events.size() - 1;
}

void Recording::end(Index index, std::int64_t now) noexcept {
    if (index != notKept) events[index].duration = std::max<std::int64_t>(now - events[index].begin, 0);
}

std::int64_t Recording::sinceOrigin(Clock::time_point when) const noexcept {
    return std::max<std::int64_t>(std::chrono::nanoseconds(when - origin).count(), 0);
}

std::uint32_t Recording::nameOf(std::string_view text) {
    text = text.substr(0, longestName);
    if (auto const known = namePlaces.find(text); known != namePlaces.end()) return known->second;
    auto const place = static_cast<std::uint32_t>(names.size());
    names.emplace_back(text);
    namePlaces.emplace(names.back(), place);
    return place;
}

std::uint32_t Recording::nameOf(ur::TypeInfo keyClass) {
    auto const known = classNames.find(keyClass);
    if (known != classNames.end()) return known->second;
    return classNames[keyClass] = nameOf(keyClass.readableName());
}

Timeline::Timeline(std::size_t limit) : recording_(std::make_unique<Recording>(limit)) {}

Timeline::~Timeline() {
    if (active_ == this) active_ = nullptr;
}

// A watch that runs already runs on when it is started again, and so does its event.
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

void Timeline::onBegin(Context const& context, ContextObserver::Clock::time_point when) noexcept {
    recording_->attempt([&] {
        auto& open = recording_->openContexts.emplace_back(&context, Recording::notKept);
        open.second = recording_->begin(Recording::Kind::context, context.mode(), when);
    });
}

// Searched from the back: contexts of several domains need not end in the reverse order of their beginning.
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

}  // namespace nxSupport
