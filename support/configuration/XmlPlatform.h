// Starting and stopping the XML library.
//
// Xerces counts how often it was started and lets go of its tables when it was stopped as often,
// but it counts without a lock. Everything in this library that starts or stops it does so here.
//
//   {
//     const vq::XmlSession xml;   // started
//     ...
//   }                             // stopped again, unless somebody else still needs it
#ifndef VQ_SUPPORT_CONFIGURATION_XMLPLATFORM_H
#define VQ_SUPPORT_CONFIGURATION_XMLPLATFORM_H

namespace vq {

// Starts Xerces with its default locale. Throws the XMLException of a start that fails. Safe on any
// thread.
void StartXml();

// Undoes one StartXml. Every object of Xerces that the caller made must be gone. Safe on any
// thread.
void StopXml();

// Started for the life of the object. Thread contract: each object belongs to one thread, any
// number of them may exist.
class XmlSession {
 public:
  XmlSession() { StartXml(); }
  ~XmlSession() { StopXml(); }
  XmlSession(const XmlSession&) = delete;
  XmlSession& operator=(const XmlSession&) = delete;
};

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_XMLPLATFORM_H
