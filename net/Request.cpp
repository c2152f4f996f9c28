// Fills in requests.
#include "net/Request.h"

#include <utility>

namespace nxNet {

using urString::CString;

namespace {

/// The bytes of a name and its value in the map.
constexpr std::size_t bytesOfField = 128;

std::size_t bytesOf(Request::Fields const& fields) {
    std::size_t bytes = 0;
    for (auto const& [name, value] : fields) bytes += name.size() + value.size() + bytesOfField;
    return bytes;
}

}  // namespace

Request::~Request() = default;

void Request::chargeTo(std::shared_ptr<ur::Account> const& account) {
    if (charge_) return;
    charge_ = ur::Charge(account, sizeof(Request) + url_.size() + httpMethod_.size() + fileForUpload_.size() +
                                      bytesOf(headers_) + bytesOf(postData_));
}

void Request::set(CString& field, CString value) {
    if (value.size() > field.size()) charge_.add(value.size() - field.size());
    std::size_t const after = value.size();
    std::size_t const before = std::exchange(field, std::move(value)).size();
    if (before > after) charge_.set(charge_.bytes() - (before - after));
}

void Request::put(Fields& fields, CString name, CString value) {
    auto found = fields.find(name);
    if (found == fields.end()) {
        charge_.add(name.size() + bytesOfField);
        found = fields.try_emplace(std::move(name)).first;
    }
    set(found->second, std::move(value));
}

}  // namespace nxNet
