// Records events.
#include "support/services/impl/Recording.h"

#include <algorithm>

namespace nxSupport::impl {

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

}  // namespace nxSupport::impl
