// A kind of packet and the code that reads it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "foundation/ur/Export.h"

class ioClientReadContext;

/// Names a packet type and reads the payload of its packets. A registry owns it.
class NX_API ioPacketType {
public:
    explicit ioPacketType(std::string_view name) : name_(name) {}
    ioPacketType(ioPacketType const&) = delete;
    ioPacketType& operator=(ioPacketType const&) = delete;
    virtual ~ioPacketType();

    /// Called inside a packet of this type. Values that it does not read are skipped.
    virtual void read(ioClientReadContext& client) = 0;
    /// True when nothing refers to the memory of an object after its packet has ended: the context then forgets the
    /// object. False by default.
    [[nodiscard]] virtual bool memoryNotReferenced() const;
    /// Called after each `read`. True when the object read still waits for a later object: the file is then refused,
    /// because references only lead backwards. False by default.
    [[nodiscard]] virtual bool hasUnresolvedPointer() const;

    [[nodiscard]] std::string const& name() const noexcept { return name_; }

private:
    std::string name_;
};

/// A function that reads the payload of one packet.
class NX_API ioReadCallback {
public:
    virtual ~ioReadCallback();
    virtual void read(ioClientReadContext& client) = 0;
};

/// Calls a member function of an object. The object outlives the registry.
template <class T>
class ioMemberReadCallback final : public ioReadCallback {
public:
    using Member = void (T::*)();

    ioMemberReadCallback(T& object, Member member) noexcept : object_(&object), member_(member) {}

    void read(ioClientReadContext& /*client*/) override { (object_->*member_)(); }

private:
    T* object_;
    Member member_;
};

/// A packet type that reads through a callback.
class NX_API ioSimplePacketType final : public ioPacketType {
public:
    ioSimplePacketType(std::string_view name, std::unique_ptr<ioReadCallback> callback);
    ~ioSimplePacketType() override;

    void read(ioClientReadContext& client) override;

private:
    std::unique_ptr<ioReadCallback> callback_;
};
