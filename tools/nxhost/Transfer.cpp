// Setting libcurl up for a request, and noting what it reports.
#include "tools/nxhost/Transfer.h"

#include <algorithm>
#include <new>
#include <string_view>

namespace nxhost {
namespace {

using nxNet::Request;
using urString::CString;

constexpr long mostHops = 20;
constexpr long connectSeconds = 30;
constexpr long stallSeconds = 60;
constexpr std::size_t mostHeaderBytes = 1 << 20;

[[noreturn]] void refuse(char const* why) { throw Failed{TransferError::refused, why}; }

bool isToken(std::string_view text) {
    constexpr std::string_view others = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::ranges::all_of(text, [=](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               others.find(c) != others.npos;
    });
}

bool hasLineBreakOrNul(std::string_view text) { return text.find_first_of(std::string_view("\r\n\0", 3)) != text.npos; }

/// Raises nothing of its own for what a caller cannot mend.
void check(bool succeeded) {
    if (!succeeded) throw std::bad_alloc();
}

void checkRequest(Request const& request, NetworkOptions const& options) {
    if (request.getUrl().empty()) refuse("there is no URL");
    if (hasLineBreakOrNul(request.getUrl())) refuse("a URL has no line breaks and no NULs");
    if (!isToken(request.getHTTPMethod())) refuse("the method is no word");
    for (auto const& [name, value] : request.getHeaders()) {
        if (!isToken(name)) refuse("the name of a header is no word");
        if (hasLineBreakOrNul(value)) refuse("a header has no line breaks and no NULs");
    }
    if (request.getFileForUpload().find('\0') != CString::npos) refuse("the name of a file has no NULs");
    if (!request.getFileForUpload().empty() && !options.mayUseFiles) refuse("files are not for the sandbox");
}

std::string joined(std::vector<std::string> const& words) {
    std::string result;
    for (auto const& word : words) result += (result.empty() ? "" : ",") + word;
    return result;
}

TransferError errorFor(CURLcode code) {
    switch (code) {
        case CURLE_URL_MALFORMAT:
        case CURLE_UNSUPPORTED_PROTOCOL: return TransferError::refused;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY: return TransferError::nameUnknown;
        case CURLE_COULDNT_CONNECT: return TransferError::notReached;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ISSUER_ERROR: return TransferError::notTrusted;
        case CURLE_OPERATION_TIMEDOUT: return TransferError::tooSlow;
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
        case CURLE_SEND_FAIL_REWIND:
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_WRITE_ERROR:    // too many headers
        case CURLE_OUT_OF_MEMORY:  // too long a header
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM: return TransferError::broken;
        case CURLE_TOO_MANY_REDIRECTS: return TransferError::tooManyHops;
        case CURLE_READ_ERROR:
        case CURLE_ABORTED_BY_CALLBACK:
        case CURLE_FILE_COULDNT_READ_FILE: return TransferError::fileUnreadable;
        default: return TransferError::other;
    }
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::size_t const first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

/// What libcurl calls. No exception may pass through it; only memory can be short here.
struct Transfer::Callbacks {
    template <class Result, class Function>
    static Result guarded(Result otherwise, Function function) noexcept {
        try {
            return function();
        } catch (...) {
            return otherwise;
        }
    }

    static std::size_t receive(char* bytes, std::size_t, std::size_t size, void* transfer) {
        return guarded<std::size_t>(0, [&] {
            static_cast<Transfer*>(transfer)->news_.emplace_back(Received{ur::make<urThread::Buffer>(bytes, size)});
            return size;
        });
    }
    static std::size_t receiveHeader(char* bytes, std::size_t, std::size_t size, void* transfer) {
        return guarded<std::size_t>(0, [&]() -> std::size_t {
            auto& self = *static_cast<Transfer*>(transfer);
            self.headerBytes_ += size;
            if (self.headerBytes_ > mostHeaderBytes) return 0;
            self.noteHeaderLine({bytes, size});
            return size;
        });
    }
    static int reach(void* transfer, char*, char*, int, int) {
        return guarded(CURL_PREREQFUNC_ABORT, [&] {
            auto& self = *static_cast<Transfer*>(transfer);
            self.isReached_ = true;
            self.news_.emplace_back(Reached{});
            return CURL_PREREQFUNC_OK;
        });
    }
    static int progress(void* transfer, curl_off_t toReceive, curl_off_t received, curl_off_t toSend, curl_off_t sent) {
        return guarded(1, [&] {
            static_cast<Transfer*>(transfer)->noteProgress({received, toReceive, sent, toSend});
            return 0;
        });
    }
    static std::size_t readFile(char* bytes, std::size_t, std::size_t size, void* transfer) {
        std::size_t done = 0;
        bool const failed = static_cast<Transfer*>(transfer)->file_.read(bytes, size, &done).isError();
        return failed ? CURL_READFUNC_ABORT : done;
    }
    static int seekFile(void* transfer, curl_off_t offset, int origin) {
        if (origin != SEEK_SET || offset < 0) return CURL_SEEKFUNC_CANTSEEK;
        auto& file = static_cast<Transfer*>(transfer)->file_;
        return file.seek(static_cast<std::uint64_t>(offset)).ok() ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
    }
};

Transfer::Transfer(Request const& request, NetworkOptions const& options, double timeLimit) {
    check(handle_ != nullptr);
    try {
        checkRequest(request, options);
        setUp(options, timeLimit);
        setAddress(request.getUrl(), options);
        setHeaders(request);
        setBody(request);
    } catch (Failed& failure) {
        fail(std::move(failure));
    }
}

TransferNews Transfer::takeNews() {
    TransferNews first = std::move(news_.front());
    news_.pop_front();
    return first;
}

void Transfer::end(CURLcode result) {
    if (result == CURLE_OK) {
        news_.emplace_back(Completed{});
        return;
    }
    // An answer without a status is reported like a scheme that is not supported.
    bool const isGibberish = result == CURLE_UNSUPPORTED_PROTOCOL && isReached_ && status() == 0;
    char const* const text = errorText_[0] == '\0' ? curl_easy_strerror(result) : errorText_;
    fail({isGibberish ? TransferError::broken : errorFor(result), text});
}

int Transfer::status() const {
    long status = 0;
    curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

template <class Value>
void Transfer::set(CURLoption option, Value value) {
    CURLcode const result = curl_easy_setopt(handle_.get(), option, value);
    if (result == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
    if (result != CURLE_OK) refuse(curl_easy_strerror(result));
}

void Transfer::setUp(NetworkOptions const& options, double timeLimit) {
    set(CURLOPT_ERRORBUFFER, errorText_);
    set(CURLOPT_QUICK_EXIT, 1L);  // cancelling does not wait for a name to be resolved
    set(CURLOPT_USERAGENT, "nxhost/" NX_VERSION);
    set(CURLOPT_CONNECTTIMEOUT, connectSeconds);
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, stallSeconds);
    constexpr double mostSeconds = 1e6;
    if (timeLimit > 0)
        set(CURLOPT_TIMEOUT_MS, std::max(1L, static_cast<long>(std::min(timeLimit, mostSeconds) * 1000)));
    if (!options.authorities.empty()) set(CURLOPT_CAINFO, options.authorities.c_str());
    set(CURLOPT_WRITEFUNCTION, &Callbacks::receive);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_HEADERFUNCTION, &Callbacks::receiveHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_PREREQFUNCTION, &Callbacks::reach);
    set(CURLOPT_PREREQDATA, this);
    set(CURLOPT_XFERINFOFUNCTION, &Callbacks::progress);
    set(CURLOPT_XFERINFODATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_READFUNCTION, &Callbacks::readFile);
    set(CURLOPT_READDATA, this);
    set(CURLOPT_SEEKFUNCTION, &Callbacks::seekFile);
    set(CURLOPT_SEEKDATA, this);
}

void Transfer::setAddress(CString const& url, NetworkOptions const& options) {
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_PROTOCOLS_STR, joined(options.schemes).c_str());
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");  // an answer cannot choose what the user has allowed besides
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostHops);
}

void Transfer::addHeader(std::string const& line) {
    curl_slist* const longer = curl_slist_append(headers_.get(), line.c_str());
    check(longer != nullptr);
    static_cast<void>(headers_.release());  // the beginning of the longer one
    headers_.reset(longer);
}

void Transfer::setHeaders(Request const& request) {
    for (auto const& [name, value] : request.getHeaders()) {
        // To libcurl "name:" means leaving the header out.
        addHeader(std::string(name) + (trimmed(value).empty() ? ";" : ": " + std::string(value)));
    }
    if (request.getPostData().empty()) addHeader("Content-Type:");  // no form, whatever the method
    set(CURLOPT_HTTPHEADER, headers_.get());
}

/// The method is sent as it is. What libcurl takes for one of its own kinds of request, it also changes into GET when
/// an answer redirects as browsers understand it.
void Transfer::setBody(Request const& request) {
    CString const& method = request.getHTTPMethod();
    char const* ownMethod = "GET";
    if (!request.getFileForUpload().empty()) {
        setFile(request);
        ownMethod = request.getPostData().empty() ? "PUT" : "POST";
    } else if (!request.getPostData().empty() || method == "POST" || method == "PUT" || method == "PATCH") {
        CString const body = encoded(request.getPostData());
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        set(CURLOPT_COPYPOSTFIELDS, body.c_str());
        ownMethod = "POST";
    } else if (method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
        ownMethod = "HEAD";
    }
    if (method != ownMethod) set(CURLOPT_CUSTOMREQUEST, method.c_str());
}

void Transfer::setFile(Request const& request) {
    CString const& path = request.getFileForUpload();
    if (auto const error = file_.open(urString::IString(path.c_str()), urOS::openRead); error.isError())
        throw Failed{TransferError::fileUnreadable, CString(error.message())};
    std::uint64_t bytes = 0;
    curl_off_t const size = file_.size(bytes).ok() ? static_cast<curl_off_t>(bytes) : -1;  // a pipe
    if (!request.getPostData().empty()) return setForm(request.getPostData(), size, path);
    set(CURLOPT_UPLOAD, 1L);
    set(CURLOPT_INFILESIZE_LARGE, size);
}

/// A form of several parts: the post data and then the file.
void Transfer::setForm(Request::Fields const& fields, curl_off_t fileSize, CString const& path) {
    form_.reset(curl_mime_init(handle_.get()));
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
          curl_mime_data_cb(part, fileSize, &Callbacks::readFile, &Callbacks::seekFile, nullptr, this) == CURLE_OK);
    set(CURLOPT_MIMEPOST, form_.get());
}

CString Transfer::encoded(Request::Fields const& fields) const {
    CString result;
    auto const append = [this, &result](CString const& text) {
        char* const escaped = curl_easy_escape(handle_.get(), text.data(), static_cast<int>(text.size()));
        check(escaped != nullptr);
        // The length 0 means up to the NUL.
        if (!text.empty()) result.append(escaped);
        curl_free(escaped);
    };
    for (auto const& [name, value] : fields) {
        if (!result.empty()) result.append('&');
        append(name);
        result.append('=');
        append(value);
    }
    return result;
}

void Transfer::noteHeaderLine(std::string_view line) {
    if (line.starts_with("HTTP/")) {
        answerHeaders_.clear();
        return;
    }
    std::size_t const colon = line.find(':');
    if (colon != line.npos) {
        CString const name = CString(trimmed(line.substr(0, colon))).toLowerCase();
        auto const [entry, isNew] = answerHeaders_.try_emplace(name);
        if (!isNew) entry->second.append(name == "set-cookie" ? "\n" : ", ");
        entry->second.append(trimmed(line.substr(colon + 1)));
        return;
    }
    if (!trimmed(line).empty()) return;
    constexpr int firstFinal = 200;
    if (status() >= firstFinal) news_.emplace_back(Answered{status(), answerHeaders_});
}

/// Told only as far as it changes, and once for what happened together.
void Transfer::noteProgress(Progressed const& progress) {
    if (progress == progress_) return;
    progress_ = progress;
    if (!news_.empty() && std::holds_alternative<Progressed>(news_.back())) {
        news_.back() = progress;
    } else {
        news_.emplace_back(progress);
    }
}

}  // namespace nxhost
