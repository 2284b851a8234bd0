// Loading an archive: whatever the bytes, it is safe, and it gives the same values and fails at the
// same place whether the stream has all bytes in memory or one at a time.
//
// The first byte chooses the decrypt type, the second the order of the values; the rest is the
// stream.

#include <array>
#include <iostream>
#include <streambuf>
#include <type_traits>
#include <utility>

#include <fuzz/Require.h>
#include <vq_client_common/datacenters/TArchive.h>

namespace {

class Bytes : public std::streambuf {
 public:
  Bytes(std::string bytes, bool byteWise)
      : m_bytes(std::move(bytes)), m_step(byteWise ? 1 : m_bytes.size()) {}

 protected:
  int_type underflow() override {
    if (m_next == m_bytes.size()) return traits_type::eof();
    char* const begin = m_bytes.data() + m_next;
    m_next += m_step;
    setg(begin, begin, begin + m_step);
    return traits_type::to_int_type(*begin);
  }

 private:
  std::string m_bytes;
  std::size_t m_step;
  std::size_t m_next = 0;
};

template <typename T>
void Load(TArchive& archive, std::string& seen) {
  T value{};
  archive >> value;
  if constexpr (std::is_same_v<T, std::string>) {
    seen += value + '|';
  } else {
    seen += std::to_string(value) + '|';
  }
}

// What a program sees that loads values until the archive fails.
std::string Seen(std::string bytes, bool byteWise, int type, unsigned order) {
  constexpr std::array kLoads = {Load<std::string>,    Load<unsigned long>, Load<double>,
                                 Load<long>,           Load<bool>,          Load<char>,
                                 Load<unsigned short>, Load<float>};
  Bytes buffer(std::move(bytes), byteWise);
  std::iostream stream(&buffer);
  TArchive archive(&stream, 1, 0, nullptr);
  archive.SetDecryptType(type);
  std::string seen;
  try {
    for (unsigned i = 0; i < 1000; ++i) {
      kLoads[(order >> (3 * (i % 2))) % kLoads.size()](archive, seen);
      if (order >= 192 && i % 2 == 0) archive.Ignore();
    }
  } catch (const TArchiveException&) {
    seen += "failed";
  }
  return seen;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const int type = data[0] % 5;
  const std::string bytes = vq::Text(data + 2, size - 2);
  vq::Require(Seen(bytes, false, type, data[1]) == Seen(bytes, true, type, data[1]));
  return 0;
}
