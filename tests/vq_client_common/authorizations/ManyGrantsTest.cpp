// The longest lists that a load has to take.
#include <tests/fixture/SessionFixture.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/session/GlobalFuncs.h>

namespace {

using ManyGrants = vq::test::SessionFixture;

// A list of 200,000 is some 10 MB on the wire: a group of 2,000 grants, named a hundred times.
TEST_F(ManyGrants, TwoHundredThousandLoad) {
  nlohmann::json site = vq::test::BaseSite();
  nlohmann::json& grants = site["groups"]["team"]["grants"]["tables"];
  for (int i = 0; i < 2'000; ++i) {
    const std::string name = "TABLE_" + std::to_string(i) + "_*'";
    grants.push_back(
        {{"criteria", "DATACENTER = 'PROD' AND NAME LIKE '" + name}, {"level", "UPDATE_ACCESS"}});
  }
  site["users"]["alice"]["groups"] = std::vector<std::string>(100, "team");
  StartServer(site);
  ASSERT_EQ(Login(), 1) << m_message;
  ASSERT_EQ(GL_PostLogin(m_message), 1) << m_message;
  QCSObject table;
  table.SetAttribute("DATACENTER", "PROD");
  for (const char* name : {"TABLE_1999_X", "TABLE_2000_X"}) {
    table.SetAttribute("NAME", name);
    EXPECT_EQ(UserAuthorizations::Get()->IsSchedTblAccessAllowed(table, UPDATE_ACCESS),
              name[6] == '1');
  }
}

}  // namespace
