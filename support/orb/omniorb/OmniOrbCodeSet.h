// A code set for omniORB that sends the bytes of a string unchanged.
//
//   // Before ORB_init, with the option {"nativeCharCodeSet", kCodeSet}:
//   InstallCodeSet();
//
// omniORB converts strings from the native code set to that of the server. With its default,
// ISO 8859-1, a server with UTF-8 receives each byte of a UTF-8 name as a separate character. With
// UTF-8, a call to a server that has only ISO 8859-1 fails with DATA_CONVERSION for every character
// outside of it.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H

namespace vq::orb {

inline constexpr const char* kCodeSet = "VQ-BYTES";

// Registers the code set with omniORB; only the first call has an effect.
void InstallCodeSet();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H
