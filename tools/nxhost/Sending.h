// The content that a transfer sends.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <optional>

#include "net/Request.h"
#include "tools/nxhost/Options.h"
#include "tools/nxhost/UploadFile.h"

namespace nxhost {

/// Deleter that calls a release function of libcurl.
template <auto release>
struct Release {
    template <class T>
    void operator()(T* what) const noexcept {
        release(what);
    }
};

/// Sets up a libcurl handle to send a request, and owns the data that the handle uses. It must outlive the handle.
class Sending {
public:
    /// Throws `Failed` if the request cannot be sent.
    Sending(CURL* handle, nxNet::Request const& request, NetworkOptions const& options);
    Sending(Sending const&) = delete;
    Sending& operator=(Sending const&) = delete;

    /// The file to upload; null for none.
    [[nodiscard]] UploadFile const* file() const noexcept { return file_ ? &*file_ : nullptr; }

private:
    void setAddress(urString::CString const& url, NetworkOptions const& options);
    void addHeader(std::string const& line);
    void setHeaders(nxNet::Request const& request);
    void setBody(nxNet::Request const& request);
    void setFile(nxNet::Request const& request);
    void setForm(nxNet::Request::Fields const& fields, curl_off_t fileSize, urString::CString const& path);
    [[nodiscard]] urString::CString encoded(nxNet::Request::Fields const& fields) const;

    // Called by libcurl.
    static std::size_t readFile(char* bytes, std::size_t one, std::size_t size, void* sending);
    static int seekFile(void* sending, curl_off_t offset, int origin);

    CURL* const handle_;
    std::optional<UploadFile> file_;
    std::unique_ptr<curl_slist, Release<&curl_slist_free_all>> headers_;
    curl_slist* lastHeader_ = nullptr;
    std::unique_ptr<curl_mime, Release<&curl_mime_free>> form_;
};

}  // namespace nxhost
