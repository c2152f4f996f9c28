// The keys of saved documents and copied objects; docs/documents.md describes the form.
#pragma once

namespace nxSupport::impl::form {

inline constexpr char const format[] = "format";
inline constexpr char const formatName[] = "nxDocument";
inline constexpr char const version[] = "version";
inline constexpr int presentVersion = 1;
inline constexpr char const classes[] = "classes";
inline constexpr char const objects[] = "objects";

inline constexpr char const className[] = "class";
inline constexpr char const id[] = "id";
inline constexpr char const values[] = "values";
inline constexpr char const versions[] = "versions";
inline constexpr char const children[] = "children";

}  // namespace nxSupport::impl::form
