// Serializers that visit the fields of an object.
#pragma once

#include <cstddef>
#include <limits>
#include <utility>

#include "foundation/nxTXN/Serializer.h"

namespace nxTXN::impl {

/// Finds the restore hook.
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

/// Finds the restore hook and saves the fields.
class SavingPass final : public HookPass {
public:
    explicit SavingPass(Writer& writer) noexcept : writer_(writer) {}

    void field(void* field, FieldHandlers const* handlers) override { handlers->write(writer_, field); }

private:
    Writer& writer_;
};

/// Restores all fields, or a number of the first ones.
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

/// Saves each field and restores it at once. Calls `keep` after saving a field and before the field is overwritten.
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

    /// The number of fields that are saved, and perhaps changed.
    [[nodiscard]] std::size_t saved() const noexcept { return saved_; }

private:
    Writer& writer_;
    Reader reader_;
    Keep keep_;
    std::size_t saved_ = 0;
};

/// Releases what the fields hold.
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
