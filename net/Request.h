// What a transfer sends, and where.
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
/// It keeps what it is given and checks nothing: whether an address, a method or a header can be sent is for the
/// connection to find out when it starts.
class NX_API Request : public ur::ReferenceCount {
public:
    /// In the order of their names.
    using Fields = ur::map<urString::CString, urString::CString>;

    Request() = default;
    Request(Request const&) = default;
    Request& operator=(Request const&) = default;
    ~Request() override;

    [[nodiscard]] urString::CString const& getUrl() const noexcept { return url_; }
    void setUrl(urString::CString const& url) { set(url_, url); }

    /// "GET" to begin with.
    [[nodiscard]] urString::CString const& getHTTPMethod() const noexcept { return httpMethod_; }
    void setHTTPMethod(urString::CString const& method) { set(httpMethod_, method); }

    /// The path of the file whose contents are sent; empty for none.
    [[nodiscard]] urString::CString const& getFileForUpload() const noexcept { return fileForUpload_; }
    void setFileForUpload(urString::CString const& path) { set(fileForUpload_, path); }

    /// A second value for a name takes the place of the first.
    void addHeader(urString::CString const& name, urString::CString const& value) { put(headers_, name, value); }
    [[nodiscard]] Fields const& getHeaders() const noexcept { return headers_; }

    /// A second value for a name takes the place of the first.
    void addPostData(urString::CString const& name, urString::CString const& value) { put(postData_, name, value); }
    [[nodiscard]] Fields const& getPostData() const noexcept { return postData_; }

    /// Charges what the request owns, now and later, for as long as it lives: filling it in then throws
    /// `ur::BudgetSpent`. The first account stays.
    void chargeTo(std::shared_ptr<ur::Account> const& account);

private:
    void set(urString::CString& field, urString::CString value);
    /// By value, since what is added may be a text of the same fields, and these move.
    void put(Fields& fields, urString::CString name, urString::CString value);

    urString::CString url_;
    urString::CString httpMethod_ = "GET";
    urString::CString fileForUpload_;
    Fields postData_;
    Fields headers_;
    ur::Charge charge_;
};

}  // namespace nxNet
