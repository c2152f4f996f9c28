// Marks the symbols that the shared library exports.
#pragma once

#if defined(_WIN32)
#define NX_API  // linked statically there
#else
#define NX_API __attribute__((visibility("default")))
#endif
