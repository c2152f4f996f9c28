// Scans by yajl, which defines the accepted JSON.
#pragma once

#include <yajl/yajl_parse.h>

#include <cstddef>
#include <exception>
#include <string_view>

#include "plst/impl/json/FastJsonScan.h"

namespace nxPLST::impl {

/// Provides memory to yajl; the destructor frees all of it, whatever state yajl is in.
///
/// Yajl does not check allocation results. So lack of memory throws through yajl, whose objects must not be used
/// afterwards, not even to free them.
class YajlMemory {
public:
    YajlMemory() noexcept { ring_.next = ring_.previous = &ring_; }
    YajlMemory(YajlMemory const&) = delete;
    YajlMemory& operator=(YajlMemory const&) = delete;
    ~YajlMemory();

    /// For `yajl_alloc`, which copies them; the parser must not outlive this object.
    [[nodiscard]] yajl_alloc_funcs* functions() noexcept { return &functions_; }

private:
    /// Precedes each block.
    struct alignas(std::max_align_t) Link {
        Link* next;
        Link* previous;
    };

    static void* allocate(void* memory, std::size_t bytes);
    static void* reallocate(void* memory, void* block, std::size_t bytes);
    static void deallocate(void* memory, void* block) noexcept;
    void enter(Link* link) noexcept;

    yajl_alloc_funcs functions_ = {&allocate, &reallocate, &deallocate, this};
    Link ring_;
};

/// Passes yajl's reading of a text to a sink, as FastJsonScan does; comments allowed. A scalar may be alone; it then
/// counts as inside an array. Before each call, a sink with `setEnd(std::size_t)` is given the position after the
/// token.
template <class Sink>
class YajlScan {
public:
    explicit YajlScan(Sink& sink) : sink_(sink) {}

    /// False when yajl refuses the text. Call it once.
    bool run(std::string_view text) {
        YajlMemory memory;
        parser_ = yajl_alloc(&callbacks, memory.functions(), this);
        yajl_config(parser_, yajl_allow_comments, 1);
        auto const* const bytes = reinterpret_cast<unsigned char const*>(text.data());
        bool ok = yajl_parse(parser_, bytes, text.size()) == yajl_status_ok;
        parsed_ = text.size();
        ok = ok && yajl_complete_parse(parser_) == yajl_status_ok;
        if (failure_) std::rethrow_exception(failure_);
        return ok;
    }

private:
    static ScannedText textOf(unsigned char const* text, std::size_t length) {
        return {{reinterpret_cast<char const*>(text), length}, length};
    }

    /// False when it is out of range. Yajl's own conversions follow the locale.
    bool tellNumber(std::string_view text) {
        double value = 0;
        char const* const end = text.data() + text.size();
        bool const isWhole = text.find_first_of(".eE") == std::string_view::npos;
        bool const isRead =
            isWhole ? readInteger(text.data(), end, value) : readReal(text.data(), end, value) != nullptr;
        if (isRead) inCurrent([&]<Inside inside>() { sink_.template number<inside>(value); });
        return isRead;
    }

    /// Calls `tell` for the kind of container that encloses the next value.
    template <class Tell>
    void inCurrent(Tell tell) {
        if (sink_.isOpen() && sink_.current() == Inside::dictionary) {
            tell.template operator()<Inside::dictionary>();
        } else {
            tell.template operator()<Inside::array>();
        }
    }

    /// Runs `tell` for yajl; false means that the text must be refused. Returning 0 stops yajl. An exception waits
    /// until yajl has stopped.
    template <class Tell>
    static int guard(void* context, Tell tell) noexcept {
        auto& scan = *static_cast<YajlScan*>(context);
        try {
            if constexpr (requires { scan.sink_.setEnd(std::size_t()); }) {
                scan.sink_.setEnd(scan.parsed_ + yajl_get_bytes_consumed(scan.parser_));
            }
            return tell(scan) ? 1 : 0;
        } catch (...) {
            scan.failure_ = std::current_exception();
            return 0;
        }
    }

    template <Inside inside>
    static bool open(YajlScan& scan) {
        scan.sink_.open(inside);
        return true;
    }
    static bool close(YajlScan& scan) {
        scan.sink_.close();
        return true;
    }

    static constexpr yajl_callbacks callbacks = {
        .yajl_null =
            [](void* context) {
                return guard(context, [](YajlScan& scan) {
                    scan.inCurrent([&]<Inside inside>() { scan.sink_.template null<inside>(); });
                    return true;
                });
            },
        .yajl_boolean =
            [](void* context, int value) {
                return guard(context, [&](YajlScan& scan) {
                    scan.inCurrent([&]<Inside inside>() { scan.sink_.template boolean<inside>(value != 0); });
                    return true;
                });
            },
        .yajl_integer = nullptr,
        .yajl_double = nullptr,
        .yajl_number =
            [](void* context, char const* text, std::size_t length) {
                return guard(context, [&](YajlScan& scan) { return scan.tellNumber({text, length}); });
            },
        .yajl_string =
            [](void* context, unsigned char const* text, std::size_t length) {
                return guard(context, [&](YajlScan& scan) {
                    scan.inCurrent([&]<Inside inside>() { scan.sink_.template text<inside>(textOf(text, length)); });
                    return true;
                });
            },
        .yajl_start_map = [](void* context) { return guard(context, open<Inside::dictionary>); },
        .yajl_map_key =
            [](void* context, unsigned char const* text, std::size_t length) {
                return guard(context, [&](YajlScan& scan) {
                    scan.sink_.key(textOf(text, length));
                    return true;
                });
            },
        .yajl_end_map = [](void* context) { return guard(context, close); },
        .yajl_start_array = [](void* context) { return guard(context, open<Inside::array>); },
        .yajl_end_array = [](void* context) { return guard(context, close); },
    };

    Sink& sink_;
    yajl_handle parser_ = nullptr;
    std::size_t parsed_ = 0;  ///< bytes that yajl had before those that it is parsing
    std::exception_ptr failure_;
};

}  // namespace nxPLST::impl
