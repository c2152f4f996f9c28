// The address and content of a transfer.
#pragma once

#include "foundation/ur/Account.h"
#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

namespace nxNet {

/// Describes one transfer to the connection that carries it out. Held by reference; one thread at a time.
///
/// It does not check its values: a connection finds out at its start whether address, method and headers can be sent.
class NX_API Request : public ur::ReferenceCount {
public:
    /// Sorted by name.
    using Fields = ur::map<urString::CString, urString::CString>;

    Request() = default;
    Request(Request const&) = default;
    Request& operator=(Request const&) = default;
    ~Request() override;

    [[nodiscard]] urString::CString const& getUrl() const noexcept { return url_; }
    void setUrl(urString::CString const& url) { set(url_, url); }

    /// "GET" by default.
    [[nodiscard]] urString::CString const& getHTTPMethod() const noexcept { return httpMethod_; }
    void setHTTPMethod(urString::CString const& method) { set(httpMethod_, method); }

    /// The path of the file to upload; empty for none.
    [[nodiscard]] urString::CString const& getFileForUpload() const noexcept { return fileForUpload_; }
    void setFileForUpload(urString::CString const& path) { set(fileForUpload_, path); }

    /// A second value for a name replaces the first.
    void addHeader(urString::CString const& name, urString::CString const& value) { put(headers_, name, value); }
    [[nodiscard]] Fields const& getHeaders() const noexcept { return headers_; }

    /// A second value for a name replaces the first.
    void addPostData(urString::CString const& name, urString::CString const& value) { put(postData_, name, value); }
    [[nodiscard]] Fields const& getPostData() const noexcept { return postData_; }

    /// Charges the memory of the request, now and later, as long as it lives; setters can then throw `ur::BudgetSpent`.
    /// Only the first call has an effect.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    void set(urString::CString& field, urString::CString value);
    /// By value, because an argument may be a text in the same fields, which move.
    void put(Fields& fields, urString::CString name, urString::CString value);

    urString::CString url_;
    urString::CString httpMethod_ = "GET";
    urString::CString fileForUpload_;
    Fields postData_;
    Fields headers_;
    ur::Charge charge_;
};

}  // namespace nxNet
