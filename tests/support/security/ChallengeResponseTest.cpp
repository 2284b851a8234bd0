// The expected texts were computed by another implementation of SHA-256, HMAC and base64url.
#include <support/security/ChallengeResponse.h>

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(ChkSumTest, KnownAnswers) {
  const struct {
    std::string text;
    const char* expected;
  } kRows[] = {
      {"", "47DEQpj8HBSa-_TImW-5JCeuQeRkm5NMpJWZG3hSuFU"},
      {"secret", "K7gNU3sdo-OL0wNhqoVWhr3g6s1xYv72ol_pe_Unols"},
      {std::string("\0\xff", 2) + std::string(100, 'x'),
       "_-LTu1wZ5My8uVxj-J34w9xXkk8cnwmcVQScpobj_NM"},
  };
  for (const auto& row : kRows) {
    std::string result = "left over";
    ChkSum(row.text, result);
    EXPECT_EQ(result, row.expected);
  }
}

TEST(MakeChallengeResponseTest, KnownAnswers) {
  const struct {
    std::string first, second, password;
    const char* expected;
  } kRows[] = {
      {"", "", "", "853c7403937d8b6239569b184eb7993fc5f751aefcea28f2c863858e2d29c50b"},
      {"4711", "0815", "secret",
       "b58f788dcb6393b6459eb6b11eda806e555723ef1a982b9c7cb6695026479505"},
      {"4711", "0815", "K7gNU3sd",
       "ee11e07bcf19ad85d730cfc0887f61dc3ed7d033958a4e63190adc57b0de1b8e"},
      {"ab", "c", "pw", "27b328dc13a7329b70013fb1b8f588e8bb5793e324d09c9a2c5c672382be0d19"},
      {"a", "bc", "pw", "13871503031044f6945a4591a989bd3babd985b9f7a0c12cd03df5d933fd22b0"},
      {std::string("\0\n", 2), std::string(300, '\xff'), std::string(100, 'k'),
       "bc2100055619f8d470103d66408d59ae325ea1a704493e85981c5275081284ae"},
  };
  for (const auto& row : kRows) {
    std::string response = "left over";
    MakeChallengeResponse(row.first, row.second, row.password, response);
    EXPECT_EQ(response, row.expected);
  }
}

TEST(MakeChallengeResponseTest, TheResponseMayReplaceThePassword) {
  std::string password = "secret";
  MakeChallengeResponse("4711", "0815", password, password);
  EXPECT_EQ(password, "b58f788dcb6393b6459eb6b11eda806e555723ef1a982b9c7cb6695026479505");
}

}  // namespace
