// One running transfer.
#pragma once

#include <curl/curl.h>

#include <deque>
#include <memory>

#include "tools/nxhost/Sending.h"
#include "tools/nxhost/TransferEvent.h"

namespace nxhost {

/// A libcurl handle that sends one request and stores incoming data as events, so that no client is called from inside
/// libcurl. Owned by `Transfers`, as are the options.
class Transfer {
public:
    /// If the request cannot be sent, the transfer has failed already and has an event for it. `timeLimit` is in
    /// seconds, 0 for none.
    Transfer(nxNet::Request const& request, NetworkOptions const& options, double timeLimit);
    Transfer(Transfer const&) = delete;
    Transfer& operator=(Transfer const&) = delete;

    [[nodiscard]] CURL* handle() const noexcept { return handle_.get(); }
    [[nodiscard]] bool hasEvents() const noexcept { return !events_.empty(); }
    /// Requires: there is an event.
    TransferEvent takeEvent();
    /// Drops the events that were not taken.
    void dropEvents() noexcept { events_.clear(); }
    /// Adds the event of a failure.
    void fail(Failed failure) { events_.emplace_back(std::move(failure)); }
    /// The file's descriptor if the upload waits for data; it becomes readable when there is some. Otherwise negative.
    [[nodiscard]] int waitsFor() const noexcept;
    /// From now on, until `release`, libcurl keeps incoming data.
    void hold() noexcept { isHeld_ = true; }
    void release() noexcept { isHeld_ = false; }
    /// Continues after `release`, or when the upload file has data again.
    void resume();
    /// Called when libcurl has ended the transfer.
    void end(CURLcode result);

private:
    struct Callbacks;

    void setUp(double timeLimit);
    void keepToPublicHosts();
    [[nodiscard]] Failed failure(CURLcode result) const;
    [[nodiscard]] int status() const;
    [[nodiscard]] std::uint64_t announced() const;
    void noteHeaderLine(std::string_view line);
    void noteProgress(Progressed const& progress);

    NetworkOptions const& options_;

    // Destroyed after the handle, which uses these.
    char errorText_[CURL_ERROR_SIZE] = {};
    std::unique_ptr<Sending> sending_;
    std::unique_ptr<CURL, Release<&curl_easy_cleanup>> handle_{curl_easy_init()};

    Headers answerHeaders_;
    std::size_t headerBytes_ = 0;
    std::uint64_t bodyBytes_ = 0;
    bool isReached_ = false;
    bool isHeld_ = false;
    bool isPaused_ = false;  ///< libcurl keeps data
    bool hasEnded_ = false;
    bool isTooLarge_ = false;
    bool isPrivate_ = false;  ///< it tried to reach an address that is not public
    Progressed progress_;
    std::deque<TransferEvent> events_;
};

}  // namespace nxhost
