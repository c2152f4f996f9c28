// Finds keys in dictionaries.
#include <algorithm>
#include <map>
#include <memory>
#include <random>

#include "bench/peers.h"
#include "bench/rows.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"

namespace bench {
namespace {

constexpr int findsPerRun = 200000;

std::vector<std::string> makeKeys(int count) {
    char const* const stems[] = {"width", "colour", "position", "name", "visible"};
    std::vector<std::string> keys;
    for (int i = 0; i < count; ++i) keys.push_back(stems[i % 5] + (i < 5 ? std::string() : std::to_string(i)));
    return keys;
}

/// Calls `find` with the keys in random order, `findsPerRun` times in total.
template <class Key, class Find>
Side finding(char const* name, std::vector<std::string> const& texts, Find find) {
    std::vector<Key> keys;
    std::mt19937 random(3);
    for (int i = 0; i < 4096; ++i) keys.emplace_back(texts[random() % texts.size()].c_str());
    return {name, [keys = std::move(keys), find] {
                return seconds([&] {
                    for (int i = 0; i < findsPerRun; ++i) keep(find(keys[i % keys.size()]));
                });
            }};
}

Sides finders(int count) {
    std::vector<std::string> const texts = makeKeys(count);
    auto const ours = ur::make<nxPLST::Dictionary>();
    auto const boosts = std::make_shared<boost::json::object>();
    auto const nlohmanns = std::make_shared<nlohmann::json>();
    auto const plain = std::make_shared<std::map<std::string, std::shared_ptr<double>>>();
    for (std::string const& text : texts) {
        ours->insert(text.c_str(), ur::make<nxPLST::Double>(1));
        (*boosts)[text] = 1.0;
        (*nlohmanns)[text] = 1.0;
        (*plain)[text] = std::make_shared<double>(1);
    }
    return {finding<urString::CString>("nxPLST", texts, [=](auto const& key) { return ours->find(key).get(); }),
            finding<std::string>(boostName, texts, [=](auto const& key) { return boosts->find(key); }),
            finding<std::string>(nlohmannName, texts, [=](auto const& key) { return nlohmanns->find(key); }),
            finding<std::string>("std::map", texts, [=](auto const& key) { return plain->find(key)->second.get(); })};
}

/// Inserts `count` keys in random order, finds each one, and removes them.
double lifeOfDictionary(std::size_t count) {
    std::vector<urString::CString> keys;
    for (std::string const& text : makeKeys(static_cast<int>(count))) keys.emplace_back(text.c_str());
    std::shuffle(keys.begin(), keys.end(), std::mt19937(3));
    return seconds([&] {
        auto const dictionary = ur::make<nxPLST::Dictionary>();
        for (auto const& key : keys) dictionary->insert(key, ur::make<nxPLST::Double>(1));
        for (auto const& key : keys) keep(dictionary->find(key));
        for (auto const& key : keys) dictionary->dictionary().erase(key);
    });
}

}  // namespace

void addDictionaryRows(Suite& suite) {
    for (int const count : {5, 500}) {
        suite.compare("dictionary-find/" + std::to_string(count) + "-keys", 1.0, [=] { return finders(count); });
    }
    suite.compareGrowth("dictionary-keys", 1000, lifeOfDictionary);
}

}  // namespace bench
