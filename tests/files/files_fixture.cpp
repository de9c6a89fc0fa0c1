#include "files_fixture.h"

namespace ft {

void FilesTest::SetUp() {
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    ASSERT_TRUE(dir.isValid());
    module = host.Module("ZD3S");
    ASSERT_NE(module, nullptr);
    ModuleScope::Attach(host.Services());
}

void FilesTest::TearDown() {
    host.ModuleManager().SetProgressObserver(nullptr);
}

} // namespace ft
