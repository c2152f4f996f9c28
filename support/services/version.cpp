// The product's name and version.
#include "support/services/version.h"

namespace nxSupport {

using urString::CString;

namespace {

constexpr char const* productName = "Quorvane";
constexpr int versionMajor = 0;
constexpr int versionMinor = 5;
constexpr int versionRevision = 0;

}  // namespace

CString getProductName() { return productName; }

int getVersionMajor() noexcept { return versionMajor; }
int getVersionMinor() noexcept { return versionMinor; }
int getVersionRevision() noexcept { return versionRevision; }
CString getVersionString() { return CString::format("%d.%d.%d", versionMajor, versionMinor, versionRevision); }

}  // namespace nxSupport
