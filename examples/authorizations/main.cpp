// Asks what the logged-in user may do: a privilege, a kind of object, one object, a service.
//
//   authorizations SERVER USER -ORBInitRef NameService=corbaloc:iiop:HOST:2809/NameService
//
// The login loads what the user may do. The questions make no remote call.

#include <iostream>
#include <string>

#include <vq_client_common/vq_client_common.h>

namespace {

void Print(const std::string& question, bool answer) {
  std::cout << question << ": " << (answer ? "yes" : "no") << '\n';
}

void AskAll(const UserAuthorizations& user) {
  Print("administrator", user.IsAdministrator());

  // A privilege has one level; the question has the lowest level that is sufficient.
  Print("see alerts", user.IsAlertsAccessAllowed(BROWSE_ACCESS));
  Print("handle alerts", user.IsAlertsAccessAllowed(UPDATE_ACCESS));
  Print("define users", user.IsAuthDefAccessAllowed(BROWSE_ACCESS));

  // A kind of object: is there any grant for it? Such questions decide which menus to show.
  Print("any calendar", user.IsCalendarsAccessAllowed());
  Print("any workload", user.IsWorkloadsAccessAllowed());

  // One object. Its attributes are those that the criteria of the grants contain.
  QCSObject calendar;
  calendar.SetAttribute("CALENDAR", "WORKDAYS");
  Print("change calendar WORKDAYS", user.IsCalendarAccessAllowed(calendar, UPDATE_ACCESS));
  Print("delete calendar WORKDAYS", user.IsCalendarAccessAllowed(calendar, FULL_ACCESS));

  QCSObject table;
  table.SetAttribute("TABLE", "PAYROLL");
  Print("see table PAYROLL", user.IsSchedTblAccessAllowed(table, BROWSE_ACCESS));
  table.SetAttribute("TABLE", "STOCK");
  Print("see table STOCK", user.IsSchedTblAccessAllowed(table, BROWSE_ACCESS));

  // A service. Its actions have numbers.
  QCSObject service;
  service.SetAttribute("SERVICE", "Billing");
  Print("action 2 on service Billing", user.IsServiceActionAccessAllowed(service, 2));
  Print("action 3 on service Billing", user.IsServiceActionAccessAllowed(service, 3));
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
