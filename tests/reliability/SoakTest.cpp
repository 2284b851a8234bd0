// Many sessions in one process leave nothing behind. VQ_SOAK_LOGINS says how many (./dev soak); a
// thousand by default.

#include <tests/fixture/SessionFixture.h>

#include <malloc.h>

#include <iostream>

#include <support/foundations/Environment.h>

namespace vq::test {
namespace {

std::ptrdiff_t EntriesOf(const char* directory) {
  return std::distance(std::filesystem::directory_iterator(directory), {});
}

using SoakTest = SessionFixture;

TEST_F(SoakTest, LeavesMemoryDescriptorsAndThreadsAsTheyWere) {
  const int logins = std::stoi(GetEnv("VQ_SOAK_LOGINS").value_or("1000"));
  TDiag::Instance()->SetMinimumDebugLevel(0);  // the test's own log would grow
  InstallClient("8.0.05");
  StartServer();
  for (const bool destroyOrb : {false, true}) {
    const auto logInAndOut = [&](int times) {
      for (int i = 0; i < times; ++i) {
        ASSERT_TRUE(Login() == 1 && GL_PostLogin(m_message) == 1 && GL_LogOut(destroyOrb) == 1);
      }
    };
    logInAndOut(50);  // what is made once is there
    const std::ptrdiff_t descriptors = EntriesOf("/proc/self/fd");
    const std::ptrdiff_t threads = EntriesOf("/proc/self/task");
    const std::size_t memory = mallinfo2().uordblks;
    logInAndOut(logins);
    const auto settled = [&] {  // the ORB ends idle threads in its own time
      return EntriesOf("/proc/self/fd") <= descriptors && EntriesOf("/proc/self/task") <= threads;
    };
    EXPECT_TRUE(WaitUntil(settled, std::chrono::seconds(10)));
    // Less than 32 bytes a login: no object of any login stays.
    const auto grown = static_cast<std::ptrdiff_t>(mallinfo2().uordblks - memory);
    EXPECT_LT(grown, 32 * logins);
    std::cout << logins << " logins, the ORB " << (destroyOrb ? "ended each time" : "kept")
              << ": heap " << memory << " and " << grown << " bytes, descriptors " << descriptors
              << " -> " << EntriesOf("/proc/self/fd") << ", threads " << threads << " -> "
              << EntriesOf("/proc/self/task") << '\n';
  }
}

}  // namespace
}  // namespace vq::test
