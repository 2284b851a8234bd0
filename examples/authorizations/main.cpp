// Asks what the logged-in user may do: a privilege, a kind of object, one object, a service.
//
//   authorizations SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// The login loads what the user may do; every question after it is answered here, without a call to
// the server.

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

void Tell(const std::string& question, bool answer) {
  std::cout << question << ": " << (answer ? "yes" : "no") << '\n';
}

void AskAll(const UserAuthorizations& user) {
  Tell("administrator", user.IsAdministrator());

  // A privilege has one level; the question names the least that is enough.
  Tell("see alerts", user.IsAlertsAccessAllowed(BROWSE_ACCESS));
  Tell("handle alerts", user.IsAlertsAccessAllowed(UPDATE_ACCESS));
  Tell("define users", user.IsAuthDefAccessAllowed(BROWSE_ACCESS));

  // Of a kind: is there any grant at all? A menu is built of such questions.
  Tell("any calendar", user.IsCalendarsAccessAllowed());
  Tell("any workload", user.IsWorkloadsAccessAllowed());

  // Of one object: it is described by the attributes that the grants' criteria speak of.
  QCSObject calendar;
  calendar.SetAttribute("CALENDAR", "WORKDAYS");
  Tell("change calendar WORKDAYS", user.IsCalendarAccessAllowed(calendar, UPDATE_ACCESS));
  Tell("delete calendar WORKDAYS", user.IsCalendarAccessAllowed(calendar, FULL_ACCESS));

  QCSObject table;
  table.SetAttribute("TABLE", "PAYROLL");
  Tell("see table PAYROLL", user.IsSchedTblAccessAllowed(table, BROWSE_ACCESS));
  table.SetAttribute("TABLE", "STOCK");
  Tell("see table STOCK", user.IsSchedTblAccessAllowed(table, BROWSE_ACCESS));

  // Of a service: its actions are numbers.
  QCSObject service;
  service.SetAttribute("SERVICE", "Billing");
  Tell("action 2 on service Billing", user.IsServiceActionAccessAllowed(service, 2));
  Tell("action 3 on service Billing", user.IsServiceActionAccessAllowed(service, 3));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: authorizations SERVER USER [-ORBInitRef NameService=REFERENCE]\n";
    return 2;
  }
  try {
    const vq::Session session({.server = argv[1],
                               .user = argv[2],
                               .credentials = vq::AskForPassword(),
                               .orbArguments = {argv, argv + argc}});
    if (!session.Message().empty()) std::cerr << session.Message() << '\n';
    AskAll(*session.Authorizations());
    return 0;
  } catch (const vq::LoginError& e) {
    std::cerr << e.what() << '\n' << e.Cause() << '\n';
    return 1;
  }
}
