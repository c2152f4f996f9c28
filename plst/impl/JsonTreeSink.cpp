// Giving containers their children.
#include "plst/impl/JsonTreeSink.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace nxPLST::impl {
namespace {

/// Stable, and fast for the few members that most dictionaries have.
template <class Member>
void sortByKey(std::span<Member> members) {
    constexpr std::size_t fewMembers = 24;
    auto const before = [](Member const& a, Member const& b) { return a.key < b.key; };
    if (members.size() > fewMembers) {
        if (!std::is_sorted(members.begin(), members.end(), before)) {
            std::stable_sort(members.begin(), members.end(), before);
        }
        return;
    }
    for (std::size_t i = 1; i < members.size(); ++i) {
        if (!before(members[i], members[i - 1])) continue;
        Member moving = std::move(members[i]);
        std::size_t hole = i;
        do {
            members[hole] = std::move(members[hole - 1]);
        } while (--hole > 0 && before(moving, members[hole - 1]));
        members[hole] = std::move(moving);
    }
}

}  // namespace

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
    auto array = ur::make<Array>();
    auto const elements = elements_.above(first);
    array->array().assign(std::move_iterator(elements.begin()), std::move_iterator(elements.end()));
    elements_.cut(first);
    return array;
}

ur::Reference<Item> JsonTreeSink::takeDictionary(std::size_t first) {
    auto dictionary = ur::make<Dictionary>();
    auto const members = members_.above(first);
    sortByKey(members);
    auto& map = dictionary->dictionary();
    map.reserve(members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        Member member = std::move(members[i]);
        bool const again = i + 1 < members.size() && members[i + 1].key == member.key;  // the last one stays
        lostNothing_ &= !again;
        if (!again) map.emplaceLast(std::move(member.key), std::move(member.value));
    }
    members_.cut(first);
    return dictionary;
}

}  // namespace nxPLST::impl
