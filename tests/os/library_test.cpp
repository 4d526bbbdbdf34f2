// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/loader_error.h"

namespace {

constexpr u32 kFailed = 0xFFFFFFFF;
constexpr char kTestLib[] = QVX_TESTLIB_PATH;

using Answer = int (*)();

bool IsLoaded(const char* path) {
  void* const handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

TEST(Library, IsLoadedLinkedAndUnloaded) {
  PXTLibrary library = {};
  ASSERT_EQ(PXTLibLoad(&library, kTestLib), SM_STATUS_SUCCESS);
  EXPECT_STREQ(library.path, kTestLib);
  EXPECT_NE(library.path, kTestLib);
  EXPECT_NE(library.handle, nullptr);
  const auto answer =
      reinterpret_cast<Answer>(PXTLibLinkToExportFN(&library, "qvx_testlib_answer"));
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer(), 42);
  EXPECT_EQ(PXTLibUnLinkFromExportFN(&library, reinterpret_cast<void*>(answer)), 0U);
  EXPECT_EQ(answer(), 42);
  EXPECT_EQ(PXTLibUnLoad(&library), SM_STATUS_SUCCESS);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_FALSE(IsLoaded(kTestLib));
}

TEST(Library, ItsSymbolsStayItsOwn) {
  PXTLibrary library = {};
  ASSERT_EQ(qvx::OSLibLoad(&library, kTestLib), SM_STATUS_SUCCESS);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "qvx_testlib_answer"), nullptr);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), SM_STATUS_SUCCESS);
}

TEST(Library, ASymbolThatCannotBeBoundFailsTheLoad) {
  std::string image = qvx::test::ReadFile(kTestLib);
  const size_t name = image.find(std::string("\0getppid\0", 9));
  ASSERT_NE(name, std::string::npos);
  image[name + 7] = 'X';  // a function that nobody has
  const char unbound[] = "/tmp/qvx_unbound.so";
  qvx::test::WriteFile(unbound, image);
  PXTLibrary library = {};
  EXPECT_EQ(qvx::OSLibLoad(&library, unbound), SM_STATUS_FAILURE);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_FALSE(IsLoaded(unbound));
  void* const lazily = dlopen(unbound, RTLD_LAZY);
  EXPECT_NE(lazily, nullptr) << dlerror();
  if (lazily != nullptr) dlclose(lazily);
}

TEST(Library, AMissingFileFailsAndLeavesThePathNull) {
  int other = 0;
  PXTLibrary library = {nullptr, &other};
  EXPECT_EQ(qvx::OSLibLoad(&library, "/nowhere/missing.so"), SM_STATUS_FAILURE);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_EQ(library.handle, &other);
}

TEST(Library, AFileThatIsNoLibraryFails) {
  qvx::test::WriteFile("/tmp/not_a_library.so", "text");
  PXTLibrary library = {};
  EXPECT_EQ(qvx::OSLibLoad(&library, "/tmp/not_a_library.so"), SM_STATUS_FAILURE);
  EXPECT_EQ(library.path, nullptr);
}

TEST(Library, ANullPathFailsAndSetsThePathToNull) {
  astring before[] = "before";
  PXTLibrary library = {before, before};
  EXPECT_EQ(qvx::OSLibLoad(&library, nullptr), SM_STATUS_FAILURE);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_EQ(library.handle, before);
}

TEST(Library, WithoutMemoryNothingIsLoaded) {
  astring before[] = "before";
  PXTLibrary library = {before, nullptr};
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::OSLibLoad(&library, kTestLib), kFailed);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_FALSE(IsLoaded(kTestLib));
}

TEST(Library, ANullRecordIsRefused) {
  EXPECT_EQ(qvx::OSLibLoad(nullptr, kTestLib), kFailed);
  EXPECT_EQ(qvx::OSLibLinkToExportFN(nullptr, "qvx_testlib_answer"), nullptr);
  EXPECT_EQ(qvx::OSLibUnLinkFromExportFN(nullptr, nullptr), 0U);
  EXPECT_EQ(qvx::OSLibUnLoad(nullptr), kFailed);
  EXPECT_FALSE(IsLoaded(kTestLib));
}

TEST(Library, AMissingSymbolLinksToNull) {
  PXTLibrary library = {};
  ASSERT_EQ(qvx::OSLibLoad(&library, kTestLib), SM_STATUS_SUCCESS);
  EXPECT_EQ(qvx::OSLibLinkToExportFN(&library, "qvx_testlib_missing"), nullptr);
  EXPECT_EQ(qvx::OSLibLinkToExportFN(&library, ""), nullptr);
  EXPECT_EQ(qvx::OSLibLinkToExportFN(&library, nullptr), nullptr);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), SM_STATUS_SUCCESS);
}

TEST(Library, ANullHandleLinksToNullAndUnloadsAsRefused) {
  PXTLibrary library = {strdup("copy"), nullptr};
  EXPECT_EQ(qvx::OSLibLinkToExportFN(&library, "malloc"), nullptr);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), kFailed);
  EXPECT_EQ(library.path, nullptr);
}

TEST(Library, ThePathIsReleasedWhenTheLoaderRefusesToUnload) {
  // The loader takes an image that nobody has opened for one that cannot be closed.
  const auto unopened = std::make_unique<std::array<std::max_align_t, 512>>();
  PXTLibrary library = {strdup("copy"), unopened->data()};
  EXPECT_EQ(qvx::OSLibUnLoad(&library), kFailed);
  EXPECT_EQ(library.path, nullptr);
  EXPECT_EQ(library.handle, unopened->data());
}

// A C library may keep the error of an earlier call until it is asked for.
TEST(Library, AnErrorOfAnEarlierLoadDoesNotSpoilALink) {
  PXTLibrary library = {};
  ASSERT_EQ(qvx::OSLibLoad(&library, kTestLib), SM_STATUS_SUCCESS);
  qvx::test::LeaveLoaderError();
  EXPECT_NE(qvx::OSLibLinkToExportFN(&library, "qvx_testlib_answer"), nullptr);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), SM_STATUS_SUCCESS);
}

// Somebody else has it open too: a second close of the same handle would take it from them.
TEST(Library, ASecondUnloadIsRefusedAndClosesNothing) {
  void* const others = dlopen(kTestLib, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(others, nullptr);
  PXTLibrary library = {};
  ASSERT_EQ(qvx::OSLibLoad(&library, kTestLib), SM_STATUS_SUCCESS);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), SM_STATUS_SUCCESS);
  EXPECT_EQ(library.handle, nullptr);
  EXPECT_EQ(qvx::OSLibUnLoad(&library), kFailed);
  EXPECT_TRUE(IsLoaded(kTestLib));
  EXPECT_EQ(dlclose(others), 0);
  EXPECT_FALSE(IsLoaded(kTestLib));
}

}  // namespace
