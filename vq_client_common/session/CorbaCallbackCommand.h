// A piece of work that a callback of the server creates and the client program executes.
//
//   class RefreshJobs : public CorbaCallbackCommand {
//     void Execute() override { Show("jobs have changed"); }
//   };
#ifndef VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H
#define VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H

#include <support/Export.h>

// One piece of work. It is created on a thread of the ORB, and the client program then owns it.
class VQ_CLIENT_COMMON_API CorbaCallbackCommand {
 public:
  virtual ~CorbaCallbackCommand();

  // Does the work. The client program calls it, on any of its threads; exceptions reach that
  // caller.
  virtual void Execute() = 0;

  // Whether the client may skip the command while it changes its filter. True here.
  virtual bool CanBeSkippedDuringChangeFilter();
};

#endif  // VQ_CLIENT_COMMON_SESSION_CORBACALLBACKCOMMAND_H
