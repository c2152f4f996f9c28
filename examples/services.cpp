// Services that an application calls in every frame: competing cursors, a drag, diagnostic text, times.
#include <cstdio>
#include <string>

#include "foundation/ur/Reference.h"
#include "foundation/urOS/File.h"
#include "support/services/CursorSlot.h"
#include "support/services/DebugPrint.h"
#include "support/services/PerfScope.h"
#include "support/services/Timeline.h"
#include "support/services/Transformer.h"
#include "support/services/debugList.h"

using nxSupport::Cursor;
using nxSupport::CursorSlot;
using nxSupport::DebugPrint;
using nxSupport::Transformer;
using urLinear::AffineMatrix;
using urLinear::Point;

// [view]
class View {
public:
    View() {
        slot->cursorsChanged.addCallback([this] { show(); });
    }
    void show() const {
        Cursor const* const cursor = slot->cursorWithPrecedence();
        std::printf("the view shows %s\n", cursor ? cursor->name().c_str() : "its own cursor");
    }

    ur::Reference<CursorSlot> slot = ur::make<CursorSlot>(this);
};

void useCursors() {
    View view;
    int const tool = 0, handle = 0;
    auto const brush = ur::make<Cursor>(&tool, "brush", view.slot.get());
    {
        auto const arrows = ur::make<Cursor>(&handle, "arrows", view.slot.get());  // the mouse is over a handle
    }
    view.slot->disable(true);
    view.slot->disable(false);
}
// [view]

// [drag]
void print(char const* what, Point const& p) { std::printf("%s (%g, %g, %g)\n", what, p.x, p.y, p.z); }

void drag() {
    AffineMatrix object = AffineMatrix().translate({10, 0, 0});  // the object's place
    AffineMatrix const start = object;
    Point const corner(1, 1, 1);  // of the object
    auto const gesture = ur::make<Transformer>();
    gesture->transformChanged.addCallback([&](Transformer* moved) {
        AffineMatrix total;
        moved->getXForm(total, false);
        object = start * total;
    });

    gesture->startScale(start, Point(10, 0, 0));
    for (double const factor : {1.5, 2.0, 3.0}) {
        gesture->setScale({factor, factor, 1});
        print("the corner is at", corner * object);
    }
    std::printf("last step by %g, not uniform: %d\n", gesture->getScaleDelta().x,
                gesture->getCurrentOp() == urLinear::TransformOperation::nonUniformScale);
    gesture->finish();

    int kind = 0;
    nxSupport::transformDescriptor(object, kind);
    std::printf("the object is moved: %d, turned: %d, scaled: %d\n", kind & 1, kind >> 1 & 1, kind >> 3 & 1);
}
// [drag]

// [debug]
void snap() {
    DebugPrint print("snap", nxSupport::Debug_Snapping);
    print("to the grid, within %.1f pixels", 7.5);
}

void pick() {
    DebugPrint print("pick", nxSupport::Debug_Tools);
    print("one candidate");
    snap();
}

void debug(char const* list) {
    for (auto const& unknown : nxSupport::switchDebugCodes(list)) std::printf("%s\n", unknown.message().c_str());
    pick();
}
// [debug]

// [times]
void recordFrame(char const* file) {
    nxSupport::Timeline timeline;
    nxSupport::Timeline::setActive(&timeline);
    {
        nxSupport::PerfScope scope;
        scope.charge(nxSupport::Perf_UpdateDoc);
        drag();
        scope.charge(nxSupport::Perf_DrawScene);
        nxSupport::ScriptCallScope const call("onDraw");
    }
    urOS::File trace;
    auto error = trace.open(file, urOS::openForWriting);
    if (error.ok()) error = timeline.write(trace);
    std::printf("%zu events, %s\n", timeline.eventCount(), error.ok() ? "written" : "not written");
}
// [times]

int main(int argc, char** argv) {
    std::printf("--- cursors\n");
    useCursors();
    std::printf("--- debug\n");
    debug("Debug_Tools,Debug_Snaping");
    debug("Debug_Snapping");
    std::printf("--- a drag, recorded\n");
    recordFrame(argc > 1 ? argv[1] : "/dev/null");
    return 0;
}
