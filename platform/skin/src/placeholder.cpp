namespace skin_placeholder { int version() { return 0; } }
