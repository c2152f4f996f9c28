// Appends records, and replaces the file when they have become too many.
#include "support/documents/Autosave.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/Filename.h"
#include "support/documents/impl/ChangeCollector.h"
#include "support/documents/impl/errorAbout.h"
#include "support/documents/impl/journalRecords.h"
#include "support/documents/impl/lockFile.h"

namespace nxSupport {

using urString::CString;
using urString::IString;
using urUtil::Error;

namespace {

IString newPath(IString const& folder) {
    urOS::Uuid id;
    id.generate();
    return urOS::Filename::join(folder, IString(id.asString().append(impl::journalExtension).c_str()));
}

double now() { return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count(); }

}  // namespace

class Autosave::Journal {
public:
    Journal(Document& document, IString const& parent, std::size_t leastBytes)
        : changes(document), folder(parent), path(newPath(parent)), leastBytes_(leastBytes) {}

    Error writeAll();
    Error append();
    Error remove();

    impl::ChangeCollector changes;
    IString const folder;
    IString const path;
    CString name;
    [[nodiscard]] bool exists() const noexcept { return exists_; }
    [[nodiscard]] bool hasGrown() const noexcept { return appended_ > std::max(whole_, leastBytes_); }

private:
    Error writeRecord(urOS::IOStream& stream, ur::Reference<nxPLST::Dictionary> const& record, std::size_t& bytes);

    urOS::File file_;
    bool exists_ = false;
    std::size_t const leastBytes_;
    std::size_t whole_ = 0;     ///< bytes of the first record
    std::size_t appended_ = 0;  ///< bytes of the others
};

Error Autosave::Journal::writeRecord(urOS::IOStream& stream, ur::Reference<nxPLST::Dictionary> const& record,
                                     std::size_t& bytes) {
    record->insert(impl::record::time, now());
    CString text;
    if (!impl::appendRecord(text, record)) return impl::errorAbout(path, "has no form in packets");
    bytes = text.size();
    return stream.write(text.data(), text.size());
}

Error Autosave::Journal::writeAll() {
    auto const record = ur::make<nxPLST::Dictionary>();
    record->insert(impl::record::document, changes.takeAll());
    record->insert(impl::record::name, name);
    urOS::AtomicFile whole;
    if (Error error = whole.open(path); error.isError()) return error;
    if (Error error = writeRecord(whole, record, whole_); error.isError()) return error;
    if (Error error = file_.close(); error.isError()) return error;  // an open file cannot be replaced on Windows
    if (Error error = whole.commit(); error.isError()) return error;
    exists_ = true;
    appended_ = 0;
    if (Error error = file_.open(path, urOS::openWrite | urOS::openAppend); error.isError()) return error;
    if (!impl::lockFile(file_)) return impl::errorAbout(path, "is in use");
    return {};
}

Error Autosave::Journal::append() {
    std::size_t bytes = 0;
    if (Error error = writeRecord(file_, changes.takeChanges(), bytes); error.isError()) return error;
    appended_ += bytes;
    return file_.sync();
}

Error Autosave::Journal::remove() {
    changes.forgetAll();
    static_cast<void>(file_.close());
    if (!std::exchange(exists_, false)) return {};
    std::error_code code;
    std::filesystem::remove(path.asMultibyte().c_str(), code);
    return code ? Error::fromSystem(code, path.asMultibyte()) : Error();
}

Autosave::Autosave(Document& document, IString const& folder, std::size_t leastBytes)
    : journal_(std::make_unique<Journal>(document, folder, leastBytes)) {
    if (document.log_) document.log_->documentGone();
    document.log_ = &journal_->changes;
}

Autosave::~Autosave() {
    Document* const document = journal_->changes.document();
    if (document && document->log_ == &journal_->changes) document->log_ = nullptr;
}

void Autosave::setName(CString name) { journal_->name = std::move(name); }

IString const& Autosave::path() const noexcept { return journal_->path; }

Error Autosave::write() {
    impl::ChangeCollector& changes = journal_->changes;
    if (!changes.document()) return impl::errorAbout(path(), "its document is gone or has another autosave");
    if (!journal_->exists() && !changes.document()->isModified()) return {};
    if (!changes.needsAll() && changes.isEmpty()) return {};
    try {
        Error error = changes.needsAll() || journal_->hasGrown() ? journal_->writeAll() : journal_->append();
        if (error.isError()) changes.forgetAll();
        return error;
    } catch (...) {
        changes.forgetAll();
        throw;
    }
}

Error Autosave::discard() { return journal_->remove(); }

Error autosave(Document& document, IString const& folder, CString const& name) {
    auto& kept = document.autosave_;
    if (kept && kept->journal_->folder == folder) {
        kept->setName(name);
        return kept->write();
    }
    auto const former = std::exchange(kept, std::make_unique<Autosave>(document, folder));
    kept->setName(name);
    Error error = kept->write();
    if (former && error.ok()) return former->discard();
    return error;
}

Error discardAutosave(Document& document) { return document.autosave_ ? document.autosave_->discard() : Error(); }

}  // namespace nxSupport
