// The n-th allocation fails, for every n that an operation has: it ends with std::bad_alloc or with
// one of its documented failures, leaves what it works on whole, and works afterwards.
//
// What fails are allocations of the calling thread. Those that the ORB product and Xerces-C make,
// or have made while they work, do not: they are not made to go on after one.

#include <tests/fixture/SessionFixture.h>

#include <dlfcn.h>
#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <new>
#include <sstream>

#include <support/configuration/Xml.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/datacenters/TArchive.h>
#include <vq_client_common/environment/ClientProperties.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/LoginHandler.h>

namespace {

thread_local bool counts = false;
thread_local bool goesOn = false;  // those behind it fail as well
thread_local long failing = 0, made = 0, failed = 0;

bool IsForeign(void* code) {
  dl_find_object found;
  if (_dl_find_object(code, &found) != 0) return false;
  const std::string_view name = found.dlfo_link_map->l_name;
  constexpr std::string_view kForeign[] = {"libomni", "libTAO", "libACE", "libxerces"};
  return std::any_of(std::begin(kForeign), std::end(kForeign),
                     [&](std::string_view part) { return name.find(part) != name.npos; });
}

bool Fails(void* caller) {
  if (!counts || IsForeign(caller)) return false;  // the first frame is cheaper to have than all
  void* frames[64];
  const int depth = backtrace(frames, std::size(frames));
  if (std::any_of(frames, frames + depth, IsForeign)) return false;
  ++made;
  if (made < failing || (made > failing && !goesOn)) return false;
  ++failed;
  return true;
}

void* Allocate(std::size_t size, std::size_t alignment, void* caller) {
  if (Fails(caller)) return nullptr;
  return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* AllocateOrRaise(std::size_t size, std::size_t alignment, void* caller) {
  void* const memory = Allocate(size == 0 ? 1 : size, alignment, caller);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

constexpr std::size_t kUsual = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

}  // namespace

#define VQ_CALLER __builtin_return_address(0)
// clang-format off
void* operator new(std::size_t size) { return AllocateOrRaise(size, kUsual, VQ_CALLER); }
void* operator new[](std::size_t size) { return AllocateOrRaise(size, kUsual, VQ_CALLER); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return AllocateOrRaise(size, static_cast<std::size_t>(alignment), VQ_CALLER);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return AllocateOrRaise(size, static_cast<std::size_t>(alignment), VQ_CALLER);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size == 0 ? 1 : size, kUsual, VQ_CALLER);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size == 0 ? 1 : size, kUsual, VQ_CALLER);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
// clang-format on

namespace vq::test {
namespace {

using std::string;

struct Operation {
  const char* name;
  std::function<void()> prepare;                     // brings about the state in which it is called
  std::function<string()> run;                       // its outcome
  std::function<void(const string& outcome)> check;  // what it left behind, when it failed or not
  string success;
  string failures;  // outcomes that are documented, beside success and bad_alloc
};

class AllocationTest : public SessionFixture {
 protected:
  // Runs it with the n-th allocation failing. The outcome, and whether there was an n-th.
  static std::pair<string, bool> RunFailing(const Operation& operation, long n, bool allBehindIt) {
    string outcome;
    failing = n;
    made = failed = 0;
    goesOn = allBehindIt;
    counts = true;
    try {
      outcome = operation.run();
      counts = false;
    } catch (const std::bad_alloc&) {
      counts = false;
      outcome = "bad_alloc";
    }
    return {outcome, failed > 0};
  }

  static void Sweep(const Operation& operation) {
    for (const bool allBehindIt : {false, true}) {
      long n = 1;
      for (;; ++n) {
        SCOPED_TRACE(operation.name + string(" ") + std::to_string(n) + (allBehindIt ? "+" : ""));
        operation.prepare();
        const auto [outcome, hasFailed] = RunFailing(operation, n, allBehindIt);
        operation.check(outcome);
        if (!hasFailed) {
          EXPECT_EQ(outcome, operation.success);
          break;
        }
        const bool isKnown =
            outcome == operation.success || outcome == "bad_alloc" ||
            (" " + operation.failures + " ").find(" " + outcome + " ") != string::npos;
        EXPECT_TRUE(isKnown) << outcome;
        operation.prepare();
        EXPECT_EQ(operation.run(), operation.success) << "afterwards";
        if (HasFailure()) return;
      }
      EXPECT_GT(n, 1) << "nothing is allocated";
      std::cout << operation.name << ": " << n - 1 << " allocations"
                << (allBehindIt ? ", and all behind the n-th\n" : "\n");
    }
  }
};

TEST_F(AllocationTest, Sessions) {
  nlohmann::json site = BaseSite();
  site["users"]["alice"].merge_patch(nlohmann::json::parse(R"({
    "privileges": {"ALERT_PRIV_TYPE": "FULL_ACCESS"},
    "grants": {"calendars": [{"criteria": "NAME LIKE 'A*'", "level": "FULL_ACCESS"}],
               "services": [{"criteria": "NAME = 'S'", "level": "BROWSE_ACCESS", "actions": [1, 2]}]}
  })"));
  StartServer(site);
  InstallClient("8.0.05", "P1");
  TDiag::Instance()->SetMinimumDebugLevel(5);  // at 6 omniORB tells of every byte
  QCSObject calendar;
  calendar.SetAttribute("NAME", "ANY");

  const auto login = [&] { return std::to_string(Login()); };
  const auto connectedAsTold = [&](const string& outcome) {
    EXPECT_EQ(LoginHandler::GetGlobal()->IsConnected(), outcome == "1") << m_log.Text();
  };
  const auto loggedIn = [&] {
    GL_LogOut(false);
    m_log.Clear();
    ASSERT_EQ(Login(), 1) << m_log.Text();
  };
  const auto nothing = [](const string&) {};

  Sweep({"login with a new ORB", [] { GL_LogOut(true); }, login, connectedAsTold, "1", "0 54 55"});
  Sweep({"login", [] { GL_LogOut(false); }, login, connectedAsTold, "1", "0 54"});
  Sweep({"second login", loggedIn, login, nothing, "1", "0 54"});
  const auto postLogin = [] {
    string message;
    return std::to_string(GL_PostLogin(message));
  };
  Sweep({"post-login", loggedIn, postLogin, nothing, "1", "0"});
  Sweep({"authorizations", loggedIn,
         [&] {
           const string userId = LoginHandler::GetGlobal()->GetUserID();
           return std::to_string(UserAuthorizations::Get()->LoadAuthorizations(userId));
         },
         [&](const string& outcome) {
           const UserAuthorizations& may = *UserAuthorizations::Get();
           const bool mayUse = may.IsCalendarAccessAllowed(calendar, BROWSE_ACCESS);
           const bool loaded = mayUse && may.IsAlertsAccessAllowed(FULL_ACCESS);
           EXPECT_TRUE(loaded || outcome != "1");
         },
         "1", "0 23"});
  Sweep({"log-out", loggedIn, [] { return std::to_string(GL_LogOut(false)); }, nothing, "1", ""});
}

TEST_F(AllocationTest, Properties) {
  const string path = m_directory / "data/CommonClientConf.xml";
  m_environment.Set("VQ_DATA", m_directory / "data");
  const string is = "two & more than fits";
  const string before =
      "<Properties>\n\t<First>one</First>\n\t<Second>two &amp; more than fits</Second>\n"
      "</Properties>\n";
  const auto fresh = [&] {
    m_directory.Write("data/CommonClientConf.xml", before);
    exit_vqclient_common();
  };
  const auto loaded = [&] {
    fresh();
    ClientProperties::Get();
  };
  StartXml();  // for the length of the test
  const auto second = [] { return ClientProperties::Get()->GetStringValue("Second", "none"); };
  const auto unchanged = [&](const string&) { EXPECT_EQ(second(), is); };

  Sweep({"properties: first use", fresh, second, unchanged, is, ""});
  Sweep({"properties: read", loaded, second, unchanged, is, ""});
  Sweep({"properties: reload", loaded,
         [&] {
           ClientProperties::Get()->Reload();
           return second();
         },
         [&](const string& outcome) {  // empty when it failed
           const string first = ClientProperties::Get()->GetStringValue("First", "none");
           EXPECT_EQ(first == "one", second() == is) << outcome;
         },
         is, "none"});
  Sweep({"properties: set and save", loaded,
         [&] {
           ClientProperties::Get()->SetStringValue("Second", "three", true);
           return second();
         },
         [&](const string& outcome) {
           EXPECT_TRUE(second() == is || second() == "three") << outcome;
           const string after = ReadFile(path);
           EXPECT_TRUE(after == before || after.find("three") != string::npos) << after;
         },
         "three", ""});
  StopXml();
}

TEST_F(AllocationTest, Archives) {
  const auto unlessRefused = [](const std::function<string()>& run) {
    return [run]() -> string {
      try {
        return run();
      } catch (const TArchiveException&) {
        return "refused";
      }
    };
  };
  std::stringstream stored;
  const string longText(100, 'x');
  const auto store = [&] {
    TArchive archive(&stored, 0, 0, nullptr);
    archive << longText << 8004 << true << 1.5;
    return "stored";
  };
  const auto emptied = [&] {
    stored.str("");
    stored.clear();
  };
  Sweep(
      {"archive: store", emptied, unlessRefused(store), [](const string&) {}, "stored", "refused"});
  string text;
  std::stringstream stream;
  const auto load = [&] {
    TArchive archive(&stream, 1, 0, nullptr);
    int port = 0;
    bool enabled = false;
    archive >> text >> port >> enabled;
    return std::to_string(port) + std::to_string(enabled);
  };
  Sweep({"archive: load",
         [&] {
           std::stringstream(stored.str()).swap(stream);
           string().swap(text);
         },
         unlessRefused(load),
         [&](const string& outcome) { EXPECT_EQ(text, outcome == "80041" ? longText : text); },
         "80041", "refused"});
}

}  // namespace
}  // namespace vq::test
