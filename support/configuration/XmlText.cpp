#include <support/configuration/XmlText.h>

#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLException.hpp>

namespace vq {

namespace {

bool EveryCharacterMayStand(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (xercesc::XMLChar1_0::isXMLChar(text[i])) continue;
    if (i + 1 == text.size() || !xercesc::XMLChar1_0::isXMLChar(text[i], text[i + 1])) return false;
    ++i;
  }
  return true;
}

}  // namespace

std::optional<std::u16string> XmlFromUtf8(std::string_view text) {
  if (text.empty()) return std::u16string();
  try {
    const xercesc::TranscodeFromStr wide(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                         "UTF-8");
    std::u16string result(wide.str(), wide.length());
    if (!EveryCharacterMayStand(result)) return std::nullopt;
    return result;
  } catch (const xercesc::XMLException&) {
    return std::nullopt;
  }
}

std::string Utf8FromXml(const char16_t* text) {
  if (text == nullptr || *text == u'\0') return {};
  const xercesc::TranscodeToStr narrow(text, "UTF-8");
  return {reinterpret_cast<const char*>(narrow.str()), narrow.length()};
}

}  // namespace vq
