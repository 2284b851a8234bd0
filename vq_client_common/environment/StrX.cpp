#include <vq_client_common/environment/StrX.h>

#include <xercesc/util/XMLString.hpp>

StrX::StrX(const XMLCh* text)
    : m_localForm(xercesc::XMLString::transcode(text != nullptr ? text : u"")) {}

StrX::~StrX() {
  xercesc::XMLString::release(&m_localForm);
}
