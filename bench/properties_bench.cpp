// Properties: setting in a joined set, with and without undo, and how the cost of a set grows with its members.
#include <QUndoStack>
#include <memory>
#include <string>
#include <vector>

#include "bench/QtValue.h"
#include "bench/rows.h"
#include "bench/undoMenus.h"
#include "foundation/nxTXN/Manager.h"
#include "plst/Double.h"
#include "support/properties/Property.h"

namespace bench {
namespace {

using nxSupport::Property;
using ur::Reference;

int told = 0;
void listen(Reference<Property const> property, nxSupport::PropertyModType type) {
    keep(property.get());
    told += type;
}
void listenQt(QtValue* value) {
    keep(value);
    ++told;
}

Property::ItemReference number(double value) { return ur::make<nxPLST::Double>(value); }

/// One property that is set and two that listen.
struct OurTrio {
    explicit OurTrio(bool transacted) {
        members.push_back(transacted ? Property::createTxd(manager, "size") : Property::createUnTxd("size"));
        while (members.size() < 3) {
            members.push_back(transacted ? members[0]->cloneTxd(manager) : members[0]->cloneUnTxd());
            members.back()->connect(&listen);
        }
    }

    nxTXN::Manager manager;
    std::vector<Reference<Property>> members;
};

/// A value with three signals and two listeners to each; the signals correspond to the stages of a change.
struct QtTrio {
    QtTrio() {
        for (int listener = 0; listener < 2; ++listener) {
            for (auto const signal : {&QtValue::starting, &QtValue::changed, &QtValue::finished}) {
                QObject::connect(&value, signal, &listenQt);
            }
        }
    }

    QtValue value;
    QUndoStack stack;
};

class SetCommand final : public QUndoCommand {
public:
    SetCommand(QtValue& value, QVariant after)
        : QUndoCommand(QStringLiteral("Set")), value_(value), before_(value.value()), after_(std::move(after)) {}
    void undo() override { value_.setValue(before_); }
    void redo() override { value_.setValue(after_); }

private:
    QtValue& value_;
    QVariant before_;
    QVariant after_;
};

Sides setting(int times) {
    auto const ours = std::make_shared<OurTrio>(false);
    auto const qt = std::make_shared<QtTrio>();
    return {repeated("Property", times, [=](int i) { ours->members[0]->setValue(number(i)); }),
            repeated("Qt signals", times, [=](int i) { qt->value.setValue(static_cast<double>(i)); })};
}

/// Uses a new history each time, so that both sides keep the same number of steps; with menus, as in the undo rows.
Sides settingWithUndo(int times) {
    return {{"Property",
             [=] {
                 OurTrio trio(true);
                 OurMenus const menus(trio.manager);
                 return seconds([&] {
                     for (int i = 0; i < times; ++i) {
                         trio.manager.begin("Set");
                         trio.members[0]->setValue(number(i));
                         trio.manager.commit();
                     }
                 });
             }},
            {"QUndoStack and Qt signals", [=] {
                 QtTrio trio;
                 QtMenus const menus(trio.stack);
                 return seconds([&] {
                     for (int i = 0; i < times; ++i) {
                         trio.stack.push(new SetCommand(trio.value, static_cast<double>(i)));
                     }
                 });
             }}};
}

/// Builds a joined set, sets through it, moves it into another set and dissolves it.
double lifeOfSet(std::size_t count) {
    nxTXN::Manager manager;
    auto const other = Property::createTxd(manager, "other", number(1));
    return seconds([&] {
        manager.begin("all");
        std::vector<Reference<Property>> members = {Property::createTxd(manager, "m", number(2))};
        while (members.size() < count) {
            members.push_back(members.size() % 2 == 0 ? members[0]->cloneTxd(manager) : members[0]->cloneUnTxd());
            members.back()->connect(&listen);
        }
        members[0]->setValue(number(3));
        manager.commit();
        manager.begin("join");
        members[0]->join(other);
        manager.commit();
        manager.undo();
        manager.redo();
        members.clear();
    });
}

}  // namespace

void addPropertyRows(Suite& suite) {
    int const times = suite.scaled(100'000);
    suite.compare("property-set/joined-3", 0.5, [=] { return setting(times); });
    suite.compare("property-set/joined-3-undo", 0.5, [=] { return settingWithUndo(times); });
    suite.compareGrowth("joined-members", 100, lifeOfSet);
}

}  // namespace bench
