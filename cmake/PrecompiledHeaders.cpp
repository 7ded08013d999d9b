// The source of the libraries that hold the precompiled headers: see VantorPrecompiledHeaders.cmake.
