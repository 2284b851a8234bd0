// Every public header of the library, and the headers of the support libraries that a client uses
// directly: the log, the deadline of calls, and the ORB by number.
//
//   #include <vq_client_common/vq_client_common.h>
//
// Left out are the generated headers. A program that makes remote calls of its own, or fills
// records of the wire, includes the one that it needs, such as <vq_idl/UsersManagerC.h> or
// <vq_idl/AdministrationRecordsC.h>. A program that needs less than all may include single headers.
#ifndef VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H
#define VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H

#include <support/Export.h>
#include <support/diagnostics/TDiag.h>
#include <support/orb/CallDeadline.h>
#include <support/orb/ORBCommon.h>
#include <vq_client_common/authorizations/QCSGuiAuthActJobsDef.h>
#include <vq_client_common/authorizations/UserAuthorizations.h>
#include <vq_client_common/connectivity/ORBEndpoint.h>
#include <vq_client_common/connectivity/TroubleshootConnection.h>
#include <vq_client_common/datacenters/ArrayWrap.h>
#include <vq_client_common/datacenters/TArchive.h>
#include <vq_client_common/datacenters/TDC.h>
#include <vq_client_common/datacenters/TDCList.h>
#include <vq_client_common/datacenters/TString2Enum.h>
#include <vq_client_common/datacenters/TVltVersion.h>
#include <vq_client_common/environment/ClientProperties.h>
#include <vq_client_common/environment/CmdParser.h>
#include <vq_client_common/environment/Collation.h>
#include <vq_client_common/environment/LanguageLocale.h>
#include <vq_client_common/environment/UserPass.h>
#include <vq_client_common/environment/XmlHelpers.h>
#include <vq_client_common/session/ClientId.h>
#include <vq_client_common/session/ConnectionSettings.h>
#include <vq_client_common/session/CorbaCallbackCommand.h>
#include <vq_client_common/session/CorbaGlobalFuncs.h>
#include <vq_client_common/session/GlobalFuncs.h>
#include <vq_client_common/session/LoginExceptions.h>
#include <vq_client_common/session/LoginHandler.h>
#include <vq_client_common/session/LoginResult.h>
#include <vq_client_common/session/PasswordPolicy.h>
#include <vq_client_common/session/ServerId.h>
#include <vq_client_common/session/ServerLocale.h>
#include <vq_client_common/session/Session.h>
#include <vq_client_common/session/SettingsReport.h>
#include <vq_client_common/session/StoredSettings.h>
#include <vq_client_common/session/SystemParameterHandler.h>
#include <vq_client_common/session/VQBaseException.h>
#include <vq_client_common/text/BaseString.h>
#include <vq_client_common/text/ConvertFunctions.h>
#include <vq_client_common/text/FieldLength.h>
#include <vq_client_common/text/TErrMsg.h>
#include <vq_client_common/text/TablePath.h>
#include <vq_client_common/time/ForecastTimesManipulationMP.h>

#endif  // VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H
