// placeholder until the framework lands
namespace afx_placeholder { int version() { return 0; } }
