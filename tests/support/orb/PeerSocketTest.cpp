#include <support/orb/PeerSocket.h>

#include <string>

#include <sys/socket.h>
#include <unistd.h>

#include <tests/fixture/UnitTest.h>

namespace vq::orb {
namespace {

TEST(PeerSocketTest, DistinguishesACloseFromCallsAndTheMiddleOfARecord) {
  const std::string content(26, 'x');
  const struct {
    const char* name;
    bool isTls;
    std::string bytes;
    bool isClose;
  } kRows[] = {
      {"CloseConnection", false, {'G', 'I', 'O', 'P', 1, 2, 1, 5, 0, 0, 0, 0}, true},
      {"a call", false, {'G', 'I', 'O', 'P', 1, 2, 1, 0, 14, 0, 0, 0}, false},
      {"an alert", true, std::string{21, 3, 3, 0, 26} + content, true},
      {"an alert of TLS 1.3", true, std::string{23, 3, 3, 0, 19} + content, true},
      {"a call, encrypted", true, std::string{23, 3, 3, 0, 26} + content, false},
      {"the middle of a record", true, std::string{21, '\x91', '\xca', 3, '\xa2'} + content, false},
      {"the middle, like a version", true, std::string{21, 3, 3, '\xca', 0} + content, false}};
  for (const auto& row : kRows) {
    int sockets[2] = {};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, sockets), 0);
    const auto length = static_cast<ssize_t>(row.bytes.size());
    ASSERT_EQ(::send(sockets[1], row.bytes.data(), row.bytes.size(), 0), length);
    EXPECT_EQ(BeginsWithClose(sockets[0], row.isTls), row.isClose) << row.name;
    ::close(sockets[0]);
    ::close(sockets[1]);
  }
}

}  // namespace
}  // namespace vq::orb
