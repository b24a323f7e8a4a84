# Builds on Linux for Windows, with Debian's mingw-w64: its flavour with POSIX threads has std::thread and std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# TARNWICK_WINDOWS_PREFIX: where packaging/windows/common.sh put the libraries that Debian has for Linux alone.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${TARNWICK_WINDOWS_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# pkg-config knows nothing but that prefix.
set(ENV{PKG_CONFIG_LIBDIR} ${TARNWICK_WINDOWS_PREFIX}/lib/pkgconfig)
set(ENV{PKG_CONFIG_PATH} "")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARNWICK_WINDOWS_PREFIX)
