// Moves children into their containers.
#include "plst/impl/json/JsonTreeSink.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace nxPLST::impl {

void JsonTreeSink::close() {
    Frame const frame = frames_.top();
    frames_.pop();
    ur::Reference<Item> item =
        frame.inside == Inside::dictionary ? takeDictionary(frame.first) : takeArray(frame.first);
    if (frames_.empty()) {
        root_ = std::move(item);
    } else if (frames_.top().inside == Inside::dictionary) {
        add<Inside::dictionary>(std::move(item));
    } else {
        add<Inside::array>(std::move(item));
    }
}

ur::Reference<Item> JsonTreeSink::takeArray(std::size_t first) {
    auto array = items_.make<Array>();
    auto const elements = elements_.above(first);
    array->array().assign(std::move_iterator(elements.begin()), std::move_iterator(elements.end()));
    elements_.cut(first);
    return array;
}

ur::Reference<Item> JsonTreeSink::takeDictionary(std::size_t first) {
    auto dictionary = items_.make<Dictionary>();
    fill(dictionary->dictionary(), members_.above(first));
    members_.cut(first);
    return dictionary;
}

void JsonTreeSink::fill(Dictionary::Map& map, std::span<Member> members) {
    map.reserve(members.size());
    std::uint8_t const* const order = orders_.of(std::span<Member const>(members));
    if (!order) return fillSlowly(map, members);
    for (std::size_t i = 0; i < members.size(); ++i) {
        Member& member = members[order[i]];
        map.emplaceLast(std::move(member.key), std::move(member.value));
    }
}

/// Handles any members; the last one of equal keys stays.
void JsonTreeSink::fillSlowly(Dictionary::Map& map, std::span<Member> members) {
    auto const before = [](Member const& a, Member const& b) { return a.key < b.key; };
    if (!std::is_sorted(members.begin(), members.end(), before)) {
        std::stable_sort(members.begin(), members.end(), before);
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
        Member member = std::move(members[i]);
        bool const again = i + 1 < members.size() && members[i + 1].key == member.key;
        lostNothing_ &= !again;
        if (!again) map.emplaceLast(std::move(member.key), std::move(member.value));
    }
}

}  // namespace nxPLST::impl
