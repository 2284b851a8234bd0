#include <support/configuration/SafeXmlParser.h>

#include <xercesc/util/RuntimeException.hpp>

namespace vq {

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
    // The scanner takes it for a fatal error of the document and stops.
    ThrowXMLwithMemMgr(xercesc::RuntimeException, xercesc::XMLExcepts::Gen_NoDTDValidator,
                       getMemoryManager());
  }
  XercesDOMParser::doctypeDecl(root, publicId, systemId, hasInternalSubset, hasExternalSubset);
}

}  // namespace vq
