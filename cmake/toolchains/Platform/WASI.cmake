# WASI, which this version of CMake does not know.
set(WASI 1)
set(CMAKE_EXECUTABLE_SUFFIX .wasm)
