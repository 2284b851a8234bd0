#include <vq_client_common/environment/internal/PropertiesFormat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <support/configuration/SafeFile.h>
#include <support/configuration/SafeXmlParser.h>
#include <support/configuration/XmlPlatform.h>
#include <support/diagnostics/TDiag.h>
#include <support/foundations/ReplaceFirst.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
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

// What is written for a character of a value. All of it has a fixed size, so that it is copied
// without looking what it is, and what follows overwrites the rest.
struct Written {
  std::array<char, 7> text{};
  std::uint8_t size = 1;
};
constexpr std::size_t kLongestWritten = 6;
constexpr auto kWritten = [] {
  std::array<Written, 256> written{};
  for (std::size_t i = 0; i < written.size(); ++i) written[i].text[0] = static_cast<char>(i);
  for (const Escape& escape : kEscapes) {
    Written& at = written[static_cast<unsigned char>(escape.character)];
    std::ranges::copy(escape.written, at.text.begin());
    at.size = static_cast<std::uint8_t>(escape.written.size());
  }
  return written;
}();

// Memory to write a line in, used again from line to line. It is not cleared, so that the room
// which a long value does not need costs nothing.
class Room {
 public:
  char* Of(std::size_t size) {
    if (size > m_size) {
      m_memory = std::make_unique_for_overwrite<char[]>(2 * size);
      m_size = 2 * size;
    }
    return m_memory.get();
  }

 private:
  std::unique_ptr<char[]> m_memory;
  std::size_t m_size = 0;
};

// Each writes at `to` and returns the end. WriteEscaped needs room for kLongestWritten times the
// value and for one Written more.
char* WriteEscaped(char* to, std::string_view value) {
  for (const char character : value) {
    const Written& written = kWritten[static_cast<unsigned char>(character)];
    std::memcpy(to, &written, sizeof written);
    to += written.size;
  }
  return to;
}
char* Write(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());  // std::ranges::copy would go byte by byte
  return to + text.size();
}

void AppendEntry(std::string& text, const std::string& key, const std::string& value, Room& room) {
  char* const line = room.Of(2 * key.size() + kLongestWritten * value.size() + 2 * sizeof(Written));
  char* end = Write(Write(Write(line, "\t<"), key), ">");
  end = WriteEscaped(end, value);
  end = Write(Write(Write(end, "</"), key), ">\n");
  text.append(line, static_cast<std::size_t>(end - line));
}

// A text that holds the mark catches the next replacement, and a mark stays behind in the closing
// tag. This is meant: other programs that write the file do the same.
void AppendReplacedEntry(std::string& text, const std::string& key, const std::string& value,
                         Room& room) {
  char* const line = room.Of(kLongestWritten * value.size() + sizeof(Written));
  const std::string escaped(line, WriteEscaped(line, value));
  std::string entry = "\t<%s>%s</%s>\n";
  for (const std::string& by : {key, escaped, key}) ReplaceFirst(entry, "%s", by);
  text += entry;
}

using EntryWriter = decltype(AppendEntry);
std::string TextOf(const PropertiesTable& table, EntryWriter* append) {
  constexpr std::size_t kUsualLine = 128;  // walking the table for the exact size costs more
  std::string text;
  text.reserve((table.size() + 1) * kUsualLine);
  text += "<Properties>\n";
  Room room;
  for (const auto& [key, value] : table) append(text, key, value, room);
  text += "</Properties>";
  return text;
}

// Makes a document of what counts: the elements in the root and what stands in them. Text between
// them is left out, because the line ends there would be half of all nodes, and so are attributes.
// Names are kept beside the document, in which all elements below the root have the same one: the
// XML library's table of a document's names does not grow, and each new name would be compared with
// more of those before.
class PropertiesParser final : public SafeXmlParser {
 public:
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t /*attributeCount*/, bool isEmpty, bool isRoot) override {
    SafeXmlParser::startElement(declaration, uri, prefix, attributes, 0, isEmpty, isRoot);
  }
  void docCharacters(const XMLCh* characters, XMLSize_t length, bool isCdata) override {
    if (fCurrentParent == Root()) return;
    SafeXmlParser::docCharacters(characters, length, isCdata);
  }

  // Adds the entries, which the parser lets go of.
  void MoveEntries(PropertiesTable& table) {
    if (Root() == nullptr) return;
    auto key = m_keys.begin();
    // From sibling to sibling: by index the parser would count from the first each time.
    for (const xercesc::DOMNode* node = Root()->getFirstChild(); node != nullptr;
         node = node->getNextSibling()) {
      if (node->getNodeType() != xercesc::DOMNode::ELEMENT_NODE) continue;
      // An element without content reads as the empty text, which is what was saved to write it.
      const xercesc::DOMNode* content = node->getFirstChild();
      table.emplace_hint(table.end(), std::move(*key++),
                         content != nullptr ? LocalText(content->getNodeValue()) : std::string());
    }
  }

 private:
  xercesc::DOMElement* createElement(const XMLCh* name) override {
    if (Root() == nullptr) return SafeXmlParser::createElement(name);
    if (fCurrentParent == Root()) m_keys.push_back(LocalText(name));
    return SafeXmlParser::createElement(u"entry");
  }
  xercesc::DOMElement* Root() { return getDocument()->getDocumentElement(); }

  std::vector<std::string> m_keys;  // of the elements in the root, in their order
};

}  // namespace

std::string LocalText(const char16_t* text) {
  if (text == nullptr) return {};
  // Encodings of locales have ASCII in common, and copying it saves the way through the converter,
  // which costs more than parsing the element.
  char16_t all = 0;
  const char16_t* end = text;
  for (; *end != u'\0'; ++end) all = static_cast<char16_t>(all | *end);
  if (all < 0x80) return {text, end};
  const auto release = [](char* local) { xercesc::XMLString::release(&local); };
  const std::unique_ptr<char, decltype(release)> local(xercesc::XMLString::transcode(text));
  return local.get();
}

std::string PropertiesText(const PropertiesTable& table) {
  std::string text = TextOf(table, AppendEntry);
  // Hardly a table holds the mark of the replacement, and one look over the whole text costs less
  // than one at each key and value. Nothing of an entry but these two can hold it.
  if (text.find("%s") != std::string::npos) text = TextOf(table, AppendReplacedEntry);
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
    PropertiesParser parser;
    parser.parse(source);
    if (parser.getErrorCount() != 0) {
      VQ_LOG(diag, 1) << "Args file parsing had errors";
      return false;
    }
    parser.MoveEntries(table);
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
