// Runs every script in scripts/ and compares its output with the .expected file next to it. In the comparison,
// addresses are removed and the text of a line replaces its number.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "script/tests/Host.h"
#include "support/messaging/ServiceDomain.h"

namespace {

namespace fs = std::filesystem;

std::string contents(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// An address begins with 0x, or with zeros on Windows.
std::string withoutAddresses(std::string text) {
    for (char const* const begin : {"0x", "00000000"}) {
        for (std::size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
            std::size_t const end = std::min(text.find_first_not_of("0123456789abcdef", at + 2), text.size());
            text.replace(at, end - at, "ADDRESS");
        }
    }
    return text;
}

std::string withLinesForNumbers(std::string const& text, std::string const& script) {
    std::vector<std::string> lines;
    std::istringstream source(script);
    for (std::string line; std::getline(source, line);)
        lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
    static std::regex const place("test:(\\d+)");
    std::string result;
    auto rest = text.cbegin();
    for (std::sregex_iterator at(text.begin(), text.end(), place), end; at != end; ++at) {
        result.append(rest, (*at)[0].first).append("test:[" + lines.at(std::stoul((*at)[1]) - 1) + "]");
        rest = (*at)[0].second;
    }
    return result.append(rest, text.cend());
}

TEST(Scripts, PrintWhatIsExpected) {
    for (auto const& entry : fs::directory_iterator(NX_SCRIPTS)) {
        if (entry.path().extension() != ".lua") continue;
        SCOPED_TRACE(entry.path().stem());
        urOS::CapturedOutput const output;
        nxSupport::ScriptHost host;
        std::string const script = contents(entry.path());
        EXPECT_EQ(host.run(script), "ok");
        EXPECT_EQ(withLinesForNumbers(withoutAddresses(output.text()), script),
                  contents(fs::path(entry.path()).replace_extension(".expected")));
    }
}

TEST(StartUp, NeedsABroadcasterAndKeepsATable) {
    nxRFL::Database database;
    nxLC::State bare(database);
    urThread::RunQueue queue;
    nxSupport::ServiceDomain application(queue);
    nxSupport::Registry registry;
    application.offer(&registry);
    nxSupport::Context const context(&application, nxSupport::Context::NoTxn);
    EXPECT_EQ(nxSupport::ci().get<nxSupport::Registry>(), &registry);
    EXPECT_FALSE(nxSupport::initialize(database));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(nxSupport::initialize(bare));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "nxSupport::initialize: there is no broadcaster\n");
    EXPECT_TRUE(bare.run("assert(nx == nil)", "=test") == std::nullopt);
    nxSupport::ScriptHost host;
    EXPECT_EQ(host.run("assert(nx.kept == 1 and nx.encodeJSON)"), "ok");
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
                  "test:1: nxSupport::Context.exec: argument 1 (domain) must not be a " + known + " that has gone");
        nxRFL::ExposeClass<nxSupport::Host>(host.database, "test::Document").addBase<nxSupport::Domain>();
    }
}

}  // namespace
