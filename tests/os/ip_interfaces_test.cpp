// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_interfaces.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <linux/if_tun.h>
#include <malloc.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

#include "qvxcs/ip_address.h"
#include "qvxcs/memory.h"
#include "qvxcs/paths.h"
#include "qvxcs/status.h"

#include "os/ip_support.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "support/host_name_fault.h"
#include "support/processes.h"

namespace {

constexpr u32 kFailed = 0xFFFFFFFF;
constexpr u32 kSlot = 65;

// What is run before the n-th next reading of the interfaces.
const char* commandBeforeReading = nullptr;
int readingsUntilCommand = 0;

// What the next reading returns instead of the system's list: a heap block, or none.
bool givesSubstitute = false;
ifaddrs* substitute = nullptr;

void Shell(const std::string& command) { ASSERT_EQ(system(command.c_str()), 0) << command; }

unsigned int FlagsOf(const char* interface) {
  ifreq request = {};
  strncpy(request.ifr_name, interface, IFNAMSIZ - 1);
  const int any = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  const bool known = ioctl(any, SIOCGIFFLAGS, &request) == 0;
  close(any);
  return known ? static_cast<unsigned short>(request.ifr_flags) : 0;
}

// The kernel settles whether an interface runs a moment after it was brought up.
bool Becomes(const char* interface, bool running) {
  for (int tries = 0; tries < 5000; ++tries) {
    if (((FlagsOf(interface) & IFF_RUNNING) != 0) == running) return true;
    usleep(1000);
  }
  return false;
}

class Interfaces : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    (void)qvx::LoadIPSupt();
    Shell("ip link add qvx0 type veth peer name qvx1");
    Shell("ip link set qvx0 addrgenmode none && ip link set qvx1 addrgenmode none");
    Shell("ip link set qvx0 up && ip link set qvx1 up");
    ASSERT_TRUE(Becomes("qvx0", true));
    ASSERT_TRUE(Becomes("qvx1", true));
  }
  void TearDown() override { Shell("ip link del qvx0"); }

  static void AddTwoAddresses() {
    Shell("ip addr add 192.0.2.1/24 dev qvx0");
    Shell("ip addr add 2001:db8::1/64 dev qvx0 nodad");
  }
};

u32 Counted() {
  u32 count = 77;
  EXPECT_EQ(qvx::GetIPAddrStrList("ignored", &count, nullptr), SM_STATUS_SUCCESS);
  return count;
}

std::set<std::string> Listed() {
  u32 count = 8;
  astring slots[8][kSlot] = {};
  EXPECT_EQ(qvx::GetIPAddrStrList(nullptr, &count, slots), SM_STATUS_SUCCESS);
  std::set<std::string> texts;
  for (u32 at = 0; at < count && at < 8; ++at) {
    texts.insert(slots[at]);
  }
  EXPECT_EQ(texts.size(), count);
  return texts;
}

TEST_F(Interfaces, AddressesOfRunningInterfacesAreCountedAndListed) {
  AddTwoAddresses();
  Shell("ip addr add 198.51.100.7/24 dev qvx1");
  EXPECT_EQ(Counted(), 3U);
  EXPECT_EQ(Listed(), (std::set<std::string>{"192.0.2.1", "2001:db8::1", "198.51.100.7"}));
}

TEST_F(Interfaces, ACapacityOfOneOnTwoAddressesCopiesOneAndCountsBoth) {
  AddTwoAddresses();
  qvx::test::GuardBuffer<astring> slot(kSlot);
  u32 count = 1;
  EXPECT_EQ(PXTGetIPAddrStrList(nullptr, &count, slot.data()), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(count, 2U);
  const std::string text = slot.data();
  EXPECT_TRUE(text == "192.0.2.1" || text == "2001:db8::1") << text;
  EXPECT_TRUE(slot.FrontUntouched());
}

TEST_F(Interfaces, ACapacityOfNoneCopiesNothingAndCountsAll) {
  AddTwoAddresses();
  qvx::test::GuardBuffer<astring> slot(kSlot);
  u32 count = 0;
  EXPECT_EQ(qvx::GetIPAddrStrList(nullptr, &count, slot.data()), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(count, 2U);
  EXPECT_TRUE(slot.UntouchedFrom(0));
}

TEST_F(Interfaces, AnExactCapacityIsASuccess) {
  AddTwoAddresses();
  qvx::test::GuardBuffer<astring> slots(2 * kSlot);
  u32 count = 2;
  EXPECT_EQ(qvx::GetIPAddrStrList(nullptr, &count, slots.data()), SM_STATUS_SUCCESS);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ((std::set<std::string>{slots.data(), slots.data() + kSlot}),
            (std::set<std::string>{"192.0.2.1", "2001:db8::1"}));
}

TEST_F(Interfaces, InterfacesWithoutAddressTextAreNotCounted) { EXPECT_EQ(Counted(), 0U); }

TEST_F(Interfaces, AnEntryWithoutAnAddressIsPassedOver) {
  substitute = static_cast<ifaddrs*>(calloc(1, sizeof(ifaddrs)));
  ASSERT_NE(substitute, nullptr);
  substitute->ifa_flags = IFF_UP | IFF_RUNNING;
  givesSubstitute = true;
  EXPECT_EQ(Counted(), 0U);
  EXPECT_FALSE(givesSubstitute);
}

TEST_F(Interfaces, AnEmptyListIsASuccessOfNone) {
  AddTwoAddresses();
  substitute = nullptr;
  givesSubstitute = true;
  EXPECT_EQ(Counted(), 0U);
  EXPECT_FALSE(givesSubstitute);
}

TEST_F(Interfaces, TheSystemsListIsGivenBack) {
  constexpr u32 kReadings = 1000;
  AddTwoAddresses();
  size_t first = 0;
  for (u32 at = 0; at <= kReadings; ++at) {
    u32 count = 0;
    ASSERT_EQ(PXTGetIPAddrStrList(nullptr, &count, nullptr), SM_STATUS_SUCCESS);
    if (at == 0) first = mallinfo2().uordblks;
  }
  // A list that stayed of each reading would be hundreds of bytes.
  EXPECT_LT(mallinfo2().uordblks, first + kReadings);
}

TEST_F(Interfaces, LoopbackAddressesArePassedOver) {
  Shell("ip link set lo up");
  ASSERT_NE(FlagsOf("lo") & IFF_RUNNING, 0U);
  Shell("ip addr add 203.0.113.1/32 dev lo");
  EXPECT_EQ(Counted(), 0U);
}

TEST_F(Interfaces, PointToPointAddressesArePassedOver) {
  ASSERT_EQ(mkdir("/dev/net", 0755), 0);
  ASSERT_EQ(mknod("/dev/net/tun", S_IFCHR | 0600, makedev(10, 200)), 0);
  const int tunnel = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
  ASSERT_GE(tunnel, 0);
  ifreq request = {};
  strncpy(request.ifr_name, "qvxp0", IFNAMSIZ - 1);
  request.ifr_flags = IFF_TUN | IFF_NO_PI;
  ASSERT_EQ(ioctl(tunnel, TUNSETIFF, &request), 0);
  Shell("ip link set qvxp0 addrgenmode none && ip link set qvxp0 up");
  Shell("ip addr add 192.0.2.9 peer 192.0.2.10 dev qvxp0");
  ASSERT_TRUE(Becomes("qvxp0", true));
  ASSERT_NE(FlagsOf("qvxp0") & IFF_POINTOPOINT, 0U);
  EXPECT_EQ(Counted(), 0U);
  close(tunnel);
}

TEST_F(Interfaces, AnInterfaceThatIsUpButDoesNotRunIsPassedOver) {
  AddTwoAddresses();
  Shell("ip link set qvx1 down");
  ASSERT_TRUE(Becomes("qvx0", false));
  ASSERT_NE(FlagsOf("qvx0") & IFF_UP, 0U);
  EXPECT_EQ(Counted(), 0U);
}

TEST_F(Interfaces, LinkLocalAddressesHaveNoZone) {
  Shell("ip addr add fe80::abcd/64 dev qvx0 nodad");
  EXPECT_EQ(Listed(), std::set<std::string>{"fe80::abcd"});
}

TEST_F(Interfaces, AnUnreadableListFailsWithACountOfNone) {
  AddTwoAddresses();
  const auto count = [] {
    const rlimit none = {0, 0};
    u32 found = 5;
    if (setrlimit(RLIMIT_NOFILE, &none) != 0) return 100;
    if (qvx::GetIPAddrStrList(nullptr, &found, nullptr) != kFailed || found != 0) return 101;
    found = 5;
    return qvx::SUPTIntfHostGetHostIPAddrList(&found) == nullptr && found == 0 ? 0 : 102;
  };
  EXPECT_EQ(qvx::test::InChild(count), 0);
}

TEST_F(Interfaces, ANullCountIsABadArgument) {
  astring slot[kSlot] = {};
  EXPECT_EQ(qvx::GetIPAddrStrList("", nullptr, slot), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::GetIPAddrStrList("", nullptr, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(qvx::SUPTIntfHostGetHostIPAddrList(nullptr), nullptr);
}

TEST_F(Interfaces, TheHostListIsABlockOfSlots) {
  AddTwoAddresses();
  u32 count = 0;
  astring* const slots = PXTHostGetHostIPAddrList(&count);
  ASSERT_NE(slots, nullptr);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ((std::set<std::string>{slots, slots + kSlot}),
            (std::set<std::string>{"192.0.2.1", "2001:db8::1"}));
  PXTFreeMem(slots);
}

TEST_F(Interfaces, TheRestOfASlotIsZero) {
  AddTwoAddresses();
  (void)mallopt(M_PERTURB, 0x5A);  // the heap gives no zeros of itself
  u32 count = 0;
  astring* const slots = PXTHostGetHostIPAddrList(&count);
  ASSERT_NE(slots, nullptr);
  for (u32 slot = 0; slot < count; ++slot) {
    const std::string_view bytes(slots + size_t{slot} * kSlot, kSlot);
    EXPECT_EQ(bytes.find_first_not_of('\0', bytes.find('\0')), std::string_view::npos);
  }
  PXTFreeMem(slots);
}

TEST_F(Interfaces, AHostListOfNoAddressesIsNotNull) {
  u32 count = 5;
  astring* const slots = qvx::SUPTIntfHostGetHostIPAddrList(&count);
  EXPECT_NE(slots, nullptr);
  EXPECT_EQ(count, 0U);
  PXTFreeMem(slots);
}

TEST_F(Interfaces, AHostListWithoutMemoryIsNullWithACountOfNone) {
  AddTwoAddresses();
  u32 count = 0;
  const u32 met = qvx::test::FailEachAllocation(
      [&count] {
        count = 5;
        astring* const slots = qvx::SUPTIntfHostGetHostIPAddrList(&count);
        const bool given = slots != nullptr;
        PXTFreeMem(slots);
        return given;
      },
      [&count](bool given) {
        EXPECT_FALSE(given);
        EXPECT_EQ(count, 0U);
      });
  EXPECT_EQ(met, 1U) << "the slots";
  EXPECT_EQ(count, 2U);
}

// The list as it was at the one reading, whatever becomes of it before a second one.
TEST_F(Interfaces, AHostListThatGrowsMeanwhileIsTheListThatWasRead) {
  Shell("ip addr add 192.0.2.1/24 dev qvx0");
  commandBeforeReading = "ip addr add 192.0.2.2/24 dev qvx0";
  readingsUntilCommand = 2;
  u32 count = 5;
  astring* const slots = qvx::SUPTIntfHostGetHostIPAddrList(&count);
  ASSERT_NE(slots, nullptr);
  EXPECT_EQ(count, 1U);
  EXPECT_STREQ(slots, "192.0.2.1");
  PXTFreeMem(slots);
  EXPECT_EQ(Counted(), 2U) << "this is the second reading";
}

TEST_F(Interfaces, AHostListThatShrinksMeanwhileIsTheListThatWasRead) {
  AddTwoAddresses();
  commandBeforeReading = "ip addr del 192.0.2.1/24 dev qvx0";
  readingsUntilCommand = 2;
  u32 count = 5;
  astring* const slots = qvx::SUPTIntfHostGetHostIPAddrList(&count);
  ASSERT_NE(slots, nullptr);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ((std::set<std::string>{slots, slots + kSlot}),
            (std::set<std::string>{"192.0.2.1", "2001:db8::1"}));
  PXTFreeMem(slots);
  EXPECT_EQ(Counted(), 1U) << "this is the second reading";
}

TEST(HostNameText, IsAHeapCopyOfTheHostName) {
  (void)qvx::LoadIPSupt();
  astring* const name = PXTGetHostNameAStr();
  EXPECT_STREQ(name, "qvxtest");
  PXTFreeMem(name);
}

TEST(HostNameText, HasAll64CharactersOfTheLongestName) {
  (void)qvx::LoadIPSupt();
  const std::string longest(64, 'n');
  ASSERT_EQ(sethostname(longest.data(), longest.size()), 0);
  astring* const name = PXTGetHostNameAStr();
  EXPECT_EQ(std::string(name), longest);
  PXTFreeMem(name);
}

TEST(HostNameText, IsEmptyWhenTheSystemDoesNotGiveTheName) {
  (void)qvx::LoadIPSupt();
  qvx::test::RefuseHostNames();
  astring* const name = PXTGetHostNameAStr();
  EXPECT_STREQ(name, "");
  PXTFreeMem(name);
}

TEST(HostNameText, IsNullWithoutMemory) {
  (void)qvx::LoadIPSupt();
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::SUPTIntfGetHostNameAStr(), nullptr);
}

TEST(HostNameText, IsNullAndSoIsTheHostListBeforeTheSupportIsLoaded) {
  EXPECT_EQ(qvx::SUPTIntfGetHostNameAStr(), nullptr);
  u32 count = 5;
  EXPECT_EQ(qvx::SUPTIntfHostGetHostIPAddrList(&count), nullptr);
  EXPECT_EQ(count, 0U);
}

}  // namespace

// Stands before the C library's, so that the list can change between two readings.
extern "C" int getifaddrs(ifaddrs** list) noexcept {
  if (givesSubstitute) {
    givesSubstitute = false;
    *list = substitute;
    return 0;
  }
  if (readingsUntilCommand != 0 && --readingsUntilCommand == 0) {
    if (system(commandBeforeReading) != 0) abort();
  }
  using Reader = int (*)(ifaddrs**);
  return reinterpret_cast<Reader>(dlsym(RTLD_NEXT, "getifaddrs"))(list);
}
