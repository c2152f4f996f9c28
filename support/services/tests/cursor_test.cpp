// Cursors and the slot where they compete.
#include <gmock/gmock.h>

#include <stdexcept>

#include "support/services/CursorSlot.h"
#include "support/services/tests/Output.h"

namespace nxSupport {
namespace {

using ur::make;

struct CursorTest : testing::Test {
    CursorTest() {
        slot->cursorsChanged.addCallback([this] { log += "changed "; });
        slot->cursorUpdated.addCallback([this](CursorSlot* which) { log += which == slot.get() ? "updated " : "?"; });
        slot->slotDestroyed.addCallback([this](CursorSlot*) { log += "destroyed "; });
    }
    ~CursorTest() override { Debug::getInstance().disable(Debug_Cursors); }

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
    EXPECT_EQ(slot->client(), &view);
    EXPECT_EQ(winner(), "none");
    EXPECT_EQ(slot->subclientWithPrecedence(), nullptr);
    auto a = cursor(tool, "arrow"), b = cursor(widget, "beam"), c = cursor(tool, "cross");
    EXPECT_EQ(takeLog(), "changed changed changed ");
    EXPECT_EQ(winner(), "cross");
    b.reset();
    c.reset();
    EXPECT_EQ(winner(), "arrow");
    b = cursor(widget, "beam");
    a.reset();
    EXPECT_EQ(winner(), "beam");
    EXPECT_EQ(slot->subclientWithPrecedence(), &widget);

    takeLog();
    slot->disable(true);
    slot->disable(true);
    EXPECT_EQ(takeLog(), "changed ");
    EXPECT_EQ(winner(), "none");
    EXPECT_EQ(slot->subclientWithPrecedence(), &widget);
    slot->disable(false);
    EXPECT_EQ(winner(), "beam");
}

TEST_F(CursorTest, ImagesChangeWithoutChangingTheOrder) {
    auto const image = make<urImage::PixelImage>(4, 4, urImage::PixelFormat::rgba8);
    auto const a = make<Cursor>(&tool, "a", slot.get(), image, urLinear::Point2(1, 2));
    auto const b = cursor(tool, "b");
    EXPECT_EQ(a->hotspot(), urLinear::Point2(1, 2));
    EXPECT_EQ(b->hotspot(), urLinear::Point2(0, 0));
    EXPECT_TRUE(a->image() == image && b->image().null());
    takeLog();
    a->setImage({}, urLinear::Point2(3, 4));
    EXPECT_EQ(takeLog(), "updated ");
    EXPECT_EQ(a->hotspot(), urLinear::Point2(3, 4));
    EXPECT_TRUE(a->image().null());
    EXPECT_EQ(image->referenceCount(), 1);
    EXPECT_EQ(winner(), "b");
}

TEST_F(CursorTest, EveryChangeIsLogged) {
    Output output;
    Debug::getInstance().enable(Debug_Cursors);
    auto a = cursor(tool, "arrow");
    a->setImage({}, {});
    slot->disable(true);
    slot->disable(false);
    static_cast<void>(winner());
    slot->remove(&widget, *a);  // no such request
    a.reset();
    auto const expected = urString::CString::format(
        "CursorSlot::add arrow for client %p (have 1)\nCursorSlot::update arrow for %p (have 1)\n"
        "CursorSlot::disable 1\nCursorSlot::disable 0\nCursorSlot %p gave precedence to cursor arrow for client %p\n"
        "CursorSlot::remove arrow for %p (have 1)\nCursorSlot::remove arrow for %p (have 0)\n",
        static_cast<void*>(&tool), static_cast<void*>(&tool), static_cast<void*>(slot.get()), static_cast<void*>(&tool),
        static_cast<void*>(&widget), static_cast<void*>(&tool));
    EXPECT_EQ(output.take(), expected.view());
    EXPECT_EQ(takeLog(), "changed updated changed changed changed changed ");
}

TEST_F(CursorTest, ACopyIsNoRequest) {
    auto a = cursor(tool, "arrow");
    auto copy = make<Cursor>(*a);
    EXPECT_EQ(slot->cursorWithPrecedence(), a.get());
    takeLog();
    copy.reset();
    EXPECT_EQ(takeLog(), "changed ");
    EXPECT_EQ(winner(), "arrow");
    slot->add(&widget, *a);  // once more, for someone else
    a.reset();
    EXPECT_EQ(winner(), "none") << "no request outlives its cursor";
}

TEST_F(CursorTest, CursorsAndCopiesOutliveTheirSlot) {
    auto const a = cursor(tool, "arrow");
    auto const copy = make<Cursor>(*a);
    slot->slotDestroyed.addCallback([&](CursorSlot* dying) {
        ur::Reference<CursorSlot> const held(dying);  // does not end it again
        log += held->cursorWithPrecedence()->name().c_str();
        throw std::runtime_error("handler");
    });
    takeLog();
    Output output;
    slot.reset();
    EXPECT_EQ(takeLog(), "destroyed arrow");
    EXPECT_EQ(output.take(), "nxSupport::CursorSlot: handler\n");
    a->setImage({}, {});
}

TEST_F(CursorTest, ListenersMayHoldACursorBeforeItsMakerDoes) {
    slot->cursorsChanged.addCallback([&] {
        ur::Reference<Cursor> const held(slot->cursorWithPrecedence());
        log += held ? held->name().c_str() : "none";
    });
    EXPECT_EQ(cursor(tool, "arrow")->referenceCount(), 1);
    EXPECT_EQ(log, "changed arrowchanged none");
}

TEST_F(CursorTest, ListenersMayThrowOrDestroyTheSlot) {
    auto throwing = slot->cursorsChanged.addCallback([] { throw std::runtime_error("listener"); });
    EXPECT_THROW(cursor(tool, "never made"), std::runtime_error);
    EXPECT_EQ(slot->subclientWithPrecedence(), nullptr);
    throwing.block();
    auto a = cursor(tool, "arrow");
    throwing.unblock();
    Output output;
    a.reset();
    EXPECT_EQ(output.take(), "nxSupport::Cursor: listener\n");

    throwing.disconnect();
    slot->cursorsChanged.addCallback([this] { slot.reset(); });
    CursorSlot* const former = slot.get();
    a = make<Cursor>(&tool, "arrow", former);
    EXPECT_TRUE(slot.null());
}

}  // namespace
}  // namespace nxSupport
