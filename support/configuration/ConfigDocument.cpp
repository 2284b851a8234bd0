#include <support/configuration/ConfigDocument.h>

#include <support/configuration/Xml.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace vq {

namespace {

using xercesc::DOMElement;
using xercesc::DOMNode;

// Keeps the first error of a parse.
class FirstError : public xercesc::HandlerBase {
 public:
  void error(const xercesc::SAXParseException& found) override { Keep(found); }
  void fatalError(const xercesc::SAXParseException& found) override { Keep(found); }
  const std::string& Text() const { return m_text; }

 private:
  void Keep(const xercesc::SAXParseException& found) {
    if (!m_text.empty()) return;
    m_text = "line " + std::to_string(found.getLineNumber()) + ", column " +
             std::to_string(found.getColumnNumber()) + ": " + Utf8FromXml(found.getMessage());
  }
  std::string m_text;
};

template <class Object>
std::unique_ptr<Object, CallRelease> Released(Object* object) {
  return std::unique_ptr<Object, CallRelease>(object);
}

xercesc::DOMImplementation* Implementation() {
  return xercesc::DOMImplementationRegistry::getDOMImplementation(u"LS");
}

bool HasTag(const DOMElement* element, const char16_t* tag) {
  return xercesc::XMLString::equals(element->getTagName(), tag);
}

// True when elements are nested more than `limit` deep. The XML library recurses when it collects
// text and when it writes, so a document must not be any deeper.
bool IsDeeperThan(int limit, const DOMNode* root) {
  int depth = 0;
  for (const DOMNode* node = root; node != nullptr && depth <= limit;) {
    if (const DOMNode* child = node->getFirstChild()) {
      node = child;
      ++depth;
      continue;
    }
    while (node != root && node->getNextSibling() == nullptr) {
      node = node->getParentNode();
      --depth;
    }
    node = node == root ? nullptr : node->getNextSibling();
  }
  return depth > limit;
}

constexpr char kNoDoctype[] = "a document type declaration is not allowed";

// Why a well-formed document is no configuration domain; empty when it is one.
std::string Objection(const xercesc::DOMDocument& document) {
  constexpr int kDeepest = 100;
  if (document.getDoctype() != nullptr) return kNoDoctype;
  const DOMElement* root = document.getDocumentElement();
  if (root == nullptr || !HasTag(root, u"domain")) return "the root is no <domain>";
  return IsDeeperThan(kDeepest, root) ? "the elements are nested too deep" : "";
}

// The next one from `element` on among its siblings that has this tag and a name.
DOMElement* NextNamed(DOMElement* element, const char16_t* tag) {
  while (element != nullptr &&
         (!HasTag(element, tag) || *element->getAttribute(u"name") == u'\0')) {
    element = element->getNextElementSibling();
  }
  return element;
}

// The first child with this tag and name.
DOMElement* Find(DOMElement* parent, const char16_t* tag, const std::u16string& name) {
  DOMElement* element = NextNamed(parent->getFirstElementChild(), tag);
  while (element != nullptr && element->getAttribute(u"name") != name) {
    element = NextNamed(element->getNextElementSibling(), tag);
  }
  return element;
}

bool IsBlank(const DOMNode* node) {
  return node != nullptr && node->getNodeType() == DOMNode::TEXT_NODE &&
         std::u16string_view(node->getNodeValue()).find_first_not_of(u" \t\r\n") ==
             std::u16string_view::npos;
}

// Appends an element on a line of its own, in a parent at this depth.
DOMElement* Append(DOMElement* parent, std::size_t depth, const char16_t* tag,
                   const std::u16string& name) {
  xercesc::DOMDocument* document = parent->getOwnerDocument();
  const std::u16string line = u"\n" + std::u16string(2 * (depth + 1), u' ');
  const std::u16string lastLine = u"\n" + std::u16string(2 * depth, u' ');
  DOMElement* element = document->createElement(tag);
  element->setAttribute(u"name", name.c_str());
  if (IsBlank(parent->getLastChild())) parent->removeChild(parent->getLastChild())->release();
  parent->appendChild(document->createTextNode(line.c_str()));
  parent->appendChild(element);
  parent->appendChild(document->createTextNode(lastLine.c_str()));
  return element;
}

// Removes every element of this tag and name, with its line.
void RemoveAll(DOMElement* parent, const char16_t* tag, const std::u16string& name) {
  while (DOMElement* element = Find(parent, tag, name)) {
    if (IsBlank(element->getPreviousSibling())) {
      parent->removeChild(element->getPreviousSibling())->release();
    }
    parent->removeChild(element)->release();
  }
}

}  // namespace

ConfigDocument::ConfigDocument() {
  KeepXmlStarted();
  m_document.reset(Implementation()->createDocument(nullptr, u"domain", nullptr));
}

ConfigDocument::~ConfigDocument() = default;

bool ConfigDocument::Parse(std::string_view text, std::string& error) {
  FirstError firstError;
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()),
                                          text.size(), u"domain");
  SafeXmlParser parser;
  parser.setErrorHandler(&firstError);
  const bool isRead = WithXml(error, [&] {
    parser.parse(source);
    return true;
  });
  if (!isRead) return false;
  error = parser.HasRefusedSubset() ? kNoDoctype : firstError.Text();
  if (error.empty() && parser.getErrorCount() == 0) error = Objection(*parser.getDocument());
  if (!error.empty()) return false;
  m_document.reset(parser.adoptDocument());
  return true;
}

ConfigScopes ConfigDocument::Scopes() const {
  ConfigScopes scopes;
  DOMElement* root = m_document->getDocumentElement();
  for (DOMElement* scope = NextNamed(root->getFirstElementChild(), u"scope"); scope != nullptr;
       scope = NextNamed(scope->getNextElementSibling(), u"scope")) {
    const auto [at, isFirst] = scopes.try_emplace(Utf8FromXml(scope->getAttribute(u"name")));
    if (!isFirst) continue;
    for (DOMElement* var = NextNamed(scope->getFirstElementChild(), u"var"); var != nullptr;
         var = NextNamed(var->getNextElementSibling(), u"var")) {
      at->second.try_emplace(Utf8FromXml(var->getAttribute(u"name")),
                             Utf8FromXml(var->getTextContent()));
    }
  }
  return scopes;
}

void ConfigDocument::Apply(const ConfigChange& change) {
  const std::u16string scopeName = XmlFromUtf8(change.scope).value();
  const std::u16string name = XmlFromUtf8(change.name).value();
  const std::u16string value = XmlFromUtf8(change.value).value();
  DOMElement* root = m_document->getDocumentElement();
  DOMElement* scope = Find(root, u"scope", scopeName);
  switch (change.kind) {
    case ConfigChange::Kind::kSetVar: {
      if (scope == nullptr) scope = Append(root, 0, u"scope", scopeName);
      DOMElement* var = Find(scope, u"var", name);
      if (var == nullptr) var = Append(scope, 1, u"var", name);
      var->setTextContent(value.c_str());
      break;
    }
    case ConfigChange::Kind::kRemoveVar:
      if (scope != nullptr) RemoveAll(scope, u"var", name);
      break;
    case ConfigChange::Kind::kRemoveScope:
      RemoveAll(root, u"scope", scopeName);
      break;
  }
}

std::optional<std::string> ConfigDocument::Text() const {
  const auto serializer = Released(Implementation()->createLSSerializer());
  serializer->getDomConfig()->setParameter(xercesc::XMLUni::fgDOMXMLDeclaration, false);
  serializer->setNewLine(u"\n");
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  // One by one, because line ends between comments and the root are not part of the document.
  for (DOMNode* node = m_document->getFirstChild(); node != nullptr;
       node = node->getNextSibling()) {
    const auto output = Released(Implementation()->createLSOutput());
    xercesc::MemBufFormatTarget target;
    output->setEncoding(u"UTF-8");
    output->setByteStream(&target);
    if (!serializer->write(node, output.get())) return std::nullopt;
    text.append(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()) += '\n';
  }
  return text;
}

}  // namespace vq
