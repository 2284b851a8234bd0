// The file of a configuration domain: whatever it contains, reading it is safe, and one that is
// accepted keeps its meaning when it is written and read again.

#include <fuzz/Require.h>
#include <support/configuration/ConfigDocument.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vq::ConfigDocument document;
  std::string error;
  if (!document.Parse(vq::Text(data, size), error)) {
    vq::Require(!error.empty());
    return 0;
  }

  using Kind = vq::ConfigChange::Kind;
  document.Apply({Kind::kSetVar, "default", "-BiDirPolicy", "<1>\r\n"});
  document.Apply({Kind::kRemoveVar, "default", "-PreferIPMask", {}});
  document.Apply({Kind::kRemoveScope, "Test1", {}, {}});
  const auto written = document.Text();
  vq::ConfigDocument again;
  vq::Require(written && again.Parse(*written, error) && again.Scopes() == document.Scopes());
  return 0;
}
