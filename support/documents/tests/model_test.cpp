// A document beside plain structures: random edits, undo, files, copies and autosaves, compared after each step.
#include <algorithm>
#include <map>
#include <optional>
#include <random>

#include "foundation/urOS/tests/FileTest.h"
#include "support/documents/tests/Scene.h"

namespace nxSupport::test {
namespace {

using Id = std::uint32_t;

Id idOf(Object const& object) { return object.id().words()[0]; }

/// An object in the obvious form.
struct Plain {
    Id id;
    urString::CString className;
    std::map<urString::CString, Object::ItemReference> values = {};
    std::vector<Plain> children = {};

    explicit Plain(Object const& object) : id(idOf(object)), className(object.objectClass().name()) {
        if (auto const all = object.values()) values.insert(all->dictionary().begin(), all->dictionary().end());
        for (Object const& child : object.children()) children.emplace_back(child);
    }
    [[nodiscard]] bool equals(Object const& object) const {
        auto const all = object.values();
        if (id != idOf(object) || className != object.objectClass().name() ||
            children.size() != object.children().size() || values.size() != (all ? std::size_t(all->size()) : 0U))
            return false;
        for (auto const& [name, value] : values) {
            if (!nxPLST::equal(all->find(name), value)) return false;
        }
        return std::equal(children.begin(), children.end(), object.children().begin(),
                          [](auto const& plain, auto const& child) { return plain.equals(child); });
    }
    [[nodiscard]] Plain* find(Id wanted) {
        if (id == wanted) return this;
        for (Plain& child : children) {
            if (Plain* const found = child.find(wanted)) return found;
        }
        return nullptr;
    }
    [[nodiscard]] Plain* parentOf(Id wanted) {
        for (Plain& child : children) {
            if (child.id == wanted) return this;
            if (Plain* const found = child.parentOf(wanted)) return found;
        }
        return nullptr;
    }
    void list(std::vector<Id>& ids) const {
        ids.push_back(id);
        for (Plain const& child : children) child.list(ids);
    }
    [[nodiscard]] bool isGroup() const { return className == "Group"; }
};

/// What happened, so that a test shows that it tried all.
using Counts = std::map<std::string, int>;

/// Plays one random story on a document and on the plain structures.
class Play {
public:
    Play(std::string folder, unsigned seed, Counts& counts)
        : folder_(std::move(folder)), random_(seed), counts_(counts), plain_(scene_.root()) {
        scene_.document.insertedSignal().addCallback([this](Object& parent, std::size_t index, Object& child) {
            auto& mirrored = mirror_[parent.id()];
            mirrored.insert(mirrored.begin() + static_cast<std::ptrdiff_t>(index), &child);
        });
        scene_.document.removedSignal().addCallback([this](Object& parent, std::size_t index, Object& child) {
            auto& mirrored = mirror_[parent.id()];
            ASSERT_EQ(mirrored.at(index), &child);
            mirrored.erase(mirrored.begin() + static_cast<std::ptrdiff_t>(index));
        });
        scene_.document.movedSignal().addCallback(
            [this](Object& parent, std::size_t from, std::size_t to, Object& child) {
                auto& mirrored = mirror_[parent.id()];
                ASSERT_EQ(mirrored.at(from), &child);
                mirrored.erase(mirrored.begin() + static_cast<std::ptrdiff_t>(from));
                mirrored.insert(mirrored.begin() + static_cast<std::ptrdiff_t>(to), &child);
            });
        scene_.document.replacedSignal().addCallback([this] { mirrorAll(); });
    }

    void step() {
        switch (below(20)) {
            case 0: return below(8) == 0 ? reopen() : watch();
            case 1: return below(8) == 0 ? autosave() : checkRecovery();
            case 2:
            case 3:
            case 4: return pasteSome();
            case 5:
            case 6:
            case 7: return walk(true);
            case 8:
            case 9: return walk(false);
            case 10: return abort();
            default: return edit();
        }
    }

    void check() {
        ASSERT_TRUE(plain_.equals(scene_.root())) << scene_.text();
        ASSERT_TRUE(isSound(scene_.document, scene_.root()));
        ASSERT_TRUE(isMirrored(scene_.root()));
        ASSERT_EQ(scene_.document.history().undoCount(), done_.size());
        ASSERT_EQ(scene_.document.history().redoCount(), undone_.size());
        if (panel_) {
            for (auto const& row : panel_->rows()) ASSERT_NO_FATAL_FAILURE(checkRow(row));
        }
    }

private:
    struct Cancelled {};

    unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
    Id anyId() {
        std::vector<Id> ids;
        plain_.list(ids);
        return ids[below(ids.size())];
    }
    Object& object(Id id) {
        std::vector<Object*> left = {&scene_.root()};
        for (;;) {
            Object* const next = left.back();
            left.pop_back();
            if (idOf(*next) == id) return *next;
            for (Object& child : next->children()) left.push_back(&child);
        }
    }

    void edit() {
        Plain const before = plain_;
        bool changes = false;
        scene_.document.edit("Edit", [&] {
            for (auto left = 1 + below(3); left > 0; --left) changes |= change();
        });
        if (changes) pushStep(before);
    }
    void abort() {
        Plain const before = plain_;
        EXPECT_THROW(scene_.document.edit("Fails",
                                          [&] {
                                              for (auto left = below(4); left > 0; --left) change();
                                              throw Cancelled();
                                          }),
                     Cancelled);
        plain_ = before;
        ++counts_["abort"];
    }
    void pushStep(Plain const& before) {
        done_.push_back(before);
        undone_.clear();
    }

    /// False when nothing changed.
    bool change() {
        Id const id = anyId();
        switch (below(6)) {
            case 0:
            case 1: return add(id);
            case 2: return remove(id);
            case 3: return move(id);
            default: return set(id);
        }
    }
    bool add(Id parent) {
        std::vector<Id> ids;
        plain_.list(ids);
        auto const made = scene_.document.make(ids.size() < mostObjects && below(2) == 0 ? "Group" : "Ball");
        Plain& plain = *plain_.find(parent);
        std::size_t const index = below(plain.children.size() + 2);
        bool const fits = ids.size() < mostObjects && plain.isGroup() && index <= plain.children.size();
        EXPECT_TRUE(ids.size() >= mostObjects || object(parent).insert(index, made) == fits);
        if (fits) plain.children.insert(plain.children.begin() + index, Plain(*made));
        ++counts_[fits ? "add" : "add refused"];
        return fits;
    }
    bool remove(Id id) {
        Plain* const parent = plain_.parentOf(id);
        if (!parent) return false;
        EXPECT_TRUE(object(parent->id).remove(object(id)));
        std::erase_if(parent->children, [&](Plain const& child) { return child.id == id; });
        ++counts_["remove"];
        return true;
    }
    bool move(Id id) {
        Id const target = anyId();
        Plain* const from = plain_.parentOf(id);
        Plain* const to = plain_.find(target);
        std::size_t const room = to->children.size() + (from == to ? 0 : 1);
        std::size_t const index = below(room + 1);
        bool const fits = from && !plain_.find(id)->find(target) && to->isGroup() && index < room;
        auto const former = from ? *object(from->id).children().indexOf(object(id)) : 0;
        EXPECT_EQ(object(id).moveTo(object(target), index), fits);
        bool const stays = from == to && index == former;
        ++counts_[fits ? "move" : "move refused"];
        if (!fits) return false;
        Plain moved = *plain_.find(id);
        std::erase_if(from->children, [&](Plain const& child) { return child.id == id; });
        Plain& parent = *plain_.find(target);
        parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(index), std::move(moved));
        return !stays;
    }
    bool set(Id id) {
        struct Choice {
            char const* name;
            nxPLST::Value value;
            bool fitsShapes;
        };
        Choice const choices[] = {{"name", "n", true},     {"name", 3, false},    {"size", 5, true},
                                  {"size", 1, true},       {"size", 101, false},  {"free", {true, "x"}, true},
                                  {"free", nullptr, true}, {"fill", "none", true}};
        auto const& [name, value, fits] = choices[below(std::size(choices))];
        Plain& plain = *plain_.find(id);
        bool const isFree = plain.isGroup() && std::string(name) != "name";
        Object::ItemReference const item = value.item();
        bool const differs = !nxPLST::equal(object(id).value(name), item);
        EXPECT_EQ(object(id).setValue(name, item), fits || isFree);
        ++counts_[fits || isFree ? "set" : "set refused"];
        if (!differs || !(fits || isFree)) return false;
        if (item) {
            plain.values[name] = item;
        } else {
            plain.values.erase(name);
        }
        return true;
    }

    void walk(bool back) {
        auto& from = back ? done_ : undone_;
        auto& to = back ? undone_ : done_;
        bool const walks = back ? scene_.document.undo() : scene_.document.redo();
        EXPECT_EQ(walks, !from.empty());
        if (from.empty()) return;
        to.push_back(std::exchange(plain_, from.back()));
        from.pop_back();
        ++counts_[back ? "undo" : "redo"];
    }
    void pasteSome() {
        std::vector<Id> ids;
        plain_.list(ids);
        Id const id = ids[below(ids.size())];
        Id const target = anyId();
        if (ids.size() > mostObjects) return;
        Plain const before = plain_;
        Plain& parent = *plain_.find(target);
        bool const fits = parent.isGroup();
        Pasted const pasted = paste(object(target), 0, copy({&object(id)}));
        EXPECT_EQ(pasted.ok(), fits) << pasted.error.message();
        ++counts_[fits ? "paste" : "paste refused"];
        if (!fits) return;
        Plain copied = *plain_.find(id);
        giveIds(copied, *pasted.objects.front());
        parent.children.insert(parent.children.begin(), copied);
        mirrorBelow(*pasted.objects.front());
        pushStep(before);
    }
    void giveIds(Plain& plain, Object const& object) {
        ASSERT_EQ(plain.children.size(), object.children().size());
        plain.id = idOf(object);
        for (std::size_t i = 0; i < plain.children.size(); ++i) giveIds(plain.children[i], object.children()[i]);
    }
    void reopen() {
        auto const path = folder_ + (below(2) == 0 ? "/a.json" : "/a.nx");
        ASSERT_TRUE(save(scene_.document, path.c_str()).ok());
        ASSERT_FALSE(scene_.document.isModified());
        panel_.reset();
        auto const error = open(scene_.document, path.c_str());
        ASSERT_TRUE(error.ok()) << error.message();
        done_.clear();
        undone_.clear();
        ++counts_["open"];
    }
    void autosave() {
        if (!autosave_) autosave_.emplace(scene_.document, folder_.c_str(), 5000);
        ASSERT_TRUE(autosave_->write().ok());
        if (saved_ || scene_.document.isModified()) saved_ = plain_;
        ++counts_["autosave"];
    }
    void watch() {
        shown_ = {&object(anyId()), &object(anyId())};
        panel_.emplace(shown_);
        ++counts_["panel"];
    }
    void checkRecovery() {
        if (!saved_ || below(8) > 0) return;
        Scene rescued;
        ASSERT_TRUE(recover(rescued.document, autosave_->path()).ok());
        ASSERT_TRUE(saved_->equals(rescued.root())) << rescued.text();
        ++counts_["recover"];
    }

    void mirrorAll() {
        mirror_.clear();
        mirrorBelow(scene_.root());
    }
    void mirrorBelow(Object& top) {
        auto& mirrored = mirror_[top.id()];
        mirrored.clear();
        for (Object& child : top.children()) {
            mirrored.push_back(&child);
            mirrorBelow(child);
        }
    }
    bool isMirrored(Object& top) {
        std::vector<Object*> const& mirrored = mirror_[top.id()];
        std::size_t i = 0;
        for (Object& child : top.children()) {
            if (i == mirrored.size() || mirrored[i++] != &child || !isMirrored(child)) return false;
        }
        return i == mirrored.size();
    }
    void checkRow(Panel::Row const& row) const {
        if (!shown_[0]->isTxnExtant() || !shown_[1]->isTxnExtant()) return;  // their making was undone
        auto const value = shown_[0]->value(row.description.name);
        bool const differs = !nxPLST::equal(value, shown_[1]->value(row.description.name));
        ASSERT_EQ(row.isMixed(), differs);
        ASSERT_TRUE(nxPLST::equal(row.property->value(), differs ? nullptr : value));
    }

    static constexpr std::size_t mostObjects = 8;

    std::string const folder_;
    std::minstd_rand random_;
    Counts& counts_;
    Scene scene_;
    Plain plain_;
    std::vector<Plain> done_;    ///< before each step
    std::vector<Plain> undone_;  ///< after each
    std::map<urOS::Uuid, std::vector<Object*>> mirror_;
    std::optional<Autosave> autosave_;
    std::optional<Plain> saved_;
    std::vector<Object*> shown_;
    std::optional<Panel> panel_;  ///< of these
};

struct DocumentModel : urOS::Files {};

TEST_F(DocumentModel, StaysEqualToThePlainStructures) {
    unsigned const first = std::random_device{}();
    Counts counts;
    for (unsigned seed = first; seed != first + 100 && !HasFailure(); ++seed) {
        Play play(path(), seed, counts);
        for (int step = 0; step < 1000 && !HasFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            play.step();
            play.check();
        }
    }
    for (char const* what : {"add", "add refused", "remove", "move", "move refused", "set", "set refused", "undo",
                             "redo", "abort", "paste", "paste refused", "open", "autosave", "recover", "panel"})
        EXPECT_GT(counts[what], 100) << what;
}

}  // namespace
}  // namespace nxSupport::test
