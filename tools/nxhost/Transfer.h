// One transfer under way.
#pragma once

#include <curl/curl.h>

#include <deque>
#include <memory>

#include "tools/nxhost/Sending.h"
#include "tools/nxhost/TransferEvent.h"

namespace nxhost {

/// A libcurl handle that sends one request and keeps what arrives as events, so that nobody is called from inside
/// libcurl. Owned by `Transfers`, as are the options.
class Transfer {
public:
    /// One whose request cannot be sent has failed already: it has an event of that. `timeLimit` is in seconds, 0 for
    /// none.
    Transfer(nxNet::Request const& request, NetworkOptions const& options, double timeLimit);
    Transfer(Transfer const&) = delete;
    Transfer& operator=(Transfer const&) = delete;

    [[nodiscard]] CURL* handle() const noexcept { return handle_.get(); }
    [[nodiscard]] bool hasEvents() const noexcept { return !events_.empty(); }
    /// Requires: there is one.
    TransferEvent takeEvent();
    /// Events that have not been taken are dropped.
    void dropEvents() noexcept { events_.clear(); }
    /// Nothing will come of it.
    void fail(Failed failure) { events_.emplace_back(std::move(failure)); }
    /// The file that it sends has nothing yet: its descriptor is readable when it has. Otherwise negative.
    [[nodiscard]] int waitsFor() const noexcept;
    /// From now on, until it is released, libcurl keeps what arrives.
    void hold() noexcept { isHeld_ = true; }
    void release() noexcept { isHeld_ = false; }
    /// Goes on after `release`, or with a file that has something again.
    void resume();
    /// libcurl has ended it.
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

    // The handle goes first: it uses the others.
    char errorText_[CURL_ERROR_SIZE] = {};
    std::unique_ptr<Sending> sending_;
    std::unique_ptr<CURL, Release<&curl_easy_cleanup>> handle_{curl_easy_init()};

    Headers answerHeaders_;
    std::size_t headerBytes_ = 0;
    std::uint64_t bodyBytes_ = 0;
    bool isReached_ = false;
    bool isHeld_ = false;
    bool isPaused_ = false;  ///< libcurl keeps something
    bool hasEnded_ = false;
    bool isTooLarge_ = false;
    bool isPrivate_ = false;  ///< it would have reached an address that is not public
    Progressed progress_;
    std::deque<TransferEvent> events_;
};

}  // namespace nxhost
