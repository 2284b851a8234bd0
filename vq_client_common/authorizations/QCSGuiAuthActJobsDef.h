// The selection of the active jobs that an authorization covers.
//
//   QCSGuiAuthActJobsDef jobs;
//   vq::SelectionParseError error;
//   QCSObject job;
//   job.SetAttribute("OWNER", "ops");
//   if (jobs.Parse("OWNER = 'ops'", error) && jobs.DoesItFit(job, false)) Show("The job fits.");
#ifndef VQ_CLIENT_COMMON_AUTHORIZATIONS_QCSGUIAUTHACTJOBSDEF_H
#define VQ_CLIENT_COMMON_AUTHORIZATIONS_QCSGUIAUTHACTJOBSDEF_H

#include <support/Export.h>
#include <support/selection/QCSSelectionDef.h>

// A QCSSelectionDef under a name of its own, for the graphical client. It adds no behaviour.
class VQ_CLIENT_COMMON_API QCSGuiAuthActJobsDef : public QCSSelectionDef {
 public:
  QCSGuiAuthActJobsDef();
  QCSGuiAuthActJobsDef(const QCSGuiAuthActJobsDef& other);
  QCSGuiAuthActJobsDef& operator=(const QCSGuiAuthActJobsDef& other);
  ~QCSGuiAuthActJobsDef() override;
};

#endif  // VQ_CLIENT_COMMON_AUTHORIZATIONS_QCSGUIAUTHACTJOBSDEF_H
