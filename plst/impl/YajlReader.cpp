// Building items from yajl's events.
#include "plst/impl/YajlReader.h"

#include <yajl/yajl_parse.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/JsonNumberReader.h"

namespace nxPLST::impl {
namespace {

/// An open container, or the whole text, whose value is the result.
struct JsonBuildFrame {
    ur::Reference<Item> value;
    urString::CString key;
    ur::Reference<Dictionary> dictionary;
    ur::Reference<Array> array;
};

class JsonBuilder {
public:
    JsonBuilder() : frames_(1) {}

    [[nodiscard]] ur::Reference<Item> const& result() const { return frames_.front().value; }

    bool add(ur::Reference<Item> item) {
        JsonBuildFrame& top = frames_.back();
        if (top.array) {
            top.array->insert(std::move(item));
        } else if (top.dictionary) {
            top.dictionary->insert(top.key, std::move(item));
            top.key.clear();
        } else {
            top.value = std::move(item);
        }
        return true;
    }

    /// False when it is out of range.
    bool addNumber(std::string_view text) {
        double value = 0;
        char const* const end = text.data() + text.size();
        bool const whole = text.find_first_of(".eE") == std::string_view::npos;
        bool const read = whole ? readInteger(text.data(), end, value) : readReal(text.data(), end, value) != nullptr;
        return read && add(ur::make<Double>(value));
    }

    bool openDictionary() {
        frames_.emplace_back().dictionary = ur::make<Dictionary>();
        return true;
    }
    bool openArray() {
        frames_.emplace_back().array = ur::make<Array>();
        return true;
    }
    bool setKey(std::string_view key) {
        frames_.back().key.assign(key);
        return true;
    }
    bool close() {
        JsonBuildFrame const top = std::move(frames_.back());
        frames_.pop_back();
        return top.array ? add(top.array) : add(top.dictionary);
    }

    /// An exception must not leave through yajl, which is C: it waits here.
    std::exception_ptr failure;

private:
    std::vector<JsonBuildFrame> frames_;
};

/// Has the builder do something, for yajl; 0 makes yajl stop.
template <class Work>
int tell(void* builder, Work work) noexcept {
    auto& target = *static_cast<JsonBuilder*>(builder);
    try {
        return work(target);
    } catch (...) {
        target.failure = std::current_exception();
        return 0;
    }
}

std::string_view view(unsigned char const* text, std::size_t length) {
    return {reinterpret_cast<char const*>(text), length};
}

constexpr yajl_callbacks callbacks = {
    .yajl_null = [](void*) { return 1; },
    .yajl_boolean =
        [](void* to, int value) {
            return tell(to, [&](JsonBuilder& builder) { return builder.add(ur::make<Bool>(value != 0)); });
        },
    .yajl_integer = nullptr,
    .yajl_double = nullptr,
    // Its own conversions follow the locale.
    .yajl_number =
        [](void* to, char const* text, std::size_t length) {
            return tell(to, [&](JsonBuilder& builder) { return builder.addNumber({text, length}); });
        },
    .yajl_string =
        [](void* to, unsigned char const* text, std::size_t length) {
            return tell(to, [&](JsonBuilder& builder) {
                return builder.add(ur::make<String>(urString::CString(view(text, length))));
            });
        },
    .yajl_start_map = [](void* to) { return tell(to, [](JsonBuilder& builder) { return builder.openDictionary(); }); },
    .yajl_map_key =
        [](void* to, unsigned char const* text, std::size_t length) {
            return tell(to, [&](JsonBuilder& builder) { return builder.setKey(view(text, length)); });
        },
    .yajl_end_map = [](void* to) { return tell(to, [](JsonBuilder& builder) { return builder.close(); }); },
    .yajl_start_array = [](void* to) { return tell(to, [](JsonBuilder& builder) { return builder.openArray(); }); },
    .yajl_end_array = [](void* to) { return tell(to, [](JsonBuilder& builder) { return builder.close(); }); },
};

struct FreeParser {
    void operator()(yajl_handle parser) const { yajl_free(parser); }
};

}  // namespace

bool readWithYajl(ur::Reference<Item>& out, char const* text, std::size_t length) {
    JsonBuilder builder;
    std::unique_ptr<std::remove_pointer_t<yajl_handle>, FreeParser> const parser(
        yajl_alloc(&callbacks, nullptr, &builder));
    if (!parser) throw std::bad_alloc();
    yajl_config(parser.get(), yajl_allow_comments, 1);
    bool const ok = yajl_parse(parser.get(), reinterpret_cast<unsigned char const*>(text), length) == yajl_status_ok &&
                    yajl_complete_parse(parser.get()) == yajl_status_ok;
    if (builder.failure) std::rethrow_exception(builder.failure);
    if (ok) out = builder.result();
    return ok;
}

}  // namespace nxPLST::impl
