// libcurl's multi interface, and who is told what.
#include "tools/nxhost/Transfers.h"

#include <new>
#include <vector>

#include "tools/nxhost/Connection.h"

namespace nxhost {
namespace {

/// libcurl's own start and end, once for the process.
struct Library {
    Library() { curl_global_init(CURL_GLOBAL_DEFAULT); }
    ~Library() { curl_global_cleanup(); }
};

/// Otherwise all requests were refused for it, whatever their scheme.
void checkSchemes(std::vector<std::string> const& schemes) {
    std::unique_ptr<CURL, Release<&curl_easy_cleanup>> const handle(curl_easy_init());
    for (std::string const& scheme : schemes) {
        if (curl_easy_setopt(handle.get(), CURLOPT_PROTOCOLS_STR, scheme.c_str()) != CURLE_OK)
            throw UsageError{"--allow takes a scheme that libcurl knows, not \"" + scheme + "\""};
    }
}

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
    auto transfer =
        std::make_unique<Transfer>(request ? *request : nxNet::Request(), options_, limited(connection.timeLimit()));
    CURL* const handle = transfer->handle();
    curl_easy_setopt(handle, CURLOPT_PRIVATE, &connection);
    if (!transfer->hasNews() && curl_multi_add_handle(multi_, handle) != CURLM_OK)
        transfer->fail({TransferError::other, "no transfer can be added"});
    jobs_.emplace(&connection, Job{ur::Reference<Connection>(&connection), std::move(transfer)});
}

void Transfers::stop(Connection& connection) noexcept {
    auto const job = jobs_.extract(&connection);
    if (!job.empty()) curl_multi_remove_handle(multi_, job.mapped().transfer->handle());
}

/// In the sandbox scripts may shorten the time limit only.
double Transfers::limited(double seconds) const noexcept {
    double const most = options_.timeLimit;
    if (!options_.sandboxed || most == 0) return seconds;
    return seconds > 0 && seconds < most ? seconds : most;
}

bool Transfers::advance(Interrupt const& interrupt) {
    collect();
    bool told = false;
    while (Job* const job = interrupt.pending() == 0 ? nextWithNews() : nullptr) {
        tell(*job);
        told = true;
    }
    return told;
}

void Transfers::wait(std::span<int const> descriptors) {
    std::vector<curl_waitfd> others;
    for (int const descriptor : descriptors) others.push_back({descriptor, CURL_WAIT_POLLIN, 0});
    for (auto const& [connection, job] : jobs_) {
        if (int const file = job.transfer->waitsFor(); file >= 0) others.push_back({file, CURL_WAIT_POLLIN, 0});
    }
    constexpr int mostMilliseconds = 60'000;
    curl_multi_poll(multi_, others.data(), static_cast<unsigned>(others.size()), mostMilliseconds, nullptr);
}

void Transfers::collect() {
    for (auto const& [connection, job] : jobs_) job.transfer->resume();
    int count = 0;
    curl_multi_perform(multi_, &count);
    while (CURLMsg const* const message = curl_multi_info_read(multi_, &count)) {
        if (message->msg != CURLMSG_DONE) continue;
        Connection const* connection = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &connection);
        jobs_.at(connection).transfer->end(message->data.result);
    }
    for (auto const& [connection, job] : jobs_) {
        if (job.transfer->hasNews()) withNews_.push_back(connection);
    }
}

Transfers::Job* Transfers::nextWithNews() {
    for (; !withNews_.empty(); withNews_.pop_front()) {
        auto const job = jobs_.find(withNews_.front());
        if (job != jobs_.end() && job->second.transfer->hasNews()) return &job->second;
    }
    return nullptr;
}

// [tell]
/// The job may have gone afterwards.
void Transfers::tell(Job& job) {
    ur::Reference<Connection> const connection = job.connection;
    TransferNews news = job.transfer->takeNews();
    bool const ends = std::holds_alternative<Completed>(news) || std::holds_alternative<Failed>(news);
    if (ends) stop(*connection);
    connection->tell(std::move(news));
}
// [tell]

}  // namespace nxhost
