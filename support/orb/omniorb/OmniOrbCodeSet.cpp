#include <support/orb/omniorb/OmniOrbCodeSet.h>

#include <omniORB4/CORBA.h>
#include <omniORB4/codeSets.h>

namespace vq::orb {
namespace {

using omni::omniCodeSet;

constexpr CORBA::ULong kUtf8 = 0x05010001;

// Intentional: strings are marshalled by the native code set that has the name of the transmission
// code set, so there is nothing to convert. The references of this process offer UTF-8.
class Bytes : public omniCodeSet::NCS_C {
 public:
  Bytes(const Bytes&) = delete;
  Bytes& operator=(const Bytes&) = delete;
  Bytes() : NCS_C(kUtf8, kCodeSet, omniCodeSet::CS_Other) {}

  void marshalChar(cdrStream& stream, omniCodeSet::TCS_C* sent, _CORBA_Char value) override {
    Same(sent)->marshalChar(stream, sent, value);
  }
  void marshalString(cdrStream& stream, omniCodeSet::TCS_C* sent, _CORBA_ULong bound,
                     _CORBA_ULong length, const char* value) override {
    Same(sent)->marshalString(stream, sent, bound, length, value);
  }
  _CORBA_Char unmarshalChar(cdrStream& stream, omniCodeSet::TCS_C* sent) override {
    return Same(sent)->unmarshalChar(stream, sent);
  }
  _CORBA_ULong unmarshalString(cdrStream& stream, omniCodeSet::TCS_C* sent, _CORBA_ULong bound,
                               char*& value) override {
    return Same(sent)->unmarshalString(stream, sent, bound, value);
  }

 private:
  // Without a transmission code set the default one raises the exception.
  static NCS_C* Same(omniCodeSet::TCS_C* sent) {
    NCS_C* const same = sent != nullptr ? omniCodeSet::getNCS_C(sent->name()) : nullptr;
    return same != nullptr ? same : omniCodeSet::getNCS_C("ISO-8859-1");
  }
};

}  // namespace

void InstallCodeSet() {
  // omniORB uses it until the process ends.
  [[maybe_unused]] static const bool installed = (omniCodeSet::registerNCS_C(new Bytes), true);
}

}  // namespace vq::orb
