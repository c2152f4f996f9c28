// The visits to the fields of an object.
#pragma once

#include <cstddef>
#include <limits>
#include <utility>

#include "foundation/nxTXN/Serializer.h"

namespace nxTXN::impl {

/// Learns the restore hook.
class HookPass : public Serializer {
public:
    void beginObject(Object* /*object*/, RestoreHook hook) final {
        if (!hook_) hook_ = hook;
    }
    void field(void* /*field*/, FieldHandlers const* /*handlers*/) override {}
    void endObject(Object* /*object*/) final {}

    [[nodiscard]] RestoreHook restoreHook() const noexcept { return hook_; }

private:
    RestoreHook hook_ = nullptr;
};

/// Learns the restore hook and saves the fields.
class SavingPass final : public HookPass {
public:
    explicit SavingPass(Writer& writer) noexcept : writer_(writer) {}

    void field(void* field, FieldHandlers const* handlers) override { handlers->write(writer_, field); }

private:
    Writer& writer_;
};

/// Puts the fields back, or the first so many of them.
class RestoringPass final : public Serializer {
public:
    explicit RestoringPass(Reader reader, std::size_t fields = std::numeric_limits<std::size_t>::max()) noexcept
        : reader_(reader), fields_(fields) {}

    void beginObject(Object* /*object*/, RestoreHook /*hook*/) override {}
    void field(void* field, FieldHandlers const* handlers) override {
        if (fields_ == 0) return;
        --fields_;
        handlers->read(reader_, field);
    }
    void endObject(Object* /*object*/) override {}

private:
    Reader reader_;
    std::size_t fields_;
};

/// Saves each field and puts it back at once. Calls `keep` after each field that is saved, before the field is lost.
template <class Keep>
class SwappingPass final : public Serializer {
public:
    SwappingPass(Writer& writer, Reader reader, Keep keep) noexcept
        : writer_(writer), reader_(reader), keep_(std::move(keep)) {}

    void beginObject(Object* /*object*/, RestoreHook /*hook*/) override {}
    void field(void* field, FieldHandlers const* handlers) override {
        handlers->write(writer_, field);
        keep_();
        ++saved_;
        handlers->read(reader_, field);
    }
    void endObject(Object* /*object*/) override {}

    /// The fields that are saved, and perhaps changed.
    [[nodiscard]] std::size_t saved() const noexcept { return saved_; }

private:
    Writer& writer_;
    Reader reader_;
    Keep keep_;
    std::size_t saved_ = 0;
};

/// Lets go of what the fields hold.
class ClearingPass final : public Serializer {
public:
    void beginObject(Object* /*object*/, RestoreHook /*hook*/) override {}
    void field(void* field, FieldHandlers const* handlers) override {
        if (handlers->clear) handlers->clear(clear_, field);
    }
    void endObject(Object* /*object*/) override {}

private:
    Clear clear_;
};

}  // namespace nxTXN::impl
