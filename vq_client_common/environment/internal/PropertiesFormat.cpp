#include <vq_client_common/environment/internal/PropertiesFormat.h>

#include <algorithm>
#include <array>
#include <optional>

#include <support/configuration/SafeFile.h>
#include <support/configuration/SafeXmlParser.h>
#include <support/configuration/XmlPlatform.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/ReplaceFirst.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/XMLString.hpp>

namespace vq {

namespace {

struct Escape {
  char character;
  std::string_view written;
};
constexpr std::array<Escape, 5> kEscapes{{
    {'"', "&quot;"},
    {'&', "&amp;"},
    {'\'', "&apos;"},
    {'<', "&lt;"},
    {'>', "&gt;"},
}};

// Whether a character stands in the table, by its number.
constexpr auto kIsEscaped = [] {
  std::array<bool, 256> isEscaped{};
  for (const Escape& escape : kEscapes) {
    isEscaped[static_cast<unsigned char>(escape.character)] = true;
  }
  return isEscaped;
}();

void AppendEscaped(std::string& text, std::string_view value) {
  std::size_t plainFrom = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (!kIsEscaped[static_cast<unsigned char>(value[i])]) continue;
    text.append(value, plainFrom, i - plainFrom);
    text.append(std::ranges::find(kEscapes, value[i], &Escape::character)->written);
    plainFrom = i + 1;
  }
  text.append(value, plainFrom);
}

void AppendEntry(std::string& text, const std::string& key, const std::string& value) {
  if (key.find("%s") == std::string::npos && value.find("%s") == std::string::npos) {
    text.append("\t<").append(key).append(">");
    AppendEscaped(text, value);
    text.append("</").append(key).append(">\n");
    return;
  }
  // A text that holds the mark catches the next replacement, and a mark stays behind in the closing
  // tag. This is meant: other programs that write the file do the same.
  std::string escaped;
  AppendEscaped(escaped, value);
  std::string line = "\t<%s>%s</%s>\n";
  for (const std::string& by : {key, escaped, key}) ReplaceFirst(line, "%s", by);
  text += line;
}

void AddEntries(const xercesc::DOMDocument& document, PropertiesTable& table) {
  const xercesc::DOMElement* root = document.getDocumentElement();
  if (root == nullptr) return;
  // From sibling to sibling: by index the parser would count from the first each time.
  for (const xercesc::DOMNode* node = root->getFirstChild(); node != nullptr;
       node = node->getNextSibling()) {
    if (node->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) continue;
    // An element without content reads as the empty text, which is what was saved to write it.
    const xercesc::DOMNode* content = node->getFirstChild();
    table.emplace_hint(table.end(), LocalText(node->getNodeName()),
                       content != nullptr ? LocalText(content->getNodeValue()) : std::string());
  }
}

}  // namespace

std::string LocalText(const char16_t* text) {
  if (text == nullptr) return {};
  const std::u16string_view wide(text);
  std::string result(wide.size(), '\0');
  // Encodings of locales have ASCII in common, and converting it one by one saves the way through
  // the converter, which costs more than parsing the element.
  char16_t all = 0;
  for (std::size_t i = 0; i < wide.size(); ++i) {
    all = static_cast<char16_t>(all | wide[i]);
    result[i] = static_cast<char>(wide[i]);
  }
  if (all < 0x80) return result;
  char* local = xercesc::XMLString::transcode(text);
  result = local;
  xercesc::XMLString::release(&local);
  return result;
}

std::string PropertiesText(const PropertiesTable& table) {
  constexpr std::size_t kUsualLine = 64;  // walking the table for the exact size costs more
  std::string text;
  text.reserve((table.size() + 1) * kUsualLine);
  text += "<Properties>\n";
  for (const auto& [key, value] : table) AppendEntry(text, key, value);
  text += "</Properties>";
  return text;
}

bool ParseProperties(std::string_view content, const TDiagFunc& diag, PropertiesTable& table) {
  std::optional<XmlSession> xml;  // a copy of the store may outlive the one that started it
  try {
    xml.emplace();
  } catch (const xercesc::XMLException&) {
    VQ_LOG(diag, 1) << "Error during XML initialization";
    return false;
  }
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(content.data()),
                                          content.size(), u"CommonClientConf.xml");
  try {
    SafeXmlParser parser;
    parser.parse(source);
    if (parser.getErrorCount() != 0) {
      VQ_LOG(diag, 1) << "Args file parsing had errors";
      return false;
    }
    AddEntries(*parser.getDocument(), table);
    return true;
  } catch (const xercesc::XMLException& failure) {
    VQ_LOG(diag, 1) << "An error occurred during parsing. Message: "
                    << LocalText(failure.getMessage());
    return false;
  } catch (const xercesc::DOMException& failure) {
    VQ_LOG(diag, 1) << "DOM Error during parsing.DOMException code is: "
                    << static_cast<int>(failure.code);
    constexpr XMLSize_t kLongest = 2047;
    std::array<XMLCh, kLongest + 1> message{};
    if (xercesc::DOMImplementation::loadDOMExceptionMsg(failure.code, message.data(), kLongest)) {
      VQ_LOG(diag, 1) << "Message is: " << LocalText(message.data());
    }
    return false;
  } catch (...) {
    VQ_LOG(diag, 1) << "An error occurred during parsing.";
    throw;
  }
}

bool ReadProperties(const std::string& path, const TDiagFunc& diag, PropertiesTable& table) {
  std::string content;
  std::string error;
  if (ReadFile(path, kLargestPropertiesFile, content, error) != ReadResult::Read) {
    VQ_LOG(diag, 1) << "Args file parsing had errors";
    return false;
  }
  return ParseProperties(content, diag, table);
}

}  // namespace vq
