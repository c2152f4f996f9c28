// Cursors, and the slot that decides between them.
#include <stdexcept>

#include "support/services/CursorSlot.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

using ur::make;

struct CursorTest : OutputTest {
    CursorTest() {
        slot->cursorsChanged.addCallback([this] { log += "changed "; });
        slot->cursorUpdated.addCallback([this](CursorSlot* which) { log += which == slot.get() ? "updated " : "?"; });
        slot->slotDestroyed.addCallback([this](CursorSlot*) { log += "destroyed "; });
    }

    ur::Reference<Cursor> cursor(int const& client, char const* name) {
        return make<Cursor>(&client, name, slot.get());
    }
    [[nodiscard]] std::string winner() const {
        Cursor const* const first = slot->cursorWithPrecedence();
        return first ? first->name().c_str() : "none";
    }
    std::string takeLog() { return std::exchange(log, {}); }

    int view = 0, tool = 0, widget = 0;
    std::string log;
    ur::Reference<CursorSlot> slot = make<CursorSlot>(&view);
};

TEST_F(CursorTest, TheNewestRequestThatIsStillThereHasPrecedence) {
    EXPECT_EQ(winner(), "none");
    EXPECT_EQ(slot->subclientWithPrecedence(), nullptr);
    auto a = cursor(tool, "arrow"), b = cursor(widget, "beam"), c = cursor(tool, "cross");
    EXPECT_EQ(winner(), "cross");
    b.reset();
    c.reset();
    EXPECT_EQ(winner(), "arrow");
    b = cursor(widget, "beam");
    a.reset();
    EXPECT_EQ(winner(), "beam");
    takeLog();
    for (bool const disabled : {true, true, false}) {
        slot->disable(disabled);
        EXPECT_EQ(winner(), disabled ? "none" : "beam");
        EXPECT_EQ(slot->subclientWithPrecedence(), &widget);
    }
    EXPECT_EQ(takeLog(), "changed changed ");
}

TEST_F(CursorTest, EveryChangeIsToldAndLogged) {
    debug.enable(Debug_Cursors);
    auto const image = make<urImage::PixelImage>(4, 4, urImage::PixelFormat::rgba8);
    auto a = make<Cursor>(&tool, "arrow", slot.get(), image, urLinear::Point2(1, 2));
    EXPECT_TRUE(a->hotspot() == urLinear::Point2(1, 2) && a->image() == image);
    a->setImage({}, urLinear::Point2(3, 4));
    EXPECT_TRUE(a->hotspot() == urLinear::Point2(3, 4) && a->image().null());
    slot->disable(true);
    slot->disable(false);
    static_cast<void>(winner());
    slot->remove(&widget, *a);  // does nothing without such a request
    a.reset();
    EXPECT_EQ(takeLog(), "changed updated changed changed changed changed ");
    auto const expected = urString::CString::format(
        "CursorSlot::add arrow for client %p (have 1)\nCursorSlot::update arrow for %p (have 1)\n"
        "CursorSlot::disable 1\nCursorSlot::disable 0\nCursorSlot %p gave precedence to cursor arrow for client %p\n"
        "CursorSlot::remove arrow for %p (have 1)\nCursorSlot::remove arrow for %p (have 0)\n",
        static_cast<void*>(&tool), static_cast<void*>(&tool), static_cast<void*>(slot.get()), static_cast<void*>(&tool),
        static_cast<void*>(&widget), static_cast<void*>(&tool));
    EXPECT_EQ(printed(), expected.view());
}

TEST_F(CursorTest, ACopyIsNoRequest) {
    auto a = cursor(tool, "arrow");
    auto copy = make<Cursor>(*a);
    EXPECT_EQ(slot->cursorWithPrecedence(), a.get());
    takeLog();
    copy.reset();
    EXPECT_EQ(takeLog(), "changed ");
    EXPECT_EQ(winner(), "arrow");
    slot->add(&widget, *a);  // a second request, for another client
    a.reset();
    EXPECT_EQ(winner(), "none") << "no request outlives its cursor";
}

TEST_F(CursorTest, CursorsAndCopiesOutliveTheirSlot) {
    auto const a = cursor(tool, "arrow");
    auto const copy = make<Cursor>(*a);
    slot->slotDestroyed.addCallback([&](CursorSlot* dying) {
        ur::Reference<CursorSlot> const held(dying);  // must not destroy it again
        log += held->cursorWithPrecedence()->name().c_str();
        throw std::runtime_error("handler");
    });
    takeLog();
    slot.reset();
    EXPECT_EQ(takeLog(), "destroyed arrow");
    EXPECT_EQ(printed(), "nxSupport::CursorSlot: handler\n");
    a->setImage({}, {});
}

TEST_F(CursorTest, MayBeAnyPartOfAnObjectOfAnyAlignment) {
    struct Widget {
        virtual ~Widget() = default;
        int state[5] = {};
    };
    struct alignas(64) ToolCursor final : Widget, Cursor {
        explicit ToolCursor(CursorSlot* slot) : Cursor(this, "tool", slot) {}
    };
    ur::Reference<Cursor> const first = make<ToolCursor>(slot.get()), second = make<ToolCursor>(slot.get());
    for (Cursor* const cursor : {first.get(), second.get()})
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(dynamic_cast<ToolCursor*>(cursor)) % 64, 0U);
    EXPECT_EQ(winner(), "tool");
}

TEST_F(CursorTest, ListenersMayHoldACursorBeforeItsMakerDoesOrThrowOrDestroyTheSlot) {
    auto throwing = slot->cursorsChanged.addCallback([&] {
        ur::Reference<Cursor> const held(slot->cursorWithPrecedence());
        throw std::runtime_error("listener");
    });
    EXPECT_THROW(cursor(tool, "never made"), std::runtime_error);
    EXPECT_EQ(slot->subclientWithPrecedence(), nullptr);
    throwing.block();
    slot->cursorsChanged.addCallback([&] { ur::Reference<Cursor> const held(slot->cursorWithPrecedence()); });
    auto a = cursor(tool, "arrow");
    EXPECT_EQ(a->referenceCount(), 1);
    throwing.unblock();
    Cursor* const dying = a.get();
    auto holding = slot->cursorsChanged.addCallback([=] { ur::Reference<Cursor> const held(dying); });
    a.reset();
    holding.disconnect();
    EXPECT_EQ(printed(), "nxSupport::Cursor: listener\n");

    throwing.disconnect();
    slot->cursorsChanged.addCallback([this] { slot.reset(); });
    CursorSlot* const former = slot.get();
    a = make<Cursor>(&tool, "arrow", former);
    EXPECT_TRUE(slot.null());
}

}  // namespace
}  // namespace nxSupport
