// The expected texts were computed by another implementation of SHA-256, HMAC and base64url.
#include <support/security/ChallengeResponse.h>

#include <string>

#include <gtest/gtest.h>

namespace {

const std::string kBytes = std::string("\0\xff", 2) + std::string(100, 'x');

TEST(ChkSumTest, KnownAnswers) {
  const std::string kRows[][2] = {{"", "47DEQpj8HBSa-_TImW-5JCeuQeRkm5NMpJWZG3hSuFU"},
                                  {"secret", "K7gNU3sdo-OL0wNhqoVWhr3g6s1xYv72ol_pe_Unols"},
                                  {kBytes, "_-LTu1wZ5My8uVxj-J34w9xXkk8cnwmcVQScpobj_NM"}};
  for (const auto& [text, expected] : kRows) {
    std::string result = text;  // An argument may be the result.
    ChkSum(result, result);
    EXPECT_EQ(result, expected);
  }
}

TEST(MakeChallengeResponseTest, KnownAnswers) {
  const std::string kRows[][4] = {
      {"", "", "", "853c7403937d8b6239569b184eb7993fc5f751aefcea28f2c863858e2d29c50b"},
      {"4711", "0815", "K7gNU3sd",
       "ee11e07bcf19ad85d730cfc0887f61dc3ed7d033958a4e63190adc57b0de1b8e"},
      {"ab", "c", "pw", "27b328dc13a7329b70013fb1b8f588e8bb5793e324d09c9a2c5c672382be0d19"},
      {"a", "bc", "pw", "13871503031044f6945a4591a989bd3babd985b9f7a0c12cd03df5d933fd22b0"},
      {kBytes, "", kBytes, "bac86ced13b567c3f2d0b43c58af16bf0d2f1c24151564ea5176ef802a1ee140"}};
  for (const auto& [first, second, password, expected] : kRows) {
    std::string response = password;
    MakeChallengeResponse(first, second, response, response);
    EXPECT_EQ(response, expected);
  }
}

}  // namespace
