// Reads autosave files.
#include "support/documents/recovery.h"

#include <algorithm>
#include <filesystem>

#include "foundation/urOS/File.h"
#include "support/documents/impl/JournalReplay.h"
#include "support/documents/impl/ObjectReader.h"
#include "support/documents/impl/errorAbout.h"
#include "support/documents/impl/journalRecords.h"
#include "support/documents/impl/lockFile.h"

namespace nxSupport {

using impl::errorAbout;
using impl::JournalReplay;
using urString::CString;
using urString::IString;
using urUtil::Error;

namespace {

/// Takes records up to the first that is not complete or does not fit. False when there is no first one.
bool replay(JournalReplay& journal, std::string_view bytes) {
    auto record = impl::takeRecord(bytes);
    if (!record || !journal.begin(record)) return false;
    while ((record = impl::takeRecord(bytes))) {
        if (!journal.apply(record)) break;
    }
    return true;
}

std::chrono::system_clock::time_point timeOf(double secondsSince1970) {
    constexpr double latest = 8e9;  // what the clock can hold
    if (!(secondsSince1970 >= 0 && secondsSince1970 <= latest)) return {};
    std::chrono::duration<double> const passed(secondsSince1970);
    return std::chrono::system_clock::time_point(
        std::chrono::duration_cast<std::chrono::system_clock::duration>(passed));
}

/// False for a file that is in use or holds no document.
bool examine(Recoverable& found) {
    urOS::File file;
    CString bytes;
    if (file.open(found.path, urOS::openRead).isError() || !impl::lockFile(file) || file.readAll(bytes).isError())
        return false;
    JournalReplay journal;
    if (!replay(journal, bytes.view())) return false;
    found.name = journal.name();
    found.time = timeOf(journal.time());
    return true;
}

/// Removes what a crash in `urOS::AtomicFile` left, once nobody can be about to rename it.
void removeTemporary(std::filesystem::directory_entry const& file) {
    std::error_code code;
    std::string const name = file.path().filename().string();
    if (!name.starts_with(".nx-") || !name.ends_with(".tmp")) return;
    auto const age = std::filesystem::file_time_type::clock::now() - file.last_write_time(code);
    if (!code && age > std::chrono::minutes(1)) std::filesystem::remove(file.path(), code);
}

}  // namespace

ur::vector<Recoverable> recoverable(IString const& folder) {
    ur::vector<Recoverable> result;
    std::error_code code;
    for (std::filesystem::directory_iterator i(folder.asMultibyte().c_str(), code), end; !code && i != end;
         i.increment(code)) {
        removeTemporary(*i);
        if (i->path().extension() != impl::journalExtension) continue;
        Recoverable found{IString(i->path().string().c_str()), {}, {}};
        if (examine(found)) result.push_back(std::move(found));
    }
    std::ranges::sort(result, std::greater(), &Recoverable::time);
    return result;
}

Error recover(Document& document, IString const& path) {
    if (document.history().depth() > 0) return errorAbout(path, "cannot be opened while a transaction is open");
    urOS::File file;
    CString bytes;
    if (Error error = file.open(path, urOS::openRead); error.isError()) return error;
    if (Error const error = file.readAll(bytes); error.isError()) return errorAbout(path, error.message());
    JournalReplay journal;
    auto const content = replay(journal, bytes.view()) ? journal.document() : nullptr;
    if (!content) return errorAbout(path, "holds no document");
    impl::ObjectReader reader(document, impl::ObjectReader::Identities::kept);
    if (!reader.read(content) || !reader.checkRoot()) return errorAbout(path, reader.fault());
    if (!reader.install(impl::ObjectReader::Origin::recovered)) return errorAbout(path, "cannot be opened during undo");
    return {};
}

}  // namespace nxSupport
