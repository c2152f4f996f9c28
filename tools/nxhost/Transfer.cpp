// Receives libcurl's callbacks for one transfer.
#include "tools/nxhost/Transfer.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tools/nxhost/addresses.h"
#include "tools/nxhost/deadline.h"
#include "tools/nxhost/setOption.h"
#include "tools/nxhost/trimmed.h"

namespace nxhost {
namespace {

using urString::CString;

constexpr long connectSeconds = 30;
// libcurl itself allows 300 KiB for each of several answers.
constexpr std::size_t mostHeaderBytes = 256 << 10;
constexpr std::size_t bytesOfHeaderLine = 64;  ///< counted for a line besides its own

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

}  // namespace

/// The functions that libcurl calls. No exception may pass through libcurl; the only possible one is lack of memory.
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
        return guarded<std::size_t>(0, [&]() -> std::size_t {
            auto& self = *static_cast<Transfer*>(transfer);
            self.isPaused_ = self.isHeld_;
            if (self.isPaused_) return CURL_WRITEFUNC_PAUSE;
            self.bodyBytes_ += size;
            self.isTooLarge_ =
                self.options_.bodyLimit != 0 && std::max(self.bodyBytes_, self.announced()) > self.options_.bodyLimit;
            if (self.isTooLarge_) return 0;
            self.events_.emplace_back(Received{ur::make<urThread::Buffer>(bytes, size)});
            return size;
        });
    }
    static std::size_t receiveHeader(char* bytes, std::size_t, std::size_t size, void* transfer) {
        return guarded<std::size_t>(0, [&]() -> std::size_t {
            auto& self = *static_cast<Transfer*>(transfer);
            self.headerBytes_ += bytesOfHeaderLine + size;
            self.isTooLarge_ = self.headerBytes_ > mostHeaderBytes;
            if (self.isTooLarge_) return 0;
            self.noteHeaderLine({bytes, size});
            return size;
        });
    }
    static int reach(void* transfer, char*, char*, int, int) {
        return guarded(CURL_PREREQFUNC_ABORT, [&] {
            auto& self = *static_cast<Transfer*>(transfer);
            self.isReached_ = true;
            self.events_.emplace_back(Reached{});
            return CURL_PREREQFUNC_OK;
        });
    }
    /// Called before each connection, after names have been resolved.
    static curl_socket_t openPublicSocket(void* transfer, curlsocktype, curl_sockaddr* address) {
        if (!isPublic(&address->addr)) {
            static_cast<Transfer*>(transfer)->isPrivate_ = true;
            return CURL_SOCKET_BAD;
        }
        return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }
    static int progress(void* transfer, curl_off_t toReceive, curl_off_t received, curl_off_t toSend, curl_off_t sent) {
        return guarded(1, [&] {
            static_cast<Transfer*>(transfer)->noteProgress({received, toReceive, sent, toSend});
            return 0;
        });
    }
};

Transfer::Transfer(nxNet::Request const& request, NetworkOptions const& options, double timeLimit) : options_(options) {
    if (!handle_) throw std::bad_alloc();
    try {
        setUp(timeLimit);
        sending_ = std::make_unique<Sending>(handle_.get(), request, options);
    } catch (Failed& failure) {
        fail(std::move(failure));
    }
}

TransferEvent Transfer::takeEvent() {
    TransferEvent first = std::move(events_.front());
    events_.pop_front();
    return first;
}

void Transfer::end(CURLcode result) {
    hasEnded_ = true;
    if (result == CURLE_OK) {
        events_.emplace_back(Completed{});
        return;
    }
    fail(failure(result));
}

int Transfer::waitsFor() const noexcept {
    UploadFile const* const file = sending_ ? sending_->file() : nullptr;
    return file && file->waits() ? file->descriptor() : -1;
}

void Transfer::resume() {
    bool const goesOn = (isPaused_ && !isHeld_) || (waitsFor() >= 0 && sending_->file()->ready());
    if (!goesOn || hasEnded_) return;
    // libcurl now passes on the data that it has kept.
    if (CURLcode const result = curl_easy_pause(handle_.get(), CURLPAUSE_CONT); result != CURLE_OK) end(result);
}

Failed Transfer::failure(CURLcode result) const {
    if (isTooLarge_) return {TransferError::tooLarge, "the answer is larger than is allowed"};
    if (isPrivate_ && result == CURLE_COULDNT_CONNECT)
        return {TransferError::refused, "the sandbox reaches public addresses only"};
    if (UploadFile const* const file = sending_ ? sending_->file() : nullptr; file && !file->errorText().empty())
        return {TransferError::fileUnreadable, file->errorText()};
    // libcurl reports an answer without a status with the code of an unsupported scheme.
    bool const isGibberish = result == CURLE_UNSUPPORTED_PROTOCOL && isReached_ && status() == 0;
    char const* const text = errorText_[0] == '\0' ? curl_easy_strerror(result) : errorText_;
    return {isGibberish ? TransferError::broken : errorFor(result), text};
}

int Transfer::status() const {
    long status = 0;
    curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

/// The size of the body by the answer's header, or 0.
std::uint64_t Transfer::announced() const {
    curl_off_t bytes = 0;
    curl_easy_getinfo(handle_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &bytes);
    return static_cast<std::uint64_t>(std::max<curl_off_t>(bytes, 0));
}

void Transfer::setUp(double timeLimit) {
    CURL* const handle = handle_.get();
    setOption(handle, CURLOPT_ERRORBUFFER, errorText_);
    setOption(handle, CURLOPT_QUICK_EXIT, 1L);  // cancelling need not wait for name resolution
    setOption(handle, CURLOPT_USERAGENT, "nxhost/" NX_VERSION);
    long const stall = static_cast<long>(std::ceil(std::min(options_.stallLimit, mostSeconds)));
    setOption(handle, CURLOPT_CONNECTTIMEOUT, stall > 0 ? std::min(stall, connectSeconds) : connectSeconds);
    setOption(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    setOption(handle, CURLOPT_LOW_SPEED_TIME, stall);
    if (timeLimit > 0)
        setOption(handle, CURLOPT_TIMEOUT_MS, std::max(1L, static_cast<long>(std::min(timeLimit, mostSeconds) * 1000)));
    if (!options_.authorities.empty()) setOption(handle, CURLOPT_CAINFO, options_.authorities.c_str());
    if (options_.sandboxed && !options_.reachesPrivate) keepToPublicHosts();
    setOption(handle, CURLOPT_WRITEFUNCTION, &Callbacks::receive);
    setOption(handle, CURLOPT_WRITEDATA, this);
    setOption(handle, CURLOPT_HEADERFUNCTION, &Callbacks::receiveHeader);
    setOption(handle, CURLOPT_HEADERDATA, this);
    setOption(handle, CURLOPT_PREREQFUNCTION, &Callbacks::reach);
    setOption(handle, CURLOPT_PREREQDATA, this);
    setOption(handle, CURLOPT_XFERINFOFUNCTION, &Callbacks::progress);
    setOption(handle, CURLOPT_XFERINFODATA, this);
    setOption(handle, CURLOPT_NOPROGRESS, 0L);
}

/// Also disables proxies, because a proxy would resolve names itself and could reach any address.
void Transfer::keepToPublicHosts() {
    setOption(handle_.get(), CURLOPT_OPENSOCKETFUNCTION, &Callbacks::openPublicSocket);
    setOption(handle_.get(), CURLOPT_OPENSOCKETDATA, this);
    setOption(handle_.get(), CURLOPT_PROXY, "");
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
    if (status() >= firstFinal) events_.emplace_back(Answered{status(), answerHeaders_});
}

/// Reports only changes, and combines changes that happen together.
void Transfer::noteProgress(Progressed const& progress) {
    if (progress == progress_) return;
    progress_ = progress;
    if (!events_.empty() && std::holds_alternative<Progressed>(events_.back())) {
        events_.back() = progress;
    } else {
        events_.emplace_back(progress);
    }
}

}  // namespace nxhost
