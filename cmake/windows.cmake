# Toolchain: builds for 64-bit Windows with mingw-w64, and runs what it built under wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR env WINEDEBUG=-all WINEPREFIX=${CMAKE_BINARY_DIR}/wine /usr/lib/wine/wine64)
# The compiler's own libraries go into each program, which then runs by itself.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
