// Runs every script in scripts/ and compares what it prints with the .expected file beside it, addresses aside.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "foundation/urOS/tests/CapturedOutput.h"
#include "script/tests/Host.h"

namespace {

namespace fs = std::filesystem;

std::string contents(fs::path const& path) {
    std::ifstream const file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string withoutAddresses(std::string text) {
    for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at)) {
        std::size_t const end = std::min(text.find_first_not_of("0123456789abcdef", at + 2), text.size());
        text.replace(at, end - at, "ADDRESS");
    }
    return text;
}

std::vector<std::string> scriptNames() {
    std::vector<std::string> names;
    for (auto const& entry : fs::directory_iterator(NX_SCRIPTS)) {
        if (entry.path().extension() == ".lua") names.push_back(entry.path().stem());
    }
    std::ranges::sort(names);
    return names;
}

class Script : public ::testing::TestWithParam<std::string> {};

TEST_P(Script, PrintsWhatIsExpected) {
    fs::path const path = fs::path(NX_SCRIPTS) / (GetParam() + ".lua");
    urOS::CapturedOutput const output;
    nxSupport::Host host;
    EXPECT_EQ(host.run(contents(path)), "ok");
    fs::path const expected = fs::path(path).replace_extension(".expected");
    EXPECT_EQ(withoutAddresses(output.text()), contents(expected));
}

INSTANTIATE_TEST_SUITE_P(All, Script, ::testing::ValuesIn(scriptNames()),
                         [](auto const& script) { return script.param; });

}  // namespace
