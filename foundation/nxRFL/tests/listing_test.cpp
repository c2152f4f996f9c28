// Tests the three listings of a small database.
#include <gtest/gtest.h>

#include "foundation/nxRFL/ExposeClass.h"
#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxRFL/listing.h"

namespace shop {

struct Base {
    virtual ~Base() = default;
};
struct Item : Base {
    ur::map<urString::CString, double> prices;
};
struct Sizes {};
inline void read(nxRFL::Reader& reader, Sizes& /*sizes*/) { reader.skip(); }

}  // namespace shop

template <>
struct nxRFL::TypeName<shop::Sizes> {
    static constexpr char const* name = "number[3]";
};

namespace {

using nxRFL::ListingFormat;
using shop::Item;
using urString::CString;

struct Listing : testing::Test {
    Listing() {
        nxRFL::ExposeClass<shop::Base>(database, "shop::Base");
        nxRFL::ExposeClass<Item>(database, "shop::Item")
            .addBase<shop::Base>()
            .addProperty(
                "price", [](Item&) { return 1.0; }, [](Item&, double) {})
            .addProperty("code", [](Item&) { return CString("\"\n"); })
            .addMethod("sell", [](Item&, Item*, CString const&) { return true; }, {"other", {"reason", "sale"}})
            .addStaticMethod("make", [](nxRFL::ThrowingFunction<void()>) {})
            .addMethod("weigh", nxRFL::overloads([](Item&) { return 1.0; }, [](Item&, double) { return 2.0; }))
            .addMapIterator(
                "prices", [](Item & item) -> auto& { return item.prices; })
            .setHasHiddenSubclasses();
        nxRFL::ExposeFunction(database, "shop::till")
            .add("a\"b", [] { return 1; })
            .add("c", [](shop::Sizes, nxRFL::Object const&,
                         ur::vector<double> const&) { return ur::map<CString, double>(); })
            .add("d", [] { return std::pair(1, 2); })
            .add("e", nxRFL::overloads([] { return true; }, [](double, CString const&) {}), {"size", {"unit", "m"}});
    }
    /// The listing of `format` after the built-in part of every database.
    [[nodiscard]] CString listed(ListingFormat format, char const* first) const {
        CString const text = nxRFL::listing(database, format);
        return text.substr(text.find(first));
    }

    nxRFL::Database database;
};

TEST_F(Listing, ReadsWell) {
    EXPECT_EQ(listed(ListingFormat::text, "class shop::Base"),
              "class shop::Base\n"
              "class shop::Item: shop::Base\n"
              "    price: number\n"
              "    code: string (read-only)\n"
              "    sell(other: shop::Item, reason?: string): boolean\n"
              "    static make(function)\n"
              "    weigh(): number\n"
              "    weigh(number): number\n"
              "    prices(): iterator of object[2]\n"
              "table shop::till\n"
              "    a\"b(): number\n"
              "    c(number[3], object, array): dictionary\n"
              "    d(): object[2]\n"
              "    e(): boolean\n"
              "    e(size: number, unit?: string)\n");
}

TEST_F(Listing, IsJson) {
    EXPECT_EQ(
        listed(ListingFormat::json, R"({"name":"shop::Item")"),
        R"({"name":"shop::Item","bases":["shop::Base"],"hiddenSubclasses":true,"members":[)"
        R"({"name":"price","kind":"property","signature":["number","shop::Item"],"setter":["void","shop::Item","number"]},)"
        R"({"name":"code","kind":"property","signature":["string","shop::Item"]},)"
        R"({"name":"sell","kind":"method","signature":["boolean","shop::Item","shop::Item","string"],)"
        R"("parameters":[{"name":"other","optional":false},{"name":"reason","optional":true}]},)"
        R"({"name":"make","kind":"static method","signature":["void","function"]},)"
        R"({"name":"weigh","kind":"method","signature":["number","shop::Item"]},)"
        R"({"name":"weigh","kind":"method","signature":["number","shop::Item","number"]},)"
        R"({"name":"prices","kind":"iterator","signature":["nxRFL::IteratorState","shop::Item"],)"
        R"("value":["object[2]","nxRFL::IteratorState"]}]}],)"
        R"("tables":[{"name":"shop::till","functions":[{"name":"a\"b","kind":"function","signature":["number"]},)"
        R"({"name":"c","kind":"function","signature":["dictionary","number[3]","object","array"]},)"
        R"({"name":"d","kind":"function","signature":["object[2]"]},)"
        R"({"name":"e","kind":"function","signature":["boolean"]},)"
        R"({"name":"e","kind":"function","signature":["void","number","string"],)"
        R"("parameters":[{"name":"size","optional":false},{"name":"unit","optional":true}]}]}]})"
        "\n");
}

TEST_F(Listing, DeclaresForEditors) {
    EXPECT_EQ(listed(ListingFormat::luaStubs, "shop = {}"),
              "shop = {}\n"
              "\n---@class shop.Base\n"
              "shop.Base = {}\n"
              "\n---@class shop.Item : shop.Base\n"
              "---@field price number\n"
              "---@field code string read-only\n"
              "shop.Item = {}\n"
              "---@param other shop.Item\n"
              "---@param reason? string\n"
              "---@return boolean\n"
              "function shop.Item:sell(other, reason) end\n"
              "---@param argument1 function\n"
              "function shop.Item.make(argument1) end\n"
              "---@overload fun(self: shop.Item, argument1: number): number\n"
              "---@return number\n"
              "function shop.Item:weigh() end\n"
              "---@return fun(): any, any\n"
              "function shop.Item:prices() end\n"
              "shop.till = {}\n"
              "---@return number\n"
              "function shop.till.a\"b() end\n"
              "---@param argument1 number[]\n"
              "---@param argument2 any\n"
              "---@param argument3 any[]\n"
              "---@return table<string, any>\n"
              "function shop.till.c(argument1, argument2, argument3) end\n"
              "---@return any[]\n"
              "function shop.till.d() end\n"
              "---@overload fun(size: number, unit?: string)\n"
              "---@return boolean\n"
              "function shop.till.e() end\n");
}

}  // namespace
