// Any text is read or refused. What is refused changes nothing; what is read gives values that,
// written to a file again, read as the same.

#include <fuzz/Require.h>
#include <support/diagnostics/PasswordFile.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = vq::Text(data, size);
  const std::string untouched = "a\nvalue no line can have";
  std::string user = untouched;
  std::string password = untouched;
  if (!vq::ParsePasswordFile(text, user, password).empty()) {
    vq::Require(user == untouched && password == untouched);
    return 0;
  }
  std::string again;
  if (user != untouched) again += "user=" + user + "\r\n";
  if (password != untouched) again += "password=" + password + "\r\n";
  std::string sameUser = untouched;
  std::string samePassword = untouched;
  vq::Require(vq::ParsePasswordFile(again, sameUser, samePassword).empty());
  vq::Require(sameUser == user && samePassword == password);
  return 0;
}
