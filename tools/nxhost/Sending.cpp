// Checks a request and sets up a libcurl handle for it.
#include "tools/nxhost/Sending.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "tools/nxhost/setOption.h"
#include "tools/nxhost/trimmed.h"

namespace nxhost {
namespace {

using nxNet::Request;
using urString::CString;

constexpr long mostHops = 20;

bool isToken(std::string_view text) {
    constexpr std::string_view others = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::ranges::all_of(text, [=](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               others.find(c) != others.npos;
    });
}

bool hasLineBreakOrNul(std::string_view text) { return text.find_first_of(std::string_view("\r\n\0", 3)) != text.npos; }

bool hasControl(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; });
}

/// Whether a header sets a message's length or switches the protocol. Only the message's sender can set these.
bool framesMessages(CString const& name) {
    constexpr std::string_view names[] = {"content-length", "transfer-encoding", "trailer", "upgrade"};
    return std::ranges::find(names, CString(name).toLowerCase().view()) != std::end(names);
}

/// A failure means that libcurl found no memory.
void check(bool succeeded) {
    if (!succeeded) throw std::bad_alloc();
}

void checkRequest(Request const& request, NetworkOptions const& options) {
    if (request.getUrl().empty()) refuse("there is no URL");
    if (hasLineBreakOrNul(request.getUrl())) refuse("a URL has no line breaks and no NULs");
    if (!isToken(request.getHTTPMethod())) refuse("the method is no word");
    for (auto const& [name, value] : request.getHeaders()) {
        if (!isToken(name)) refuse("the name of a header is no word");
        if (framesMessages(name)) refuse("a script does not say where a message ends");
        if (hasControl(value)) refuse("a header has no control characters");
    }
    if (request.getFileForUpload().find('\0') != CString::npos) refuse("the name of a file has no NULs");
    if (!request.getFileForUpload().empty() && options.sandboxed) refuse("files are not for the sandbox");
}

std::string joined(std::vector<std::string> const& words) {
    std::string result;
    for (auto const& word : words) result += (result.empty() ? "" : ",") + word;
    return result;
}

/// libcurl would wait for the writer of a pipe, and all other transfers with it.
void checkFile(CString const& url) {
    std::unique_ptr<CURLU, Release<&curl_url_cleanup>> const parts(curl_url());
    char* scheme = nullptr;
    char* path = nullptr;
    curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME);
    curl_url_get(parts.get(), CURLUPART_SCHEME, &scheme, 0);
    curl_url_get(parts.get(), CURLUPART_PATH, &path, CURLU_URLDECODE);
    std::unique_ptr<char, Release<&curl_free>> const ownedScheme(scheme);
    std::unique_ptr<char, Release<&curl_free>> const ownedPath(path);
    struct stat facts = {};
    if (scheme && path && std::string_view(scheme) == "file" && stat(path, &facts) == 0 && !S_ISREG(facts.st_mode))
        refuse("only regular files can be fetched");
}

}  // namespace

Sending::Sending(CURL* handle, Request const& request, NetworkOptions const& options) : handle_(handle) {
    checkRequest(request, options);
    checkFile(request.getUrl());
    setAddress(request.getUrl(), options);
    setHeaders(request);
    setBody(request);
}

void Sending::setAddress(CString const& url, NetworkOptions const& options) {
    setOption(handle_, CURLOPT_URL, url.c_str());
    setOption(handle_, CURLOPT_PROTOCOLS_STR, joined(options.schemes).c_str());
    // An answer must not redirect to the further schemes that the user has allowed.
    setOption(handle_, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    setOption(handle_, CURLOPT_FOLLOWLOCATION, 1L);
    setOption(handle_, CURLOPT_MAXREDIRS, mostHops);
}

/// libcurl's own function goes through the whole list for each line.
void Sending::addHeader(std::string const& line) {
    curl_slist* const added = curl_slist_append(nullptr, line.c_str());
    check(added != nullptr);
    if (lastHeader_) {
        lastHeader_->next = added;
    } else {
        headers_.reset(added);
    }
    lastHeader_ = added;
}

void Sending::setHeaders(Request const& request) {
    for (auto const& [name, value] : request.getHeaders()) {
        // libcurl takes "name:" as a request to omit the header.
        addHeader(std::string(name) + (trimmed(value).empty() ? ";" : ": " + std::string(value)));
    }
    if (request.getPostData().empty()) addHeader("Content-Type:");  // do not declare a form, whatever the method
    setOption(handle_, CURLOPT_HTTPHEADER, headers_.get());
}

/// Sends the method as it is. But if libcurl knows it as one of its own kinds of request, libcurl changes it to GET
/// after some redirections, as browsers do.
void Sending::setBody(Request const& request) {
    CString const& method = request.getHTTPMethod();
    char const* ownMethod = "GET";
    if (!request.getFileForUpload().empty()) {
        setFile(request);
        ownMethod = request.getPostData().empty() ? "PUT" : "POST";
    } else if (!request.getPostData().empty() || method == "POST" || method == "PUT" || method == "PATCH") {
        CString const body = encoded(request.getPostData());
        setOption(handle_, CURLOPT_POST, 1L);
        setOption(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        setOption(handle_, CURLOPT_COPYPOSTFIELDS, body.c_str());
        ownMethod = "POST";
    } else if (method == "HEAD") {
        setOption(handle_, CURLOPT_NOBODY, 1L);
        ownMethod = "HEAD";
    }
    if (method != ownMethod) setOption(handle_, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void Sending::setFile(Request const& request) {
    CString const& path = request.getFileForUpload();
    file_.emplace(path);
    curl_off_t const size = file_->size().value_or(-1);
    if (!request.getPostData().empty()) return setForm(request.getPostData(), size, path);
    setOption(handle_, CURLOPT_READFUNCTION, &readFile);
    setOption(handle_, CURLOPT_READDATA, this);
    setOption(handle_, CURLOPT_SEEKFUNCTION, &seekFile);
    setOption(handle_, CURLOPT_SEEKDATA, this);
    setOption(handle_, CURLOPT_UPLOAD, 1L);
    setOption(handle_, CURLOPT_INFILESIZE_LARGE, size);
}

/// A form of several parts: the post data, then the file.
void Sending::setForm(Request::Fields const& fields, curl_off_t fileSize, CString const& path) {
    form_.reset(curl_mime_init(handle_));
    check(form_ != nullptr);
    for (auto const& [name, value] : fields) {
        if (name.find('\0') != CString::npos) refuse("the name of a form's field has no NULs");
        curl_mimepart* const part = curl_mime_addpart(form_.get());
        check(part && curl_mime_name(part, name.c_str()) == CURLE_OK &&
              curl_mime_data(part, value.data(), value.size()) == CURLE_OK);
    }
    curl_mimepart* const part = curl_mime_addpart(form_.get());
    CString const name = path.substr(path.rfind('/') == CString::npos ? 0 : path.rfind('/') + 1);
    check(part && curl_mime_name(part, "file") == CURLE_OK && curl_mime_filename(part, name.c_str()) == CURLE_OK &&
          curl_mime_data_cb(part, fileSize, &readFile, &seekFile, nullptr, this) == CURLE_OK);
    setOption(handle_, CURLOPT_MIMEPOST, form_.get());
}

CString Sending::encoded(Request::Fields const& fields) const {
    CString result;
    auto const append = [this, &result](CString const& text) {
        if (text.empty()) return;  // libcurl would take the length 0 as "up to the NUL"
        std::unique_ptr<char, Release<&curl_free>> const escaped(
            curl_easy_escape(handle_, text.data(), static_cast<int>(text.size())));
        check(escaped != nullptr);
        result.append(escaped.get());
    };
    for (auto const& [name, value] : fields) {
        if (!result.empty()) result.append('&');
        append(name);
        result.append('=');
        append(value);
    }
    return result;
}

std::size_t Sending::readFile(char* bytes, std::size_t /*one*/, std::size_t size, void* sending) {
    return static_cast<Sending*>(sending)->file_->read(bytes, size);
}

int Sending::seekFile(void* sending, curl_off_t offset, int origin) {
    if (origin != SEEK_SET || offset < 0) return CURL_SEEKFUNC_CANTSEEK;
    return static_cast<Sending*>(sending)->file_->seek(offset) ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

}  // namespace nxhost
