// The records of an autosave file.
#pragma once

#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/Item.h"

namespace nxSupport::impl {

/// The extension of the files.
inline constexpr char const journalExtension[] = ".autosave";

/// A record is a mark, the size and the checksum of its content, and the content: a packet file. The first one holds
/// the whole document, each other one what has changed since. A crash while a record is being written leaves a part of
/// it at the end of the file, which reading recognizes.
///
/// Appends a record to `bytes`. False when the item has no form in packets.
[[nodiscard]] bool appendRecord(urString::CString& bytes, ur::Reference<nxPLST::Item const> const& content);

/// The content of the record at the start of `bytes`, which go on behind it then. Null, and `bytes` unchanged, when no
/// complete record is there.
[[nodiscard]] ur::Reference<nxPLST::Item> takeRecord(std::string_view& bytes);

/// The keys of records.
namespace record {

inline constexpr char const name[] = "name";
inline constexpr char const time[] = "time";          ///< seconds since 1970
inline constexpr char const document[] = "document";  ///< in the first record: the form of a saved document
inline constexpr char const classes[] = "classes";    ///< as in a saved document
inline constexpr char const objects[] = "objects";    ///< new ones, with the identities of their children
inline constexpr char const values[] = "values";      ///< for each identity: the values that changed
inline constexpr char const unset[] = "unset";        ///< for each identity: the names that have no value any more
inline constexpr char const lists[] = "lists";        ///< changes of children, in their order: see `ListChange`

}  // namespace record

/// [parent, kind, index, child] or [parent, kind, index, second index].
enum class ListChange : int { inserted = 0, removed = 1, moved = 2 };

}  // namespace nxSupport::impl
