# Debian's cross-compiler for 64-bit Windows; what it builds runs under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Programs run in a Wine prefix of their own, in the build folder, without a display and without offers to download
# missing parts.
set(CMAKE_CROSSCOMPILING_EMULATOR env WINEPREFIX=${CMAKE_BINARY_DIR}/wine WINEARCH=win64 WINEDEBUG=-all
    "WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=" DISPLAY= LC_ALL=C.UTF-8 wine)

# The stack is aligned to 16 bytes on this platform, and GCC does not realign it for 32-byte vectors
# (https://gcc.gnu.org/bugzilla/show_bug.cgi?id=54412): the assembler makes all vector moves unaligned ones, which
# take the same time on aligned addresses.
#
# printf is that of the standard, not that of the old C library.
set(CMAKE_C_FLAGS_INIT "-Wa,-muse-unaligned-vector-move -D__USE_MINGW_ANSI_STDIO=1")
set(CMAKE_CXX_FLAGS_INIT "-Wa,-muse-unaligned-vector-move -D__USE_MINGW_ANSI_STDIO=1")

# The compiler's own libraries go into each file, which then needs nothing but what Windows has.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -static)

# Programs come from this machine, libraries and headers from the target's.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
