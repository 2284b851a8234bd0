// Describes CORBA exceptions, in one place for the whole system.
//
//   try {
//     ORBCommon<1>::Get()->Bind("central", "GSR", "UsersManager", true);
//   } catch (const CORBA::SystemException& e) {
//     Show(vq::orb::ExceptionText(e));
//   }
//
// shows "TRANSIENT (IDL:omg.org/CORBA/TRANSIENT:1.0), minor code 0x41540002
// (TRANSIENT_ConnectFailed), completed: NO", for example.
#ifndef VQ_SUPPORT_ORB_CORBATEXT_H
#define VQ_SUPPORT_ORB_CORBATEXT_H

#include <string>

#include <support/diagnostics/FormatObj.h>
#include <support/orb/Corba.h>

namespace vq::orb {

// Name and repository id; for a system exception also the minor code with its name and whether the
// call was completed. For a message beyond the size limit it adds the setting that raises the
// limit.
std::string ExceptionText(const CORBA::Exception& exception);

// "Failed with CORBA::SystemException [name = ...] [minor = ...]", the minor code in decimal.
std::string NameAndMinorText(const CORBA::SystemException& exception);

}  // namespace vq::orb

// Appends ExceptionText to a line of the log.
inline FormatObj& operator<<(FormatObj& line, const CORBA::Exception& exception) {
  return line << vq::orb::ExceptionText(exception);
}

#endif  // VQ_SUPPORT_ORB_CORBATEXT_H
