#include <vq_client_common/environment/ClientProperties.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include <support/configuration/SafeFile.h>
#include <support/configuration/Xml.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/Locations.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/os_toolkit/Atoi.h>
#include <support/os_toolkit/os_file_system.h>
#include <vq_client_common/environment/XmlHelpers.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/XMLException.hpp>

namespace {

TDiagRegister diagModule("ClientProperties");

constexpr char kHelpPage[] = "\\Help\\Main_Help\\en-US\\index.htm";

std::string PropertiesPath() {
  return GetVQDataLocation() + "CommonClientConf.xml";
}

// Larger files are refused, since parsing takes many times their size in memory.
constexpr std::size_t kLargestFile = std::size_t{64} << 20U;

constexpr std::pair<char, std::string_view> kEntities[] = {
    {'"', "&quot;"}, {'&', "&amp;"}, {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}};

std::string Escaped(const std::string& value) {
  std::string escaped;
  for (const char character : value) {
    const auto* const entity =
        std::ranges::find(kEntities, character, &std::pair<char, std::string_view>::first);
    if (entity != std::end(kEntities)) {
      escaped += entity->second;
    } else {
      escaped += character;
    }
  }
  return escaped;
}

// Intentional: "%s" in a string takes the next replacement, so the closing tag keeps its "%s".
// Other programs that write the file do the same.
std::string EntryLine(const std::string& key, const std::string& value) {
  return vq::Filled("\t<%s>%s</%s>\n", {key, Escaped(value), key});
}

// The text in the encoding of the process's locale. ASCII is the same in all these encodings and is
// copied, since the converter takes more time than parsing the element.
std::string LocalText(const XMLCh* text) {
  std::string ascii;
  for (const XMLCh* at = text; *at != 0; ++at) {
    if (*at >= 0x80) return StrX(text).localForm();
    ascii += static_cast<char>(*at);
  }
  return ascii;
}

// Stores the names of the elements outside the document, whose elements all have one name: the time
// of the XML library's table of names grows with the square of their number.
class PropertiesParser final : public vq::SafeXmlParser {
 public:
  // The entries of the parsed document; the first one of a key that occurs twice.
  std::map<std::string, std::string> Entries() {
    std::map<std::string, std::string> entries;
    const xercesc::DOMElement* root = getDocument()->getDocumentElement();
    for (const xercesc::DOMNode* node = root->getFirstChild(); node != nullptr;
         node = node->getNextSibling()) {
      if (node->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) continue;
      const xercesc::DOMNode* content = node->getFirstChild();
      const XMLCh* value = content != nullptr ? content->getNodeValue() : nullptr;
      entries.emplace(m_names[node], value != nullptr ? LocalText(value) : std::string());
    }
    return entries;
  }

 private:
  xercesc::DOMElement* createElement(const XMLCh* name) override {
    xercesc::DOMElement* element = SafeXmlParser::createElement(u"entry");
    m_names[element] = LocalText(name);
    return element;
  }

  std::unordered_map<const xercesc::DOMNode*, std::string> m_names;
};

}  // namespace

ClientProperties* ClientProperties::g_pClientProperties = nullptr;

ClientProperties* ClientProperties::Get() {
  if (g_pClientProperties == nullptr) g_pClientProperties = new ClientProperties;
  return g_pClientProperties;
}

void ClientProperties::ReleaseStaticObject() {
  if (g_pClientProperties == nullptr) return;
  delete g_pClientProperties;
  g_pClientProperties = nullptr;
  try {
    vq::StopXml();
  } catch (...) {  // nothing can be done at this point
  }
}

ClientProperties::ClientProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::ClientProperties");
  try {
    vq::StartXml();
  } catch (const xercesc::XMLException& failure) {
    VQ_LOG(diag, 1) << "Error during XML initialization" << StrX(failure.getMessage()).localForm();
    return;
  }
  try {
    LoadProperties();
  } catch (...) {
    vq::StopXml();  // without an instance, no release would stop it
    throw;
  }
}

bool ClientProperties::LoadProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::LoadProperties");
  m_properties.clear();
  const std::string path = PropertiesPath();
  if (!os_file_system::exists(path)) {
    VQ_LOG(diag, 1) << "File " << path << "is missing";
    return false;
  }
  // Intentional: a number instead of the path; readers of logs know this form.
  VQ_LOG(diag, 5) << "Parsing client properties file: " << fmt::format("{}", fmt::ptr(&path));
  std::string content;
  std::string error;
  if (vq::ReadFile(path, kLargestFile, content, error) != vq::ReadResult::kRead) {
    VQ_LOG(diag, 1) << "Args file parsing had errors";
    return false;
  }
  try {
    vq::KeepXmlStarted();  // a copy may outlive the instance that started the library
  } catch (const xercesc::XMLException&) {
    VQ_LOG(diag, 1) << "Error during XML initialization";
    return false;
  }
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(content.data()),
                                          content.size(), u"CommonClientConf.xml");
  try {
    PropertiesParser parser;
    parser.parse(source);
    if (parser.getErrorCount() != 0) {
      VQ_LOG(diag, 1) << "Args file parsing had errors";
      return false;
    }
    m_properties = parser.Entries();
    return true;
  } catch (const xercesc::XMLException& failure) {
    VQ_LOG(diag, 1) << "An error occurred during parsing. Message: "
                    << StrX(failure.getMessage()).localForm();
  } catch (const xercesc::DOMException& failure) {
    VQ_LOG(diag, 1) << "DOM Error during parsing.DOMException code is: "
                    << static_cast<int>(failure.code);
    constexpr XMLSize_t kLongest = 2047;
    std::array<XMLCh, kLongest + 1> message{};
    if (xercesc::DOMImplementation::loadDOMExceptionMsg(failure.code, message.data(), kLongest)) {
      VQ_LOG(diag, 1) << "Message is: " << StrX(message.data()).localForm();
    }
  } catch (...) {
    VQ_LOG(diag, 1) << "An error occurred during parsing.";
    throw;
  }
  return false;
}

void ClientProperties::Reload() {
  const TDiagFunc diag(diagModule, "ClientProperties::Reload");
  LoadProperties();
}

std::string ClientProperties::GetStringValue(const std::string& key,
                                             const std::string& defaultValue) {
  const TDiagFunc diag(diagModule, "ClientProperties::GetStringValue");
  const auto found = m_properties.find(key);
  if (found == m_properties.end()) {
    VQ_LOG(diag, 4) << "Parameter: '" << key << "' was not found. using default: '" << defaultValue
                    << "'.";
    return defaultValue;
  }
  VQ_LOG(diag, 5) << vq::Filled("Found Parameter: %s. Value is: %s", {key, found->second});
  return found->second;
}

int ClientProperties::GetIntValue(const std::string& key, int defaultValue) {
  const TDiagFunc diag(diagModule, "ClientProperties::GetIntValue");
  const std::string value = GetStringValue(key, "");
  return value.empty() ? defaultValue : vq::Atoi(value);
}

void ClientProperties::SetStringValue(const std::string& key, const std::string& value, bool save) {
  const TDiagFunc diag(diagModule, "ClientProperties::SetStringValue");
  const auto [at, isNew] = m_properties.insert_or_assign(key, value);
  if (isNew) {
    VQ_LOG(diag, 5) << "New parameter was inserted: " << key;
  } else {
    VQ_LOG(diag, 5) << "Value of Parameter '" << key << "' was set to '" << value << "'";
  }
  if (save) SaveProperties();
}

void ClientProperties::SetIntValue(const std::string& key, int value, bool save) {
  const TDiagFunc diag(diagModule, "ClientProperties::SetIntValue");
  SetStringValue(key, std::to_string(value), save);
}

bool ClientProperties::SaveProperties() {
  const TDiagFunc diag(diagModule, "ClientProperties::SaveProperties");
  std::string text = "<Properties>\n";
  for (const auto& [key, value] : m_properties) text += EntryLine(key, value);
  text += "</Properties>";
  std::FILE* file = std::fopen(PropertiesPath().c_str(), "w+");
  if (file == nullptr) {
    VQ_LOG(diag, 1) << "Parameters file failed to open for saving";
    return false;
  }
  // Printed, not written by its length: readers refuse a file with a zero byte.
  const bool isWritten = std::fprintf(file, "%s\n", text.c_str()) >= 0;
  if (std::fclose(file) != 0) {
    VQ_LOG(diag, 1) << "Parameters file was not closed";
    return false;
  }
  if (!isWritten) {
    VQ_LOG(diag, 1) << "Parameters file was not written";
    return false;
  }
  VQ_LOG(diag, 5) << "Parameters file was updated";
  return true;
}

std::string ClientProperties::HelpFileBuilder(std::string& /*language*/) {
  const TDiagFunc diag(diagModule, "ClientProperties::HelpFileBuilder");
  // Intentional: the language changes nothing; installations have only the English page.
  return kHelpPage;
}

std::string ClientProperties::getHelpFile() {
  const TDiagFunc diag(diagModule, "ClientProperties::getHelpFile");
  // Intentional: the value changes nothing either; it is read for the log.
  GetIntValue("LocalHelpFile", 1);
  return GetVQRootLocation() + kHelpPage;
}
