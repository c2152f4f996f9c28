// Runs every script in scripts/ and compares what it prints with the .expected file beside it, addresses aside.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "script/tests/Host.h"

namespace {

namespace fs = std::filesystem;

std::string contents(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// An address begins with 0x or, on Windows, with zeros.
std::string withoutAddresses(std::string text) {
    for (char const* const begin : {"0x", "00000000"}) {
        for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
            std::size_t const end = std::min(text.find_first_not_of("0123456789abcdef", at + 2), text.size());
            text.replace(at, end - at, "ADDRESS");
        }
    }
    return text;
}

TEST(Scripts, PrintWhatIsExpected) {
    for (auto const& entry : fs::directory_iterator(NX_SCRIPTS)) {
        if (entry.path().extension() != ".lua") continue;
        SCOPED_TRACE(entry.path().stem());
        urOS::CapturedOutput const output;
        nxSupport::ScriptHost host;
        EXPECT_EQ(host.run(contents(entry.path())), "ok");
        EXPECT_EQ(withoutAddresses(output.text()), contents(fs::path(entry.path()).replace_extension(".expected")));
    }
}

TEST(Scripts, MayKeepDomainsThatGo) {
    nxSupport::ScriptHost host;
    for (std::string const known : {"nxSupport::Domain", "test::Document"}) {
        auto document = std::make_unique<nxSupport::Host>();
        host.give<nxSupport::Domain*>("document", document.get());
        EXPECT_EQ(host.run("assert(host.document.rootContext == nil)"), "ok");
        document.reset();
        EXPECT_EQ(host.run("return host.document.rootContext"),
                  "test:1: nxSupport::Domain.rootContext: the object must not be a " + known + " that has gone");
        EXPECT_EQ(host.run("nxSupport.Context.exec(host.document, 'Const', print)"),
                  "test:1: nxSupport::Context.exec: argument 1 must not be a " + known + " that has gone");
        nxRFL::ExposeClass<nxSupport::Host>(host.database, "test::Document").addBase<nxSupport::Domain>();
    }
}

}  // namespace
