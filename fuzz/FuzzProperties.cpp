// The client properties file: whatever it contains, reading it is safe. What is saved after a load
// loads again, and saves to the same text, unless it contains what a save does not keep.

#include <fuzz/Require.h>
#include <tests/fixture/Environment.h>
#include <tests/fixture/TemporaryDirectory.h>
#include <vq_client_common/environment/ClientProperties.h>

namespace {

// In the locale's encoding a character that it does not have becomes \x1A.
bool SurvivesSaving(const std::string& text) {
  return text.find("%s") == std::string::npos && text.find('\r') == std::string::npos &&
         text.find('\x1A') == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const vq::test::TemporaryDirectory directory;
  static const vq::test::Variable location("VQ_DATA", directory.Path());
  constexpr char kFile[] = "CommonClientConf.xml";
  directory.Write(kFile, vq::Text(data, size));
  ClientProperties* properties = ClientProperties::Get();
  properties->Reload();
  vq::Require(properties->SaveProperties());
  const std::string saved = directory.Read(kFile);
  properties->Reload();
  vq::Require(properties->SaveProperties());
  vq::Require(!SurvivesSaving(saved) || directory.Read(kFile) == saved);
  return 0;
}
