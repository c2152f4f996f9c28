// Runs transfers with libcurl's multi interface and reports their events.
#include "tools/nxhost/Transfers.h"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "tools/nxhost/Connection.h"
#include "tools/nxhost/deadline.h"

namespace nxhost {
namespace {

/// Initialises libcurl once for the process.
struct Library {
    Library() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~Library() { curl_global_cleanup(); }
};

/// Checks the schemes, because an unknown one would make libcurl refuse every request.
void checkSchemes(std::vector<std::string> const& schemes) {
    std::unique_ptr<CURL, Release<&curl_easy_cleanup>> const handle(curl_easy_init());
    for (std::string const& scheme : schemes) {
        if (curl_easy_setopt(handle.get(), CURLOPT_PROTOCOLS_STR, scheme.c_str()) != CURLE_OK)
            throw UsageError{"--allow takes a scheme that libcurl knows, not \"" + scheme + "\""};
    }
}

/// Sets a variable for the duration of a scope.
template <class T>
class Temporarily {
public:
    Temporarily(T& place, T value) : place_(place), before_(std::exchange(place, value)) {}
    Temporarily(Temporarily const&) = delete;
    Temporarily& operator=(Temporarily const&) = delete;
    ~Temporarily() { place_ = before_; }

private:
    T& place_;
    T before_;
};

}  // namespace

Transfers::Transfers(NetworkOptions const& options) : options_(options) {
    static Library const library;
    checkSchemes(options.schemes);
    multi_ = curl_multi_init();
    if (!multi_) throw std::bad_alloc();
    constexpr long mostConnections = 256;  // further transfers wait
    curl_multi_setopt(multi_, CURLMOPT_MAX_TOTAL_CONNECTIONS, mostConnections);
}

Transfers::~Transfers() {
    while (!jobs_.empty()) stop(*jobs_.begin()->second.connection);
    curl_multi_cleanup(multi_);
}

void Transfers::start(Connection& connection) {
    auto const request = connection.getRequest();
    double const timeLimit = limited(connection.timeLimit());
    auto transfer = std::make_unique<Transfer>(request ? *request : nxNet::Request(), options_, timeLimit);
    CURL* const handle = transfer->handle();
    curl_easy_setopt(handle, CURLOPT_PRIVATE, &connection);
    if (!transfer->hasEvents() && curl_multi_add_handle(multi_, handle) != CURLM_OK)
        transfer->fail({TransferError::other, "no transfer can be added"});
    jobs_.emplace(&connection, Job{ur::Reference<Connection>(&connection), std::move(transfer),
                                   deadlineAfter(Clock::now(), timeLimit)});
}

void Transfers::stop(Connection& connection) noexcept {
    auto const job = jobs_.extract(&connection);
    if (!job.empty()) curl_multi_remove_handle(multi_, job.mapped().transfer->handle());
}

/// In the sandbox, scripts may only shorten the time limit.
double Transfers::limited(double seconds) const noexcept {
    double const most = options_.timeLimit;
    if (!options_.sandboxed || most == 0) return seconds;
    return seconds > 0 && seconds < most ? seconds : most;
}

void Transfers::waitFor(std::shared_ptr<PipeWriter> const& pipe) {
    auto const add = [&pipe](Pipes& pipes) {
        if (std::ranges::find(pipes, pipe) == pipes.end()) pipes.push_back(pipe);
    };
    add(pipes_);
    auto const job = jobs_.find(delivering_);
    if (job == jobs_.end()) return;
    add(job->second.pipes);
    job->second.transfer->hold();
}

bool Transfers::hasPendingWrites() const noexcept {
    return std::ranges::any_of(pipes_, [](auto const& pipe) { return pipe->waits(); });
}

/// Releases the transfers whose data have been written.
void Transfers::advancePipes() {
    for (auto const& pipe : Pipes(pipes_)) {
        if (!pipe->advance() && onPipeError_) onPipeError_(nxRFL::Exception(pipe->errorText()));
    }
    auto const removeWritten = [](Pipes& pipes) {
        std::erase_if(pipes, [](auto const& pipe) { return !pipe->waits(); });
    };
    removeWritten(pipes_);
    for (auto& [connection, job] : jobs_) {
        removeWritten(job.pipes);
        if (job.pipes.empty()) job.transfer->release();
    }
}

/// Drops the data that are held back.
void Transfers::giveUp(Job& job) {
    if (job.pipes.empty()) return;
    for (auto const& pipe : job.pipes) pipe->abandon("the time limit of the transfer has passed");
    job.pipes.clear();
    job.transfer->dropEvents();
}

bool Transfers::advance(Interrupt const& interrupt) {
    collect();
    bool delivered = false;
    while (Job* const job = interrupt.pending() == 0 ? nextReady() : nullptr) {
        deliver(*job);
        delivered = true;
    }
    return delivered;
}

void Transfers::wait(std::span<int const> descriptors) {
    std::vector<curl_waitfd> others;
    for (int const descriptor : descriptors) others.push_back({descriptor, CURL_WAIT_POLLIN, 0});
    for (auto const& [connection, job] : jobs_) {
        if (int const file = job.transfer->waitsFor(); file >= 0) others.push_back({file, CURL_WAIT_POLLIN, 0});
    }
    for (auto const& pipe : pipes_) others.push_back({pipe->descriptor(), CURL_WAIT_POLLOUT, 0});
    curl_multi_poll(multi_, others.data(), static_cast<unsigned>(others.size()), mostMilliseconds(), nullptr);
}

/// The time until a pipe or a held transfer is given up. libcurl knows the other limits.
int Transfers::mostMilliseconds() const {
    using std::chrono::milliseconds;
    Clock::time_point const now = Clock::now();
    Clock::time_point end = now + std::chrono::minutes(1);
    for (auto const& pipe : pipes_) end = std::min(end, pipe->deadline());
    for (auto const& [connection, job] : jobs_) {
        if (!job.pipes.empty()) end = std::min(end, job.deadline);
    }
    return static_cast<int>(std::chrono::ceil<milliseconds>(std::max(end - now, Clock::duration::zero())).count());
}

void Transfers::collect() {
    advancePipes();
    for (auto const& [connection, job] : jobs_) job.transfer->resume();
    int count = 0;
    curl_multi_perform(multi_, &count);
    while (CURLMsg const* const message = curl_multi_info_read(multi_, &count)) {
        if (message->msg != CURLMSG_DONE) continue;
        Connection const* connection = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &connection);
        Job& job = jobs_.at(connection);
        if (message->data.result == CURLE_OPERATION_TIMEDOUT) giveUp(job);
        job.transfer->end(message->data.result);
    }
    for (auto& [connection, job] : jobs_) {
        if (!job.pipes.empty() && Clock::now() >= job.deadline) {
            giveUp(job);
            job.transfer->fail({TransferError::tooSlow, "the reader of a pipe is too slow for the time limit"});
        }
        if (job.hasEvents()) ready_.push_back(connection);
    }
}

Transfers::Job* Transfers::nextReady() {
    for (; !ready_.empty(); ready_.pop_front()) {
        auto const job = jobs_.find(ready_.front());
        if (job != jobs_.end() && job->second.hasEvents()) return &job->second;
    }
    return nullptr;
}

// [deliver]
/// The job may be destroyed afterwards.
void Transfers::deliver(Job& job) {
    ur::Reference<Connection> const connection = job.connection;
    TransferEvent event = job.transfer->takeEvent();
    bool const ends = std::holds_alternative<Completed>(event) || std::holds_alternative<Failed>(event);
    if (ends) stop(*connection);
    Temporarily const noted(delivering_, static_cast<Connection const*>(connection.get()));
    connection->deliver(std::move(event));
}
// [deliver]

}  // namespace nxhost
