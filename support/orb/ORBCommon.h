// The ORBs of this system as types: ORBCommon<1> carries the session, ORBCommon<2> a trial of the
// callback connection.
//
//   if (ORBCommon<1>::Get()->IsInitialized()) Show("The ORB is up.");
#ifndef VQ_SUPPORT_ORB_ORBCOMMON_H
#define VQ_SUPPORT_ORB_ORBCOMMON_H

#include <string>

#include <support/orb/QCSOrbCommon.h>

// The ORB with the number N.
template <int N>
class ORBCommon : public QCSOrbCommon {
 public:
  // The one ORB of this number; made on first use, owned by the process.
  static ORBCommon* Get() { return static_cast<ORBCommon*>(GetOrbById(N, &ORBCommon::Create)); }

  // The number N.
  int GetId() const override { return N; }
  ~ORBCommon() override = default;

 protected:
  // False without starting anything when the ORB is up. The ORB's name is `name` and the number:
  // that of the session of a GUI client is "GUI:1".
  bool InitAlways(int argc, char** argv, const char* name) override {
    if (IsInitialized()) return false;
    const std::string fullName = std::string(name) + ":" + std::to_string(N);
    return QCSOrbCommon::InitAlways(argc, argv, fullName.c_str());
  }

 private:
  static QCSOrbCommon* Create() { return new ORBCommon; }
};

#endif  // VQ_SUPPORT_ORB_ORBCOMMON_H
