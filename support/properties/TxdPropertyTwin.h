// The link between the transacted and the untransacted side of a joined set.
#pragma once

#include "foundation/nxTXN/RefCountedObject.h"

namespace nxSupport {

class TxdPropertyData;
class UnTxdPropertyData;

/// Joins one data object of each kind for as long as both exist. Owned by the transacted one.
///
/// Its ends are not recorded: once the link has ended, undo and redo bring back an object that leads nowhere.
class NX_API TxdPropertyTwin final : public nxTXN::RefCountedObject {
public:
    /// Ends the link that `untxdData` has, if any.
    TxdPropertyTwin(nxTXN::Manager& manager, TxdPropertyData& txdData, UnTxdPropertyData& untxdData);

    [[nodiscard]] TxdPropertyData* txdData() const noexcept { return txdData_; }
    /// Null when the link has ended.
    [[nodiscard]] UnTxdPropertyData* untxdData() const noexcept { return untxdData_; }
    /// Ends the link on both sides; the values stay what they are.
    void sever() noexcept;

protected:
    ~TxdPropertyTwin() override;

    void onTxnExtant() override;

private:
    TxdPropertyData* const txdData_;
    UnTxdPropertyData* untxdData_;
};

}  // namespace nxSupport
