// The code set of this system's strings for omniORB: they travel as the bytes that they are.
//
//   OmniOrbCodeSet::Install();  // before ORB_init, with {"nativeCharCodeSet",
//   OmniOrbCodeSet::kName}
//
// omniORB would convert them. From its default, ISO 8859-1, a server that takes UTF-8 would get
// each byte of a UTF-8 name as a character of its own; from UTF-8, a call to a server that takes
// ISO 8859-1 alone would fail with DATA_CONVERSION for each character that is not in it.
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H

namespace vq::orb {

class OmniOrbCodeSet {
 public:
  static constexpr const char* kName = "VQ-BYTES";

  // Makes the name known to omniORB, once a process.
  static void Install();
};

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBCODESET_H
