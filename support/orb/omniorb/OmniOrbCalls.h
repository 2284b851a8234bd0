// What the library promises of each remote call, kept for omniORB:
//
// - It ends by its deadline, which covers connecting, reconnecting and every forward.
// - Its request is sent once. It is sent again only where the server states that it did not process
//   it: to the place that a forward names, and once after an orderly CloseConnection.
// - A connection that died while it was idle is replaced before anything is sent.
// - Every address of a server is tried, each with its share of the time for connecting.
//
// omniORB repeats calls and gives each new connection time of its own; no setting of it changes
// that. So this file derives from the classes that hold the connections to one server (a "rope" of
// "strands"), which are omniORB's internal interfaces. Tried with omniORB 4.2.5 and 4.3.3. Its
// source has more than 500 lines, since all of it works on the one call that is under way on a
// thread.
//
//   CORBA::ORB_init(...);
//   InstallCalls(settings);
#ifndef VQ_SUPPORT_ORB_OMNIORB_OMNIORBCALLS_H
#define VQ_SUPPORT_ORB_OMNIORB_OMNIORBCALLS_H

#include <support/orb/OrbSettings.h>

namespace vq::orb {

// After each ORB_init, before the first reference is made, by the thread that starts the ORB.
void InstallCalls(const OrbSettings& settings);

// Before the ORB ends: from then on calls raise BAD_INV_ORDER. Waits for connections that are being
// opened, for one time-out at most, and closes those that take calls: calls that wait for a reply
// there fail, since omniORB ends the threads that would read it.
void EndCalls();

// At the end of the process: closes the connections that take calls, and ends omniORB's threads for
// them, which would use what the process destroys next. Calls can still be made.
void StopTakingCalls();

}  // namespace vq::orb

#endif  // VQ_SUPPORT_ORB_OMNIORB_OMNIORBCALLS_H
