// Any one allocation of an operation fails: the operation ends with std::bad_alloc or with one of
// its documented failures, leaves what it works on whole, and works afterwards.
//
// Allocations of the calling thread fail, but none that the ORB product or Xerces-C makes: those do
// not survive it.

#include <tests/fixture/SessionFixture.h>

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>

#include <iostream>
#include <new>

#include <support/configuration/Xml.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/environment/ClientProperties.h>

namespace {

thread_local long untilFailure = 0;  // 0: none fails

bool IsForeign(void* code) {
  dl_find_object found;
  if (_dl_find_object(code, &found) != 0) return false;
  const std::string_view name = found.dlfo_link_map->l_name;
  for (const char* part : {"libomni", "libTAO", "libACE", "libxerces"}) {
    if (name.find(part) != name.npos) return true;
  }
  return false;
}

bool Fails(void* caller) {
  if (untilFailure == 0 || IsForeign(caller)) return false;  // cheaper than all frames
  void* frames[64];
  const int depth = backtrace(frames, std::size(frames));
  return std::none_of(frames, frames + depth, IsForeign) && --untilFailure == 0;
}

}  // namespace

// The forms for arrays call this one.
void* operator new(std::size_t size) {
  void* const memory =
      Fails(__builtin_return_address(0)) ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size == 0 ? 1 : size);
}
// clang-format off
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
// clang-format on

namespace vq::test {
namespace {

using std::string;
using Action = std::function<void()>;
using Outcome = std::function<string()>;

using AllocationTest = SessionFixture;

// Fails each allocation of `run` in turn. `prepare` brings about the state in which it is called;
// `outcomes` are its own, success first; `isWhole` tells whether what it left fits the outcome.
void Sweep(const string& name, const Action& prepare, const Outcome& run, const string& outcomes,
           const std::function<bool(const string&)>& isWhole = nullptr) {
  const string success = outcomes.substr(0, outcomes.find(' '));
  long n = 1;
  for (long left = 0; left == 0 && !::testing::Test::HasFailure(); ++n) {
    SCOPED_TRACE(name + " " + std::to_string(n));
    prepare();
    string outcome = "bad_alloc";
    untilFailure = n;
    try {
      outcome = run();
    } catch (const std::bad_alloc&) {
    }
    left = std::exchange(untilFailure, 0);
    const string allowed = left > 0 ? success : outcomes + " bad_alloc";
    EXPECT_NE((" " + allowed + " ").find(" " + outcome + " "), string::npos) << outcome;
    EXPECT_TRUE(!isWhole || isWhole(outcome)) << outcome;
    if (outcome == success) prepare();
    EXPECT_EQ(run(), success) << "afterwards";
  }
  EXPECT_GT(n, 2) << name << " allocates nothing";
  std::cout << name << ": " << n - 2 << " allocations\n";
}

TEST_F(AllocationTest, LoginsEndWithAResult) {
  nlohmann::json site = BaseSite();
  site["users"]["alice"]["privileges"] = {{"ALERT_PRIV_TYPE", "FULL_ACCESS"}};
  StartServer({.site = site});
  InstallClient("8.0.05", "P1");
  TDiag::Instance()->SetMinimumDebugLevel(5);  // at 6 omniORB tells of every byte
  const auto logOut = [] { GL_LogOut(true); };
  const auto logIn = [&] { EXPECT_EQ(Login(), 1) << m_log.Text(); };
  const auto login = [&] { return std::to_string(Login()); };
  const auto postLogin = [&] { return std::to_string(GL_PostLogin(m_message)); };
  Sweep("login", logOut, login, "1 0 54 55");
  Sweep("post-login", logIn, postLogin, "1 0", [](const string& outcome) {
    return outcome != "1" || UserAuthorizations::Get()->IsAlertsAccessAllowed(FULL_ACCESS);
  });
}

TEST_F(AllocationTest, FilesStayWhole) {
  const string before = "<Properties>\n\t<First>one</First>\n</Properties>\n";
  m_environment.Set("VQ_DATA", m_directory / "data");
  const auto prepare = [&] {
    m_directory.Write("data/CommonClientConf.xml", before);
    exit_vqclient_common();
    ClientProperties::Get();
  };
  const auto save = [&] {
    ClientProperties::Get()->SetStringValue("First", "two", true);
    ClientProperties::Get()->Reload();
    return ClientProperties::Get()->GetStringValue("First", "-");
  };
  StartXml();  // for the length of the test
  Sweep("properties", prepare, save, "two one -", [&](const string&) {
    const string after = m_directory.Read("data/CommonClientConf.xml");
    return after == before || after.find("two") != string::npos;
  });
  StopXml();
}

}  // namespace
}  // namespace vq::test
