// The shared object opened at run time, by a program that does not link it.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace TalTest::SharedObjectTest {
namespace {

using Handle = std::unique_ptr<void, int (*)(void*)>;

Handle openLibrary() { return {dlopen(TAL_SHARED_OBJECT, RTLD_NOW | RTLD_LOCAL), dlclose}; }

TEST(SharedObject, OpensAtRunTimeAndItsOperationsCanBeCalled) {
    Handle const library = openLibrary();
    ASSERT_NE(library, nullptr) << dlerror();
    void* const symbol = dlsym(library.get(), "_ZN5cross10MemoryInfo13bytesToStringB5cxx11Em");
    ASSERT_NE(symbol, nullptr) << dlerror();
    auto const bytesToString = reinterpret_cast<std::string (*)(std::uint64_t)>(symbol);
    EXPECT_EQ(bytesToString(1536), "1.50 KB");
}

TEST(SharedObject, HidesItsEntryPointAndItsMain) {
    Handle const library = openLibrary();
    ASSERT_NE(library, nullptr) << dlerror();
    for (auto const* const name : {"main", "_start", "_IO_stdin_used", "__data_start"}) {
        EXPECT_EQ(dlsym(library.get(), name), nullptr) << name;
    }
}

TEST(SharedObject, HidesWhatIsInternal) {
    Handle const library = openLibrary();
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(dlsym(library.get(), "_ZN17TalIec61850Parser6detail12RecordReader4nextEv"), nullptr);
}

TEST(SharedObject, ClosesAndOpensAgain) {
    for (int round = 0; round < 3; ++round) {
        EXPECT_NE(openLibrary(), nullptr) << dlerror();
    }
}

}  // namespace
}  // namespace TalTest::SharedObjectTest
