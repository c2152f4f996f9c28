// The visits to the fields of an object.
#pragma once

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

/// Puts the fields back.
class RestoringPass final : public Serializer {
public:
    explicit RestoringPass(Reader reader) noexcept : reader_(reader) {}

    void beginObject(Object* /*object*/, RestoreHook /*hook*/) override {}
    void field(void* field, FieldHandlers const* handlers) override { handlers->read(reader_, field); }
    void endObject(Object* /*object*/) override {}

private:
    Reader reader_;
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
