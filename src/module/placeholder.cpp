namespace parmira_placeholder { int version() { return 0; } }
