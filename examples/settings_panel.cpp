// A settings panel in text form: rows to edit, and undo and redo menus with the names of the steps.
//
// Without arguments it runs the session below; with any argument it reads commands from the standard input.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/nxTXN/Transaction.h"
#include "plst/make.h"
#include "support/properties/Prop.h"
#include "support/properties/PropertySet.h"

namespace {

using nxSupport::BoundedDouble;
using nxSupport::Prop;
using nxSupport::Property;

/// The settings with their history.
class Document {
public:
    Document() {
        nxTXN::Transaction const setUp(history, "New", nxTXN::TransactionKind::none);  // not a step to undo
        add("radius", {5, 0, 20});
        add("strength", {0.5, 0, 1});
        add("spacing", {2, 1, 9});
    }

    nxTXN::Manager history;
    nxSupport::PropertySet settings;

private:
    void add(char const* name, BoundedDouble const& value) {
        auto const setting = Prop<BoundedDouble>::createTxd(history, name, value);
        setting.pty()->connectValidation(keepWithinRange);
        settings.insert(setting.pty());
    }
    static void keepWithinRange(ur::Reference<Property const> property, Property::ItemReference& candidate) {
        auto const wanted = nxPLST::valueOf<BoundedDouble>(candidate).value();
        auto kept = nxPLST::valueOf<BoundedDouble>(property->value());
        kept.setValue(std::min(std::max(wanted, kept.minValue()), kept.maxValue()));
        if (kept.value() != wanted) candidate = nxPLST::itemOf(kept);
    }
};

/// One row of the panel. It holds an untransacted handle, which follows edits, undo and redo.
class Row {
public:
    explicit Row(ur::Reference<Property> const& setting)
        : value_(setting->cloneUnTxd()), listener_(value_.subscribe([this](auto const&, auto) { changed_ = true; })) {}
    Row(Row const&) = delete;
    Row& operator=(Row const&) = delete;

    bool is(std::string const& name) const { return value_.pty()->name() == name; }
    void set(double value) {
        BoundedDouble next = value_.get();
        next.setValue(value);
        value_.set(next);
        changed_ = true;
    }
    void draw() {
        constexpr int width = 20;
        BoundedDouble const value = value_.get();
        auto const filled = static_cast<std::size_t>(std::lround(width * value.fractionalValue()));
        std::string const bar = std::string(filled, '#') + std::string(width - filled, '.');
        std::printf("%c %-9s %s %g\n", std::exchange(changed_, false) ? '*' : ' ', value_.pty()->name().c_str(),
                    bar.c_str(), value.value());
    }

private:
    Prop<BoundedDouble> value_;
    urRTB::ScopedConnection listener_;
    bool changed_ = false;
};

class Panel {
public:
    explicit Panel(Document& document) : history_(document.history) {
        nxTXN::Transaction const setUp(history_, "Open panel", nxTXN::TransactionKind::none);
        for (auto const& [name, setting] : document.settings.getMap()) rows_.push_back(std::make_unique<Row>(setting));
    }

    void draw() {
        for (auto const& row : rows_) row->draw();
        std::printf("  %s | %s\n\n", menu("Undo", history_.canUndo(), history_.undoName()).c_str(),
                    menu("Redo", history_.canRedo(), history_.redoName()).c_str());
    }

    /// Returns false for an unknown command.
    bool perform(std::string const& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "undo") return history_.undo();
        if (command == "redo") return history_.redo();
        if (command == "set") return set(words);
        if (command == "drag") return drag(words);
        if (command == "reset") return reset();
        return false;
    }

private:
    static std::string menu(char const* verb, bool can, urString::CString const& name) {
        return can ? verb + (" " + std::string(name)) : "(" + std::string(verb) + ")";
    }
    Row* find(std::string const& name) {
        for (auto const& row : rows_) {
            if (row->is(name)) return row.get();
        }
        return nullptr;
    }
    bool set(std::istringstream& words) {
        std::string name;
        double value = 0;
        if (!(words >> name >> value) || !find(name)) return false;
        return edit(history_, "Set " + name, [&] { find(name)->set(value); });
    }
    // Each position from the mouse is a transaction of its own. Together they become one step.
    bool drag(std::istringstream& words) {
        std::string name;
        if (!(words >> name) || !find(name)) return false;
        for (double value = 0; words >> value;) {
            history_.beginCoalescing("Drag " + name, this);
            find(name)->set(value);
            history_.commit();
        }
        history_.endCoalescing();
        return true;
    }
    bool reset() {
        return edit(history_, "Reset", [&] {
            for (auto const& row : rows_) row->set(0);
        });
    }

    nxTXN::Manager& history_;
    std::vector<std::unique_ptr<Row>> rows_;
};

void run(Panel& panel, std::istream& commands, bool echo) {
    panel.draw();
    for (std::string line; std::getline(commands, line);) {
        if (echo) std::printf("> %s\n", line.c_str());
        if (!panel.perform(line)) std::printf("  (nothing done)\n");
        panel.draw();
    }
}

}  // namespace

int main(int argc, char**) {
    Document document;
    Panel panel(document);
    std::istringstream session(
        "set radius 12\n"
        "drag strength 0.6 0.7 0.8 0.9\n"
        "set spacing 100\n"
        "undo\n"
        "undo\n"
        "redo\n"
        "reset\n"
        "undo\n"
        "redo\n"
        "redo\n");
    if (argc > 1) {
        run(panel, std::cin, false);
    } else {
        run(panel, session, true);
    }
    return 0;
}
