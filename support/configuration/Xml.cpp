#include <support/configuration/Xml.h>

#include <mutex>

#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace vq {

namespace {

// Usable in the constructors and destructors of static objects, since it has neither.
constinit std::mutex mutex;

bool IsAllowedInXml(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (xercesc::XMLChar1_0::isXMLChar(text[i])) continue;
    if (i + 1 == text.size() || !xercesc::XMLChar1_0::isXMLChar(text[i], text[i + 1])) return false;
    ++i;
  }
  return true;
}

}  // namespace

void StartXml() {
  const std::lock_guard lock(mutex);
  xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale);
}

void StopXml() {
  const std::lock_guard lock(mutex);
  xercesc::XMLPlatformUtils::Terminate();
}

void KeepXmlStarted() {
  [[maybe_unused]] static const bool kStarted = (StartXml(), true);
}

SafeXmlParser::SafeXmlParser() {
  setValidationScheme(Val_Never);
  setDoNamespaces(false);
  setDoSchema(false);
  setLoadExternalDTD(false);
  setDisableDefaultEntityResolution(true);
}

void SafeXmlParser::doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId,
                                const XMLCh* systemId, bool hasInternalSubset,
                                bool hasExternalSubset) {
  if (hasInternalSubset) {
    m_hasRefusedSubset = true;
    // The scanner treats it as a fatal error of the document and stops.
    ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_NoDTDValidator,
                       getMemoryManager());
  }
  XercesDOMParser::doctypeDecl(root, publicId, systemId, hasInternalSubset, hasExternalSubset);
}

std::optional<std::u16string> XmlFromUtf8(std::string_view text) {
  if (text.empty()) return std::u16string();
  try {
    const xercesc::TranscodeFromStr wide(reinterpret_cast<const XMLByte*>(text.data()), text.size(),
                                         "UTF-8");
    std::u16string result(wide.str(), wide.length());
    if (!IsAllowedInXml(result)) return std::nullopt;
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
