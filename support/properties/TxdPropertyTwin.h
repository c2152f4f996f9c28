// The link between the transacted and the untransacted side of a joined set.
#pragma once

#include "foundation/nxTXN/RefCountedObject.h"

namespace nxSupport {

class TxdPropertyData;
class UnTxdPropertyData;

/// Links one data object of each kind for as long as both exist. Owned by the transacted one.
///
/// Its pointers are not recorded: if undo or redo restores a link that has ended, it stays ended.
class NX_API TxdPropertyTwin final : public nxTXN::RefCountedObject {
public:
    /// Ends the link of `untxdData`, if any.
    TxdPropertyTwin(nxTXN::Manager& manager, TxdPropertyData& txdData, UnTxdPropertyData& untxdData);

    [[nodiscard]] TxdPropertyData* txdData() const noexcept { return txdData_; }
    /// Null if the link has ended.
    [[nodiscard]] UnTxdPropertyData* untxdData() const noexcept { return untxdData_; }
    /// Ends the link on both sides; the values stay unchanged.
    void sever() noexcept;

protected:
    ~TxdPropertyTwin() override;

    void onTxnExtant() override;

private:
    TxdPropertyData* const txdData_;
    UnTxdPropertyData* untxdData_;
};

}  // namespace nxSupport
