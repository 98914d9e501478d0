// A library of one of the host's names. It defines nothing: all operations are in
// libzktarn_python_host, which it names as its dependency.
