// Tests copies and panels.
#include "support/documents/tests/Scene.h"
#include "support/properties/Prop.h"

namespace nxSupport::test {
namespace {

using testing::HasSubstr;

TEST(Clipboard, KeepsReferencesAmongTheCopied) {
    Scene scene;
    Object& group = scene.add(scene.root(), "Group", "g");
    Object& a = scene.add(group, "Ball", "a");
    Object& b = scene.add(group, "Ball", "b");
    Object& outside = scene.add(scene.root(), "Ball", "outside");
    scene.document.edit("Refer", [&] {
        a.setTarget("next", &b);
        b.setTarget("next", &outside);
        a.set("team", std::vector<std::string>{b.id().asString(), "other", outside.id().asString()});
    });
    std::string text;
    ASSERT_TRUE(nxPLST::writeJson(text, copy({&b, &group, &a, &group})));  // a and b come with their group
    ur::Reference<nxPLST::Item> item;
    ASSERT_TRUE(nxPLST::convertFromJSON(item, text.c_str()));
    std::string const before = scene.text();
    Pasted const pasted = paste(scene.root(), 99, item);
    ASSERT_TRUE(pasted.ok()) << pasted.error.message();
    ASSERT_EQ(pasted.objects.size(), 1U);
    Object& copyOfA = *pasted.objects[0]->find("a");
    Object& copyOfB = *pasted.objects[0]->find("b");
    EXPECT_NE(copyOfB.id(), b.id());
    EXPECT_EQ(copyOfA.target("next"), &copyOfB);
    EXPECT_EQ(copyOfB.target("next"), &outside);
    EXPECT_EQ(copyOfA.get<std::vector<std::string>>("team"),
              (std::vector<std::string>{copyOfB.id().asString(), "other", outside.id().asString()}));
    EXPECT_EQ(a.target("next"), &b) << "the original";
    EXPECT_EQ(scene.document.history().undoName(), "Paste");
    scene.document.edit("Change a copy", [&] { copyOfB.set("name", "c"); });
    EXPECT_EQ(b.name(), "b") << "shares its values only until they change";
    audit(scene.document);
    EXPECT_TRUE(scene.document.undoTo(scene.document.history().undoCount() - 2));
    EXPECT_EQ(scene.text(), before);
    Object* const both[] = {&a, &outside};
    auto const twins = duplicate(both);
    EXPECT_EQ(group.children().indexOf(*twins[0]), 1U);
    EXPECT_EQ(scene.root().children().indexOf(*twins[1]), 2U);
}

TEST(Clipboard, RefusesWhatIsNoCopyOrDoesNotFit) {
    Scene scene;
    Object& ball = scene.add(scene.root(), "Ball", "b");
    auto const copied = copy({&ball});
    std::string const before = scene.text();
    EXPECT_EQ(paste(ball, 0, copied).error.message(), "a Ball may not be in a Ball");
    EXPECT_FALSE(paste(ball, 0, nullptr).ok() || paste(ball, 0, nxPLST::itemOf("text")).ok());
    nxPLST::asArray(copied->find("objects"))->insert((*nxPLST::asArray(copied->find("objects")))[0]);
    EXPECT_THAT(std::string(paste(scene.root(), 0, copied).error.message()),
                HasSubstr("has the identity of another object"));
    EXPECT_EQ(scene.text(), before);
    EXPECT_EQ(scene.document.history().undoCount(), 1U);
}

TEST(Panel, ShowsAndSetsWhatObjectsHaveInCommon) {
    Scene scene;
    Object& a = scene.add(scene.root(), "Ball", "a");
    Object& b = scene.add(scene.root(), "Shape", "b");
    Object& group = scene.add(scene.root(), "Group", "g");
    EXPECT_EQ(panelOf({&a, &group}).rows().size(), 1U) << "the name";
    EXPECT_TRUE(Panel(std::span<Object* const>()).rows().empty());
    Panel const panel = panelOf({&a, &b, &a});
    ASSERT_EQ(panel.rows().size(), 5U);
    EXPECT_TRUE(panel.find("name")->isMixed() && !panel.find("name")->property->value());
    EXPECT_FALSE(panel.find("free"));
    Prop<double> const size(panel.find("size")->property);
    std::string log;
    auto const listening = size.pty()->subscribe([&](auto const& property, PropertyModType stage) {
        if (stage == ModifyPerform) log += textOf(property->value()) + " ";
    });
    Prop<double>(size).set(5);
    EXPECT_EQ(a.get<double>("size") + b.get<double>("size"), 10);
    EXPECT_EQ(scene.document.history().undoName(), "Set Size");
    auto const steps = scene.document.history().undoCount();
    size.pty()->setValue(nxPLST::itemOf(6), ModifyStart);
    for (int i = 7; i < 300; i += 50) size.pty()->setValue(nxPLST::itemOf(i), ModifyPerform);
    size.pty()->setValue(nxPLST::itemOf(20), ModifyEnd);
    EXPECT_EQ(scene.document.history().undoCount(), steps + 1) << "a drag";
    EXPECT_EQ(log, "");
    scene.document.undo();
    EXPECT_EQ(log, "5 ") << "told once, when the whole step is undone";
    scene.document.edit("Other", [&] { b.set("size", 8); });
    EXPECT_TRUE(panel.find("size")->isMixed());
    EXPECT_FALSE(Prop<std::string>(panel.find("size")->property).set("wrong"));
    EXPECT_EQ(b.get<double>("size"), 8);
    EXPECT_EQ(Prop<double>(b.property("size")).get(), 8);
    scene.document.undo();
    EXPECT_EQ(Prop<double>(b.property("size")).get(), 5);
}

TEST(Panel, MayGoWhileItIsUsed) {
    Scene scene;
    Object& a = scene.add(scene.root(), "Ball", "a");
    Object& b = scene.add(scene.root(), "Ball", "b");
    auto panel = std::make_unique<Panel>(std::initializer_list<Object*>{&a, &b});
    auto const size = panel->find("size")->property;
    auto const dropping = scene.document.changedSignal().addCallback([&](Object&, auto const&) { panel.reset(); });
    size->setValue(nxPLST::itemOf(3));
    EXPECT_EQ(b.get<double>("size"), 3) << "what was begun is done";
    size->setValue(nxPLST::itemOf(4));
    EXPECT_EQ(b.get<double>("size"), 3) << "nothing is bound to it any more";
}

}  // namespace
}  // namespace nxSupport::test
