// Two helpers for clients that read XML with Xerces themselves. Xerces must be started for as long
// as their objects live (ClientProperties::Get starts it).
//
//   const XMLCh name[] = {'v', 'q', 0};
//   std::cerr << StrX(name).localForm();
//   const VqNodeFilter filter(xercesc::DOMNode::ELEMENT_NODE, "server", false);
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_XMLHELPERS_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_XMLHELPERS_H

#include <cstdint>
#include <string>

#include <support/Export.h>
#include <xercesc/dom/DOMNode.hpp>
#include <xercesc/dom/DOMNodeFilter.hpp>
#include <xercesc/util/XercesDefs.hpp>

// A text of Xerces in the encoding of the process's locale.
class VQ_CLIENT_COMMON_API StrX {
 public:
  // Converts a text that ends in a zero; null is taken for the empty text. Characters that the
  // locale's encoding does not have come out as a substitute.
  explicit StrX(const XMLCh* text);
  ~StrX();
  StrX(const StrX&) = delete;
  StrX& operator=(const StrX&) = delete;

  // Both give the converted text, never null; it belongs to this object and lives as long.
  const char* localForm() const { return m_localForm; }
  operator char*() const { return m_localForm; }

 private:
  char* m_localForm;
};

// Picks nodes of one type and name while a client walks a document.
class VQ_CLIENT_COMMON_API VqNodeFilter : public XERCES_CPP_NAMESPACE::DOMNodeFilter {
 public:
  // `nodeType` is one of DOMNode::NodeType, 0 for a filter that skips every node; `nodeName` is in
  // the encoding of the process's locale. With `reject` other nodes are left out with all that
  // stands in them, without it they are left out alone.
  VqNodeFilter(short nodeType, const std::string& nodeName, bool reject);

  // FILTER_ACCEPT for a node of the type and name; otherwise FILTER_REJECT or FILTER_SKIP as
  // `reject` asks. `node` is not null.
  FilterAction acceptNode(const XERCES_CPP_NAMESPACE::DOMNode* node) const override;

 private:
  std::int16_t m_nodeType;
  std::basic_string<XMLCh> m_nodeName;
  bool m_reject;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_XMLHELPERS_H
