// Work that arrives by a callback from a server and is carried out by the client program.
//
//   class RefreshJobs : public CorbaCallbackCommand {
//     void Execute() override { Show("jobs have changed"); }
//   };
#ifndef VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H
#define VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H

#include <support/Export.h>

// One piece of work. Thread contract: a command is made on the ORB's thread and belongs to whoever
// executes it.
class VQ_CLIENT_COMMON_API CorbaCallbackCommand {
 public:
  virtual ~CorbaCallbackCommand();

  // Does the work. Called by the client program, on a thread of its choice; what it raises goes to
  // that caller.
  virtual void Execute() = 0;

  // Whether the command may be left out while the client changes its filter. True here.
  virtual bool CanBeSkippedDuringChangeFilter();
};

#endif  // VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H
