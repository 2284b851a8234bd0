// Texts between the wire's types and the standard library's.
//
//   stringSeq names;
//   StlVector2CorbaSequence(std::list<std::string>{"PROD", "TEST"}, names);
//   const CORBA::String_var text = server->CRB_GetUserName(userId);
//   const std::string name = CorbaString2StlString(text.in());
#ifndef VQ_SUPPORT_ORB_CORBACONVERSIONS_H
#define VQ_SUPPORT_ORB_CORBACONVERSIONS_H

#include <string>

#include <support/orb/Corba.h>
#include <vq_idl/SharedTypesC.h>

// Makes the sequence of the texts of a vector, a list or another container with size(), in order;
// what the sequence held before is gone. The wire's strings end at the first zero byte.
template <class Container>
void StlVector2CorbaSequence(const Container& texts, stringSeq& sequence) {
  sequence.length(static_cast<CORBA::ULong>(texts.size()));
  CORBA::ULong i = 0;
  for (const std::string& text : texts) sequence[i++] = text.c_str();
}

// The text as a string; null counts as the empty text. Takes no ownership.
inline std::string CorbaString2StlString(const char* text) {
  return text == nullptr ? "" : text;
}

#endif  // VQ_SUPPORT_ORB_CORBACONVERSIONS_H
