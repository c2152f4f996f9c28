// Tests writing and reading items, and the messages about items of the wrong kind.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>

#include "foundation/nxRFL/Callback.h"
#include "foundation/nxRFL/values.h"

namespace {

using namespace nxRFL;
using urString::CString;

std::string messageOf(std::function<void()> const& action) {
    try {
        action();
    } catch (Exception const& error) {
        return error.what();
    }
    return "no error";
}

struct Counting {
    void ref() const { ++count; }
    void unref() const { --count; }
    mutable int count = 0;
};

template <class Write>
Stack written(Write write) {
    Stack stack;
    {
        Writer writer(stack);
        write(writer);
    }
    return stack;
}

// Writes {min = {1, 2}, name = "x"}.
void writeSample(Writer& writer) {
    writer.startDictionary(2);
    writer.writeText("min");
    writer.startArray(2);
    writer.writeInt(1);
    writer.writeFloat(2);
    writer.endArray();
    writer.writeText("name");
    writer.writeText(CString("x\0y", 3));
    writer.endDictionary();
}

void expectSample(Reader& reader) {
    EXPECT_EQ(reader.startDictionary(), 2U);
    EXPECT_EQ(reader.readText(), "min");
    EXPECT_EQ(reader.startArray(), 2U);
    EXPECT_EQ(reader.readInt(), 1);
    EXPECT_EQ(reader.readDouble(), 2);
    EXPECT_EQ(reader.kind(), Kind::none);
    reader.endArray();
    EXPECT_EQ(reader.readText(), "name");
    EXPECT_EQ(reader.readText(), CString("x\0y", 3));
    reader.endDictionary();
}

TEST(Stack, GivesBackWhatWasWritten) {
    Stack stack = written([](Writer& writer) {
        writer.writeNull();
        writeSample(writer);
        writer.writeBool(true);
        writer.writeUnsigned(4000000000U);
        writer.writeUnsigned(0);
        nxRFL::write(writer, ur::map<CString, int>{{"a", 1}, {"b", 2}});
    });
    EXPECT_EQ(stack.size(), 6U);
    Stack const moved(std::move(stack));
    EXPECT_EQ(stack.size(), 0U);
    EXPECT_EQ(moved.size(), 6U);
    Reader reader(moved);
    EXPECT_TRUE(reader.isNull());
    reader.readNull();
    EXPECT_EQ(reader.kind(), Kind::dictionary);
    expectSample(reader);
    EXPECT_EQ(reader.kind(), Kind::boolean);
    EXPECT_TRUE(reader.readBool());
    EXPECT_EQ(reader.readUnsigned(), 4000000000U);
    EXPECT_EQ(reader.readUnsigned(), 0U);
    EXPECT_EQ(reader.startDictionary(), 2U);
    EXPECT_EQ(reader.readText(), "a");
    EXPECT_EQ(reader.readInt(), 1);
    reader.endDictionary();
    EXPECT_EQ(reader.kind(), Kind::none);
    stack = moved;
    stack.clear();
    EXPECT_TRUE(stack.empty());
    EXPECT_EQ(Reader(stack).kind(), Kind::none);
}

TEST(Stack, SkipsWhatIsLeftUnread) {
    Stack const stack = written([](Writer& writer) {
        writer.startArray(2);
        writeSample(writer);
        writer.writeInt(5);
        writer.endArray();
        writer.writeInt(6);
    });
    Reader reader(stack);
    reader.startArray();
    reader.startDictionary();
    reader.endDictionary();
    EXPECT_EQ(reader.readInt(), 5);
    reader.endArray();
    EXPECT_EQ(reader.readInt(), 6);
    Reader skipping(stack);
    skipping.skip();
    EXPECT_EQ(skipping.readInt(), 6);
    skipping.skip();  // at the end
    EXPECT_EQ(skipping.kind(), Kind::none);
    Stack none;
    Reader last(stack);
    last.skip();
    last.readItem(none);
    EXPECT_EQ(Reader(none).readInt(), 6);
    EXPECT_EQ(messageOf([&] { skipping.readItem(none); }), "item 3 must be a value, but is missing");
}

TEST(Stack, CopiesSingleItemsWithAllThatTheyHold) {
    Stack const stack = written([](Writer& writer) {
        writer.startArray(1);
        writeSample(writer);
        writer.endArray();
    });
    Reader reader(stack);
    reader.startArray();
    Stack item;
    reader.readItem(item);
    EXPECT_EQ(reader.kind(), Kind::none);

    Stack copies;
    Writer writer(copies);
    writer.startArray(2);
    writer.writeItem(item);
    writer.writeItem(Stack());
    writer.endArray();
    writer.writeItem(copies);  // copies itself
    EXPECT_EQ(copies.size(), 2U);
    Reader copied(copies);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(copied.startArray(), 2U);
        expectSample(copied);
        copied.readNull();
        copied.endArray();
    }
}

TEST(Stack, HoldsAnyDepth) {
    constexpr int depth = 300000;
    Stack const deep = written([](Writer& writer) {
        for (int i = 0; i < depth; ++i) writer.startArray(1);
    });
    Stack copy;
    Reader(deep).readItem(copy);
    Reader reader(copy);
    int levels = 0;
    while (reader.kind() == Kind::array) levels += reader.startArray() <= 1 ? 1 : 2;
    EXPECT_EQ(levels, depth);
    std::string const message = messageOf([&] { reader.readInt(); });
    EXPECT_EQ(message.size(), std::string_view("item 1 must be number, but is missing").size() + 3 * depth);
    for (int i = 0; i < depth; ++i) reader.endArray();
    EXPECT_EQ(reader.kind(), Kind::none);
}

TEST(Stack, StaysWellFormedWhateverIsWritten) {
    Stack stack;
    {
        Writer writer(stack);
        EXPECT_EQ(messageOf([&] { writer.endArray(); }), "no such container is open");
        writer.startDictionary(7);
        EXPECT_EQ(messageOf([&] { writer.writeInt(1); }), "the key of a dictionary must be a string");
        EXPECT_EQ(messageOf([&] { writer.endArray(); }), "no such container is open");
        writer.writeText("a");
        writer.startArray(100);
        writer.endArray();
        writer.writeText("b");
        EXPECT_EQ(messageOf([&] { writer.endDictionary(); }), "the last entry of a dictionary has no value");
    }
    Writer(stack).writeInt(2);
    {
        Writer writer(stack);
        writer.startArray(1);
        writer.writeText("of an array, not of a dictionary");
        writer.startDictionary(1);
        writer.writeText("a key whose value an exception has kept from coming");
    }
    Reader reader(stack);
    EXPECT_EQ(reader.startDictionary(), 1U);
    reader.endDictionary();
    EXPECT_EQ(reader.readInt(), 2);
    EXPECT_EQ(reader.startArray(), 2U);
    reader.readText();
    EXPECT_EQ(reader.startDictionary(), 0U);
    EXPECT_EQ(reader.kind(), Kind::none);
}

TEST(Reader, TakesNullForAnObjectOrAFunctionAndGoesOn) {
    Stack const stack = written([](Writer& writer) {
        for (int i = 0; i < 3; ++i) writer.writeNull();
        writer.writeInt(1);
    });
    Reader reader(stack);
    EXPECT_EQ(reader.readObjectOrNull(ur::TypeInfo::of<Stack>()), nullptr);
    EXPECT_TRUE(reader.readAnyObject().null());
    EXPECT_TRUE(reader.readFunction().null());
    EXPECT_EQ(messageOf([&] { reader.readAnyObject(); }), "item 4 must be object, but is number");
    EXPECT_EQ(reader.readInt(), 1);
}

TEST(Callback, GivesNoResultsOfAFunctionThatFails) {
    struct Failing : Function {
        using Function::Function;
        void onCall(Stack const& arguments, Stack& results) const override {
            Writer(results).writeInt(1);
            if (!arguments.empty()) throw Exception("no arguments are taken");
        }
    };
    Database database;
    std::string reported;
    database.setErrorHandler([&](Exception const& error) { reported += error.what(); });
    Callback const callback(ur::make<Failing>(&database, false));
    Stack results;
    EXPECT_TRUE(callback.call({}, results));
    EXPECT_EQ(results.size(), 1U);
    Stack const one = written([](Writer& writer) { writer.writeInt(1); });
    results.clear();
    EXPECT_FALSE(callback.call(one, results));
    EXPECT_TRUE(results.empty());
    EXPECT_EQ(reported, "no arguments are taken");
    EXPECT_FALSE(Callback(nullptr).call(one, results));
}

TEST(Database, DestroysAGivenStackWithItsLastHolder) {
    Database database;
    Class const& stacks = *database.getClass("nxRFL::Stack");
    Counting object;
    Object const counted(&object, impl::defaultTypeUtil<Counting>());
    Stack lent = written([&](Writer& writer) { writer.writeObject(counted); });
    { Object const handle(&lent, stacks); }
    EXPECT_EQ(object.count, 2);
    {
        Object const copy = [&] {
            Object const given = Object::give(new Stack(lent), stacks);
            return Object(given);
        }();
        EXPECT_EQ(object.count, 3);
    }
    EXPECT_EQ(object.count, 2);
}

TEST(Stack, TakesAnEmptyContainerForEitherKind) {
    Stack const stack = written([](Writer& writer) { writer.startArray(0); });
    EXPECT_EQ(Reader(stack).startDictionary(), 0U);
    EXPECT_EQ(Reader(stack).startArray(), 0U);
}

TEST(Reader, ReadsWholeNumbersOnlyWithinTheirRange) {
    // One letter for each type that accepts the number: int, unsigned, byte, long.
    std::pair<double, std::string> const rows[] = {{0, "iubl"},
                                                   {-1, "il"},
                                                   {2147483647, "iul"},
                                                   {2147483648.0, "ul"},
                                                   {-2147483648.0, "il"},
                                                   {4294967296.0, "l"},
                                                   {0.5, ""},
                                                   {1e300, ""},
                                                   {std::numeric_limits<double>::quiet_NaN(), ""}};
    for (auto const& row : rows) {
        Stack stack;
        Writer(stack).writeDouble(row.first);
        auto const accepts = [&]<class T>(T value) {
            bool const read = messageOf([&] {
                                  Reader reader(stack);
                                  nxRFL::read(reader, value);
                              }) == "no error";
            EXPECT_EQ(static_cast<double>(value), read ? row.first : 0.0);
            return read;
        };
        std::string takers = accepts(int()) ? "i" : "";
        if (accepts(unsigned())) takers += 'u';
        if (accepts(static_cast<unsigned char>(0))) takers += 'b';
        if (accepts(std::int64_t())) takers += 'l';
        EXPECT_EQ(takers, row.second) << row.first;
    }
}

TEST(Reader, SaysWhereWhichItemIsOfTheWrongKind) {
    Stack const stack = written([](Writer& writer) {
        writer.writeInt(1);
        writer.startArray(2);
        writer.writeBool(true);
        writeSample(writer);
        writer.endArray();
    });
    Reader reader(stack);
    EXPECT_EQ(messageOf([&] { reader.readText(); }), "item 1 must be string, but is number");
    reader.readInt();
    EXPECT_EQ(messageOf([&] { reader.startDictionary(); }), "item 2 must be dictionary, but is array");
    reader.startArray();
    EXPECT_EQ(messageOf([&] { reader.readNull(); }), "item 2[1] must be null, but is boolean");
    reader.readBool();
    reader.startDictionary();
    reader.readText();
    reader.startArray();
    reader.readDouble();
    EXPECT_EQ(messageOf([&] { reader.readFunction(); }), "item 2[2].min[2] must be function, but is number");
    EXPECT_EQ(messageOf([&] { reader.readObject(ur::TypeInfo::of<Stack>()); }),
              "item 2[2].min[2] must be nxRFL::Stack, but is number");
    reader.readDouble();
    EXPECT_EQ(messageOf([&] { reader.readDouble(); }), "item 2[2].min[3] must be number, but is missing");
}

TEST(Reader, ReadsDictionariesByKeyHandlers) {
    auto const readSample = [](Stack const& stack, unsigned count) {
        int sum = 0;
        Reader reader(stack);
        readDictionary(reader, "sample", count, [&](CString const& key) {
            if (key == "min") {
                reader.startArray();
                sum += reader.readInt();
                reader.endArray();
                return true;
            }
            if (key != "name") return false;
            sum += static_cast<int>(reader.readText().size());
            return true;
        });
        EXPECT_EQ(reader.kind(), Kind::none);
        return sum;
    };
    Stack const stack = written(writeSample);
    EXPECT_EQ(readSample(stack, 2), 1 + 3);
    EXPECT_EQ(messageOf([&] { readSample(stack, 1); }), "item 1 is no sample: \"name\" is one key too many");

    Stack const other = written([](Writer& writer) {
        writer.startDictionary(1);
        writer.writeText("max");
        writer.writeNull();
    });
    EXPECT_EQ(messageOf([&] { readSample(other, 2); }), "item 1 is no sample: \"max\" is one key too many");
    EXPECT_EQ(readSample(written([](Writer& writer) { writer.startArray(0); }), 2), 0);
}

TEST(Stack, IsChargedWithItsCopies) {
    auto const account = std::make_shared<ur::Account>();
    CString const page(100'000, 'x');
    Stack stack;
    stack.chargeTo(account);
    {
        Writer writer(stack);
        writer.startArray(0);
        for (int i = 0; i < 3; ++i) writer.writeText(page);
        writer.endArray();
    }
    std::size_t const one = account->native();
    EXPECT_GE(one, 300'000U);
    Stack copy = stack;
    Stack item;
    Reader(stack).readItem(item);
    EXPECT_GE(account->native(), 3 * 300'000U);
    account->setBounds({.allowed = account->used() + 200'000});
    EXPECT_THROW(Writer(copy).writeItem(stack), ur::BudgetSpent);
    EXPECT_EQ(copy.size(), 1U);
    EXPECT_THROW(Stack{stack}, ur::BudgetSpent);
    copy.clear();
    item = std::move(stack);
    EXPECT_GE(account->native(), one);
    item = {};
    EXPECT_LT(account->native(), 1000U);
    for (int i = 0; i < 2000; ++i) Writer(copy).writeNull();
    EXPECT_GE(account->native(), 2000 * sizeof(double));
    copy.clear();
    EXPECT_LT(account->native(), 1000U);  // does not count the storage of 2000 values
}

TEST(Stack, ChainsOfStacksThatHoldEachOtherAreDestroyedWithoutRecursion) {
    nxRFL::Database database;
    nxRFL::Class const& stacks = *database.getClass("nxRFL::Stack");
    auto const account = std::make_shared<ur::Account>();
    {
        Stack both;  // two stacks that are destroyed together
        for (int i = 0; i < 2; ++i) {
            auto held = std::make_unique<Stack>();
            held->chargeTo(account);
            Writer(both).writeObject(nxRFL::Object::give(held.release(), stacks));
        }
        EXPECT_EQ(account->native(), 2 * sizeof(Stack));
    }
    EXPECT_EQ(account->native(), 0U);
    nxRFL::Object last;
    for (int i = 0; i < 200'000; ++i) {
        auto stack = std::make_unique<Stack>();
        stack->chargeTo(account);
        Writer(*stack).writeObject(last);
        Writer(*stack).writeObject(last);
        Writer(*stack).writeText("x");
        last = nxRFL::Object::give(stack.release(), stacks);
    }
    EXPECT_GT(account->native(), 200'000 * sizeof(Stack));
    nxRFL::Object kept = last;
    last = {};
    EXPECT_GT(account->native(), 0U);
    kept = {};
    EXPECT_EQ(account->native(), 0U);
}

}  // namespace
