// CMake needs a source to precompile the headers of the tests.
