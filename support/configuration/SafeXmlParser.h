// A parser for XML documents that may come from anywhere.
//
//   vq::SafeXmlParser parser;
//   parser.parse(source);
//   if (parser.getErrorCount() != 0) ...
//
// It reads what is well-formed, without validation, namespaces or schemas, and opens nothing that a
// document names. A document type declaration with declarations of its own (its *internal subset*)
// counts as an error at its "[": the declarations could define entities that swell, and attributes
// that appear in every element, and the library's own limit of expansions does not count all of
// them. Without one, the only entities are those of XML itself.
#ifndef VQ_SUPPORT_CONFIGURATION_SAFEXMLPARSER_H
#define VQ_SUPPORT_CONFIGURATION_SAFEXMLPARSER_H

#include <xercesc/parsers/XercesDOMParser.hpp>

namespace vq {

// Xerces must be started. Thread contract: one thread an object.
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

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_SAFEXMLPARSER_H
