// The source of the libraries that hold the precompiled headers of the test programs.
