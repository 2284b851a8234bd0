#include <vq_client_common/environment/XmlHelpers.h>

#include <xercesc/util/XMLString.hpp>

namespace {

std::basic_string<XMLCh> Wide(const std::string& text) {
  XMLCh* wide = xercesc::XMLString::transcode(text.c_str());
  std::basic_string<XMLCh> result(wide);
  xercesc::XMLString::release(&wide);
  return result;
}

}  // namespace

StrX::StrX(const XMLCh* text)
    : m_localForm(xercesc::XMLString::transcode(text != nullptr ? text : u"")) {}

StrX::~StrX() {
  xercesc::XMLString::release(&m_localForm);
}

VqNodeFilter::VqNodeFilter(short nodeType, const std::string& nodeName, bool reject)
    : m_nodeType(nodeType), m_nodeName(Wide(nodeName)), m_reject(reject) {}

xercesc::DOMNodeFilter::FilterAction VqNodeFilter::acceptNode(const xercesc::DOMNode* node) const {
  if (m_nodeType == 0) return FILTER_SKIP;
  if (node->getNodeType() == m_nodeType && m_nodeName == node->getNodeName()) return FILTER_ACCEPT;
  return m_reject ? FILTER_REJECT : FILTER_SKIP;
}
