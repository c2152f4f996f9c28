// The scene that is edited, without windows.
#pragma once

#include <filesystem>
#include <optional>

#include "examples/scene/Shapes.h"
#include "support/messaging/Broadcaster.h"
#include "support/messaging/ServiceDomain.h"
#include "support/services/Timeline.h"

namespace scene {

/// The user's wishes, kept in a file.
struct Settings {
    double cacheMegabytes = 512;
    double autosaveSeconds = 30;
};
template <class Visit>
void listMembers(Settings& settings, Visit&& visit) {
    visit("cacheMegabytes", settings.cacheMegabytes);
    visit("autosaveSeconds", settings.autosaveSeconds);
}

/// The document with its file, the cache, the workers and the contexts.
///
/// The program owns one, on the main thread, and services its queue. Nothing here throws because of users' files: what
/// goes wrong is a message.
class Editor final : public nxSupport::ServiceDomain {
public:
    /// `folder` must exist; it is for settings, autosaves and the page file.
    Editor(urThread::RunQueue& queue, std::filesystem::path folder);
    ~Editor() override;

    [[nodiscard]] nxSupport::Document& document() { return document_; }
    [[nodiscard]] Shapes& shapes() { return shapes_; }
    [[nodiscard]] nxSupport::JobQueue& jobs() { return jobs_; }
    [[nodiscard]] urKRCache::Manager& cache() { return cache_; }
    [[nodiscard]] std::filesystem::path const& folder() const { return folder_; }

    /// Runs `change` as one step of that name. What it throws takes the changes back and becomes a message.
    bool perform(urString::CString const& name, std::function<void()> const& change);

    /// Reads a mesh on a worker, then adds an object for it.
    void importMesh(std::filesystem::path const& path);
    void open(std::filesystem::path const& path);
    bool save(std::filesystem::path const& path);
    void autosave();
    /// Opens the latest autosave that a crash has left, if there is one.
    bool recover();
    /// The user closes without saving.
    void discard();
    /// Empty for a new document.
    [[nodiscard]] std::filesystem::path const& path() const { return path_; }
    /// "desk.json*" for a modified document.
    [[nodiscard]] std::string title() const;

    /// Call it once somebody listens to messages.
    void loadSettings();
    [[nodiscard]] Settings const& settings() const { return settings_; }
    void setSettings(Settings const& settings);

    /// Records a time line from now on, or ends that and writes it.
    void startTimeline();
    bool writeTimeline(std::filesystem::path const& path);
    [[nodiscard]] bool hasTimeline() const { return timeline_.has_value(); }

    /// A line for the user.
    urRTB::Signal<std::string_view> messageSignal;
    /// The title or anything that views show may have changed.
    urRTB::Signal<> changedSignal;

protected:
    void onBeginContext(nxSupport::Context const& context) override { document_.beginContext(context); }
    void onEndContext(nxSupport::Context const& context) override { document_.endContext(context); }

private:
    bool report(urUtil::Error const& error);
    void stopTimeline();

    std::filesystem::path const folder_;
    urKRCache::Manager cache_;
    nxSupport::Broadcaster broadcaster_;
    nxSupport::ObjectCatalog catalog_;
    nxSupport::Document document_;
    nxSupport::JobQueue jobs_;
    Shapes shapes_;
    std::filesystem::path path_;
    std::filesystem::path recovered_;  ///< to be removed once the document is saved
    Settings settings_;
    std::optional<nxSupport::Timeline> timeline_;
    urRTB::SignalClient client_;
};

}  // namespace scene
