// A plain model of properties, their joined sets and their history.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/properties/tests/Recorder.h"

namespace nxSupport::test {

/// Models the values and notifications of properties and their undo. Properties, data objects and links are numbers; 0
/// is none.
///
/// A history records a `State` for the number of its object; undo and redo exchange it with the current state. All
/// changes happen in transactions, and no property is dropped. A property whose creation is undone is ignored.
class PropertyModel {
public:
    using Ids = std::vector<int>;
    enum Kind : bool { untransacted, transacted };

    int create(Kind kind, int value) {
        int const property = addMember(makeData(kind));
        store(property, value);
        return property;
    }
    int clone(Kind kind, int original) {
        if (int const data = dataOf(original, kind)) return addMember(data);
        int const data = makeData(kind, value(original));
        int const property = addMember(data);
        kind == transacted ? link(data, dataOf(original, untransacted)) : link(dataOf(original, transacted), data);
        return property;
    }
    void join(int property, int other) {
        int data[] = {dataOf(other, untransacted), dataOf(other, transacted)};
        Ids const moved[] = {members(property, untransacted), members(property, transacted)};
        for (Kind const kind : {untransacted, transacted}) {
            if (data[kind] || moved[kind].empty()) continue;
            data[kind] = makeData(kind, value(other));
            link(data[transacted], data[untransacted]);
        }
        for (Kind const kind : {transacted, untransacted}) {
            for (int const member : moved[kind]) move(member, data[kind]);
        }
    }
    /// Returns the expected result of `setValue`: whether no validator changed the value.
    bool set(int property, int value, PropertyModType type) {
        bool const unchanged = !validate(property, value);
        if (type == ModifyAll) return set(property, value), unchanged;
        store(property, value);
        tellOthers(property, type);
        return unchanged;
    }
    bool set(int property, int value) {
        bool const unchanged = !validate(property, value);
        tellOthers(property, ModifyStart);
        store(property, value);
        tellOthers(property, ModifyPerform);
        tellOthers(property, ModifyEnd);
        return unchanged;
    }
    /// The validators' rule: some numbers are replaced by the next one.
    static bool isReplaced(int value) { return value % 100 == 20; }
    void addValidator(int property) { validating_.insert(property); }

    void begin() { isOpen = true; }
    void commit() {
        isOpen = false;
        Step step = std::exchange(present_, {});
        if (!changedAnything(step) && (!future.empty() || step.records.empty() || hasPassing(step))) return;
        past.push_back(std::move(step));
        future.clear();
    }
    void abort() {
        isOpen = false;
        exchange(present_, Direction::back);
        present_ = {};
    }
    void undo() { turn(past, future, Direction::back); }
    void redo() { turn(future, past, Direction::forth); }

    [[nodiscard]] int value(int property) const { return states_.at(states_.at(property).data).value; }
    [[nodiscard]] bool extant(int property) const { return undone_.count(property) == 0; }
    /// Whether its joined set has both sides, even if one of them has no members.
    [[nodiscard]] bool isMirrored(int property) const { return twinOf(states_.at(property).data) != 0; }
    /// The notifications since the last call.
    std::string take() { return std::exchange(told_, {}); }

    struct State {
        int data = 0;  // for a property
        Ids members;   // these three are for a data object
        int value = 0;
        int link = 0;
        bool operator==(State const&) const = default;
    };
    struct Step {
        std::vector<std::pair<int, State>> records;
        std::set<int> created;
    };
    std::vector<Step> past, future;
    bool isOpen = false;  // a transaction that collects the next step

private:
    enum class Direction { back, forth };

    [[nodiscard]] bool isTransacted(int object) const { return transacted_.count(object) > 0; }
    [[nodiscard]] int twinOf(int data) const {
        int const link = states_.at(data).link;
        if (!link) return 0;
        return isTransacted(data) ? links_.at(link).second : links_.at(link).first;
    }
    [[nodiscard]] int dataOf(int property, Kind kind) const {
        int const data = states_.at(property).data;
        return isTransacted(data) == kind ? data : twinOf(data);
    }
    [[nodiscard]] bool isReferredTo(int data) const {
        auto const refers = [data](auto const& entry) { return entry.second.data == data; };
        return std::any_of(states_.begin(), states_.end(), refers);
    }
    [[nodiscard]] bool remains(int made) const { return states_.at(made).data || isReferredTo(made); }
    [[nodiscard]] bool hasPassing(Step const& step) const {
        return std::any_of(step.created.begin(), step.created.end(), [this](int made) { return !remains(made); });
    }
    [[nodiscard]] bool changedAnything(Step const& step) const {
        return std::any_of(step.created.begin(), step.created.end(), [this](int made) { return remains(made); }) ||
               std::any_of(step.records.begin(), step.records.end(), [&](auto const& record) {
                   return step.created.count(record.first) == 0 && states_.at(record.first) != record.second;
               });
    }
    [[nodiscard]] Ids members(int property, Kind kind) const {
        int const data = dataOf(property, kind);
        return data ? states_.at(data).members : Ids();
    }
    [[nodiscard]] Ids members(int property) const {
        Ids all = members(property, transacted);
        Ids const rest = members(property, untransacted);
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }

    int make(Kind kind) {
        states_[++newest_] = {};
        if (kind == transacted) transacted_.insert(newest_), present_.created.insert(newest_);
        return newest_;
    }
    int makeData(Kind kind, int value = 0) {
        int const data = make(kind);
        record(data);
        states_[data].value = value;
        return data;
    }
    int addMember(int data) {
        int const property = make(Kind(isTransacted(data)));
        states_[property].data = data;
        record(data);
        states_[data].members.push_back(property);
        return property;
    }
    void link(int txd, int untxd) {
        record(txd);
        links_[++newest_] = {txd, untxd};
        states_[txd].link = states_[untxd].link = newest_;
    }
    void sever(int link) {
        if (int const untxd = link ? std::exchange(links_.at(link).second, 0) : 0) states_[untxd].link = 0;
    }

    void record(int object) {
        auto const same = [object](auto const& kept) { return kept.first == object; };
        auto& records = present_.records;
        if (!isTransacted(object) || std::any_of(records.begin(), records.end(), same)) return;
        records.emplace_back(object, states_[object]);
    }

    void store(int property, int value) {
        for (Kind const kind : {transacted, untransacted}) {
            int const data = dataOf(property, kind);
            if (!data) continue;
            record(data);
            states_[data].value = value;
        }
    }
    bool validate(int property, int& value) {
        for (int const member : members(property)) {
            if (validating_.count(member) == 0) continue;
            tell(member, "validate");
            bool const replaced = isReplaced(value);
            value += replaced ? 1 : 0;
            return replaced;
        }
        return false;
    }
    void move(int property, int data) {
        record(property);
        tell(property, ModifyStart);
        int const former = std::exchange(states_[property].data, data);
        record(former);
        Ids& left = states_[former].members;
        left.erase(std::find(left.begin(), left.end(), property));
        if (!isReferredTo(former)) sever(std::exchange(states_[former].link, 0));
        record(data);
        states_[data].members.push_back(property);
        tell(property, ModifyPerform);
        tell(property, ModifyEnd);
    }

    void turn(std::vector<Step>& from, std::vector<Step>& to, Direction direction) {
        exchange(from.back(), direction);
        to.push_back(std::move(from.back()));
        from.pop_back();
    }
    void exchange(Step& step, Direction direction) {
        if (direction == Direction::back) std::reverse(step.records.begin(), step.records.end());
        for (auto& [object, state] : step.records) {
            int const before = states_[object].value;
            std::swap(states_[object], state);
            if (states_[object].value != before) mirror(object);
        }
        for (int const object : step.created) {
            direction == Direction::back ? void(undone_.insert(object)) : void(undone_.erase(object));
        }
        for (auto const& [id, ends] : links_) {
            if (states_[ends.first].link != id) sever(id);
        }
        for (auto const& [object, state] : step.records) {
            if (states_[object].data && extant(object)) tell(object, "txn");
            for (int const member : states_[object].members) tell(member, "txn");
        }
        if (direction == Direction::back) std::reverse(step.records.begin(), step.records.end());
    }
    void mirror(int restored) {
        int const twin = twinOf(restored);
        if (!twin) return;
        for (int const member : states_[twin].members) tell(member, ModifyStart);
        states_[twin].value = states_[restored].value;
        for (int const member : states_[twin].members) {
            tell(member, ModifyPerform);
            tell(member, ModifyEnd);
        }
    }

    void tellOthers(int property, PropertyModType type) {
        for (int const member : members(property)) {
            if (member != property) tell(member, type);
        }
    }
    void tell(int property, PropertyModType type) { tell(property, stageNames[type]); }
    void tell(int property, char const* what) {
        if (!told_.empty()) told_ += ' ';
        told_ += std::to_string(property) + ':' + what + '=' + std::to_string(value(property));
    }

    int newest_ = 0;
    std::map<int, State> states_;  // by property or data object
    std::set<int> transacted_;
    std::set<int> undone_;
    std::set<int> validating_;
    std::map<int, std::pair<int, int>> links_;  // the transacted and the untransacted data, or 0 for an ended link
    Step present_;
    std::string told_;
};

}  // namespace nxSupport::test
