// A plain model of properties, their joined sets and their history.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/properties/Property.h"

namespace nxSupport::test {

/// Says what properties hold, tell and do on undo, with plain numbers for properties, data objects, links and values.
///
/// Everything that a history records is a `State` under a number; records exchange states with the present. 0 is
/// nothing. All changes are made in transactions. Properties are never dropped, and one whose making is undone takes
/// part in nothing until that is done again.
class PropertyModel {
public:
    using Ids = std::vector<int>;

    int createTxd(int value) {
        int const data = newRecorded();
        int const property = addTxd(data);
        store(property, value);
        return property;
    }
    int createUnTxd(int value) { return addUnTxd(newPlain(value)); }
    int cloneTxd(int property) {
        if (int const data = txdOf(property)) return addTxd(data);
        int const data = newMirror(value(property));
        int const clone = addTxd(data);
        link(data, untxdOf(property));
        return clone;
    }
    int cloneUnTxd(int property) {
        if (int const data = untxdOf(property)) return addUnTxd(data);
        int const data = newPlain(value(property));
        int const clone = addUnTxd(data);
        link(txdOf(property), data);
        return clone;
    }

    void join(int property, int other) {
        Ids const transacted = txdMembers(property);
        Ids const untransacted = untxdMembers(property);
        int txd = txdOf(other);
        int untxd = untxdOf(other);
        if (!untxd && !untransacted.empty()) link(txd, untxd = newPlain(value(other)));
        if (!txd && !transacted.empty()) link(txd = newMirror(value(other)), untxd);
        for (int const member : transacted) moveTxd(member, txd);
        for (int const member : untransacted) moveUnTxd(member, untxd);
    }

    /// Whether `setValue` says that no validator changed the value.
    bool set(int property, int value, PropertyModType type) {
        bool const unchanged = !validate(property, value);
        if (type == ModifyAll) return setAll(property, value), unchanged;
        store(property, value);
        tellOthers(property, type);
        return unchanged;
    }
    bool setAll(int property, int value) {
        bool const unchanged = !validate(property, value);
        tellOthers(property, ModifyStart);
        store(property, value);
        tellOthers(property, ModifyPerform);
        tellOthers(property, ModifyEnd);
        return unchanged;
    }
    /// The rule of the validators in this test: some numbers are replaced by the next one.
    static bool isReplaced(int value) { return value % 100 == 20; }

    void begin() { levels_.emplace_back(); }
    void commit() {
        Step inner = std::move(levels_.back());
        levels_.pop_back();
        if (!levels_.empty()) {
            for (auto& record : inner.records) keep(levels_.back(), std::move(record));
            levels_.back().births.insert(levels_.back().births.end(), inner.births.begin(), inner.births.end());
        } else if (!inner.records.empty()) {
            past.push_back(std::move(inner));
            future.clear();
        }
    }
    void abort() {
        Step step = std::move(levels_.back());
        levels_.pop_back();
        exchange(step, Direction::back);
    }
    void undo() {
        exchange(past.back(), Direction::back);
        future.push_back(std::move(past.back()));
        past.pop_back();
    }
    void redo() {
        exchange(future.back(), Direction::forth);
        past.push_back(std::move(future.back()));
        future.pop_back();
    }
    [[nodiscard]] std::size_t depth() const { return levels_.size(); }

    [[nodiscard]] int value(int property) const {
        if (!properties_.at(property).transacted) return plain_.at(untxdOf(property)).value;
        return recorded_.at(txdOf(property)).value;
    }
    [[nodiscard]] bool extant(int property) const { return properties_.at(property).born; }
    /// Whether its joined set has both sides, even if one of them has no members.
    [[nodiscard]] bool isMirrored(int property) const { return txdOf(property) && untxdOf(property); }
    void addValidator(int property) { properties_.at(property).validates = true; }
    std::string takeTold() { return std::exchange(told_, {}); }

    struct State {
        int data = 0;  // of a property
        Ids members;   // and the rest of a data object
        int value = 0;
        int link = 0;
    };
    struct Step {
        std::vector<std::pair<int, State>> records;
        Ids births;
    };
    std::vector<Step> past;
    std::vector<Step> future;

private:
    enum class Direction { back, forth };
    struct Known {
        bool transacted;
        bool born = true;
        bool validates = false;
        int plainData = 0;
    };
    struct Plain {
        Ids members;
        int value = 0;
        int link = 0;
    };
    struct Link {
        int txd;
        int untxd;  // 0 once the link has ended
    };

    [[nodiscard]] int endOf(int link) const { return link ? links_.at(link).untxd : 0; }
    [[nodiscard]] int txdOf(int property) const {
        if (properties_.at(property).transacted) return recorded_.at(property).data;
        int const link = plain_.at(properties_.at(property).plainData).link;
        return link ? links_.at(link).txd : 0;
    }
    [[nodiscard]] int untxdOf(int property) const {
        if (!properties_.at(property).transacted) return properties_.at(property).plainData;
        return endOf(recorded_.at(txdOf(property)).link);
    }
    [[nodiscard]] Ids txdMembers(int property) const {
        int const data = txdOf(property);
        return data ? recorded_.at(data).members : Ids();
    }
    [[nodiscard]] Ids untxdMembers(int property) const {
        int const data = untxdOf(property);
        return data ? plain_.at(data).members : Ids();
    }
    [[nodiscard]] Ids members(int property) const {
        Ids all = txdMembers(property);
        Ids const rest = untxdMembers(property);
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }

    int newRecorded() {
        recorded_[++newest_] = {};
        levels_.back().births.push_back(newest_);
        return newest_;
    }
    int newMirror(int value) {
        int const data = newRecorded();
        record(data);
        recorded_[data].value = value;
        return data;
    }
    int newPlain(int value) {
        plain_[++newest_].value = value;
        return newest_;
    }
    int addTxd(int data) {
        int const property = newRecorded();
        properties_[property] = {true};
        recorded_[property].data = data;
        record(data);
        recorded_[data].members.push_back(property);
        return property;
    }
    int addUnTxd(int data) {
        properties_[++newest_] = {false};
        properties_[newest_].plainData = data;
        plain_[data].members.push_back(newest_);
        return newest_;
    }
    void link(int txd, int untxd) {
        record(txd);
        links_[++newest_] = {txd, untxd};
        recorded_[txd].link = plain_[untxd].link = newest_;
    }
    void sever(int link) {
        if (int const end = endOf(link)) plain_[end].link = 0;
        if (link) links_[link].untxd = 0;
    }

    void record(int object) { keep(levels_.back(), {object, recorded_[object]}); }
    static void keep(Step& level, std::pair<int, State> record) {
        auto const same = [&record](auto const& kept) { return kept.first == record.first; };
        if (std::none_of(level.records.begin(), level.records.end(), same)) level.records.push_back(std::move(record));
    }

    void store(int property, int value) {
        int const txd = txdOf(property);
        int const untxd = untxdOf(property);
        if (txd) record(txd);
        if (txd) recorded_[txd].value = value;
        if (untxd) plain_[untxd].value = value;
    }
    bool validate(int property, int& value) const {
        Ids const all = members(property);
        bool const any = std::any_of(all.begin(), all.end(), [&](int m) { return properties_.at(m).validates; });
        bool const replaced = any && isReplaced(value);
        value += replaced ? 1 : 0;
        return replaced;
    }

    static void leave(Ids& members, int property) {
        members.erase(std::find(members.begin(), members.end(), property));
    }
    void moveTxd(int property, int data) {
        record(property);
        tell(property, "start");
        int const former = std::exchange(recorded_[property].data, data);
        record(former);
        leave(recorded_[former].members, property);
        endIfUnused(former);
        record(data);
        recorded_[data].members.push_back(property);
        tell(property, "perform");
        tell(property, "end");
    }
    void endIfUnused(int data) {
        auto const uses = [&](auto const& entry) {
            return entry.second.transacted && recorded_[entry.first].data == data;
        };
        if (std::any_of(properties_.begin(), properties_.end(), uses)) return;
        sever(std::exchange(recorded_[data].link, 0));
    }
    void moveUnTxd(int property, int data) {
        tell(property, "start");
        int const former = std::exchange(properties_[property].plainData, data);
        leave(plain_[former].members, property);
        if (former != data && plain_[former].members.empty()) sever(plain_[former].link);
        plain_[data].members.push_back(property);
        tell(property, "perform");
        tell(property, "end");
    }

    void exchange(Step& step, Direction direction) {
        if (direction == Direction::back) std::reverse(step.records.begin(), step.records.end());
        for (auto& [object, state] : step.records) {
            int const before = recorded_[object].value;
            std::swap(recorded_[object], state);
            if (recorded_[object].value != before) mirror(recorded_[object]);
        }
        for (int const object : step.births) {
            if (properties_.count(object) > 0) properties_[object].born = direction == Direction::forth;
        }
        for (auto const& [id, link] : links_) {
            if (link.untxd && recorded_[link.txd].link != id) sever(id);
        }
        for (auto const& [object, state] : step.records) {
            if (properties_.count(object) > 0 && extant(object)) tell(object, "txn");
            for (int const member : recorded_[object].members) tell(member, "txn");
        }
        if (direction == Direction::back) std::reverse(step.records.begin(), step.records.end());
    }
    void mirror(State const& restored) {
        int const end = endOf(restored.link);
        if (!end) return;
        for (int const member : plain_[end].members) tell(member, "start");
        plain_[end].value = restored.value;
        for (int const member : plain_[end].members) {
            tell(member, "perform");
            tell(member, "end");
        }
    }

    void tellOthers(int property, PropertyModType type) {
        static char const* const stages[] = {"start", "perform", "end"};
        for (int const member : members(property)) {
            if (member != property) tell(member, stages[type]);
        }
    }
    void tell(int property, char const* stage) {
        told_ += (told_.empty() ? "" : " ") + std::to_string(property) + ":" + stage;
    }

    int newest_ = 0;
    std::map<int, Known> properties_;
    std::map<int, State> recorded_;
    std::map<int, Plain> plain_;
    std::map<int, Link> links_;
    std::vector<Step> levels_;
    std::string told_;
};

}  // namespace nxSupport::test
