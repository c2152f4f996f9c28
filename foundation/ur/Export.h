// The mark of what the shared library shows to its users.
#pragma once

#if defined(_WIN32)
#define NX_API  // linked statically there
#else
#define NX_API __attribute__((visibility("default")))
#endif
