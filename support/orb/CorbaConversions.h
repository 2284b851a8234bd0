// Converts strings between the wire's types and the standard library's.
//
//   stringSeq names;
//   StlVector2CorbaSequence(std::list<std::string>{"PROD", "TEST"}, names);
//   const std::string first = CorbaString2StlString(names[0]);   // "PROD"
#ifndef VQ_SUPPORT_ORB_CORBACONVERSIONS_H
#define VQ_SUPPORT_ORB_CORBACONVERSIONS_H

#include <limits>
#include <string>

#include <support/orb/Corba.h>
#include <vq_idl/SharedTypesC.h>

// Sets the sequence to the strings of a vector, a list or another container with size(), in order.
// The wire's strings end at the first zero byte.
template <class Container>
void StlVector2CorbaSequence(const Container& texts, stringSeq& sequence) {
  sequence.length(static_cast<CORBA::ULong>(texts.size()));
  CORBA::ULong i = 0;
  for (const std::string& text : texts) sequence[i++] = text.c_str();
}

// A string of the wire as std::string; null becomes the empty one. Takes no ownership.
inline std::string CorbaString2StlString(const char* text) {
  return text == nullptr ? "" : text;
}

// The length of a list of numbers from a message. An ORB that computes the list's size in 32 bits
// accepts a list that is too long, and its content is then uninitialized memory; for such a list
// this raises CORBA::MARSHAL.
template <class Numbers>
CORBA::ULong LengthOnTheWire(const Numbers& numbers) {
  constexpr CORBA::ULong kMost = std::numeric_limits<CORBA::ULong>::max() / sizeof(CORBA::Long);
  if (numbers.length() > kMost) throw CORBA::MARSHAL(0, CORBA::COMPLETED_YES);
  return numbers.length();
}

#endif  // VQ_SUPPORT_ORB_CORBACONVERSIONS_H
