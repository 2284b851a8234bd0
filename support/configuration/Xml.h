// The XML library (Xerces), as this library uses it: started and stopped under a lock, a parser for
// untrusted documents, and strings in UTF-8.
//
//   vq::KeepXmlStarted();
//   vq::SafeXmlParser parser;
//   parser.parse(source);
//   if (parser.getErrorCount() != 0) ...
//   const auto name = vq::XmlFromUtf8("default");
#ifndef VQ_SUPPORT_CONFIGURATION_XML_H
#define VQ_SUPPORT_CONFIGURATION_XML_H

#include <optional>
#include <string>
#include <string_view>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLException.hpp>

namespace vq {

// Starts Xerces with its default locale. Throws the XMLException of a start that fails. Xerces
// counts how often it was started, but without a lock, so everything in this library starts and
// stops it here.
void StartXml();

// Undoes one StartXml. Every object of Xerces that the caller made must be destroyed.
void StopXml();

// Starts Xerces for the rest of the process, because a start takes 2 ms. Throws as StartXml.
void KeepXmlStarted();

// Reads well-formed documents, without validation, namespaces or schemas, and opens nothing that a
// document names. A document type declaration with declarations of its own (its *internal subset*)
// is an error at its "[": the declarations could define entities that expand without end, and
// attributes that appear in every element, and the library's own limit of expansions does not count
// all of them. Without one, the only entities are those of XML itself. Xerces must be started.
class SafeXmlParser : public xercesc::XercesDOMParser {
 public:
  SafeXmlParser();

  // Whether the document was refused for its internal subset.
  bool HasRefusedSubset() const { return m_hasRefusedSubset; }

  void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* publicId,
                   const XMLCh* systemId, bool hasInternalSubset, bool hasExternalSubset) override;

 private:
  bool m_hasRefusedSubset = false;
};

// Convert strings between this library (UTF-8) and Xerces (UTF-16), whatever the process's locale.
// Xerces must be started.

// Nothing when the string is not UTF-8 or contains a character that XML does not allow, such as a
// zero byte.
std::optional<std::u16string> XmlFromUtf8(std::string_view text);

// Null gives the empty string.
std::string Utf8FromXml(const char16_t* text);

// Runs `step`, which returns a bool, with Xerces started by KeepXmlStarted. Returns false, with the
// reason in `error`, when Xerces does not start or throws an exception.
template <class Step>
bool WithXml(std::string& error, Step step) {
  try {
    KeepXmlStarted();
  } catch (const xercesc::XMLException&) {
    error = "the XML library does not start";
    return false;
  }
  try {
    return step();
  } catch (const xercesc::XMLException& failure) {
    error = Utf8FromXml(failure.getMessage());
  } catch (const xercesc::DOMException& failure) {
    error = Utf8FromXml(failure.getMessage());
  }
  return false;
}

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_XML_H
