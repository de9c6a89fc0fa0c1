namespace host_placeholder { int version() { return 0; } }
