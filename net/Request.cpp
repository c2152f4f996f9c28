// Filling in requests.
#include "net/Request.h"

#include <utility>

namespace nxNet {

using urString::CString;

namespace {

/// Of a name and its value: their places in the map.
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

void Request::set(CString& field, CString const& value) {
    if (value.size() > field.size()) charge_.add(value.size() - field.size());
    std::size_t const before = std::exchange(field, value).size();
    if (before > field.size()) charge_.set(charge_.bytes() - (before - field.size()));
}

void Request::put(Fields& fields, CString const& name, CString const& value) {
    // Copies, since what is added may be a text of the same fields, and these move.
    CString const key(name);
    CString next(value);
    if (!fields.contains(key)) {
        charge_.add(key.size() + bytesOfField);
        fields[key];
    }
    set(fields[key], next);
}

}  // namespace nxNet
