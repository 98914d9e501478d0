// The precompiled headers of the tests need a source to be compiled with.
