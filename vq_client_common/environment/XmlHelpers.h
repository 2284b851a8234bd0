// Two helpers for clients that read XML with Xerces-C. Xerces-C must be initialized during the life
// of the objects; ClientProperties::Get does that.
//
//   ClientProperties::Get();
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

// A string of Xerces-C, converted to the encoding of the process's locale.
class VQ_CLIENT_COMMON_API StrX {
 public:
  // Converts a string that ends with a zero; null counts as an empty string. A character that the
  // encoding does not have is replaced by another.
  explicit StrX(const XMLCh* text);
  ~StrX();
  StrX(const StrX&) = delete;
  StrX& operator=(const StrX&) = delete;

  // The converted text, owned by this object; never null.
  const char* localForm() const { return m_localForm; }
  operator char*() const { return m_localForm; }

 private:
  char* m_localForm;
};

// A filter that accepts the nodes of one type and name in a document.
class VQ_CLIENT_COMMON_API VqNodeFilter : public XERCES_CPP_NAMESPACE::DOMNodeFilter {
 public:
  // `nodeType`: a value of DOMNode::NodeType, or 0 for a filter that skips every node. `nodeName`:
  // in the encoding of the process's locale. `reject`: whether other nodes are left out with their
  // descendants, or without them.
  VqNodeFilter(short nodeType, const std::string& nodeName, bool reject);

  // FILTER_ACCEPT for a node of that type and name; otherwise FILTER_REJECT or FILTER_SKIP, by
  // `reject`. `node` must not be null.
  FilterAction acceptNode(const XERCES_CPP_NAMESPACE::DOMNode* node) const override;

 private:
  std::int16_t m_nodeType;
  std::basic_string<XMLCh> m_nodeName;
  bool m_reject;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_XMLHELPERS_H
