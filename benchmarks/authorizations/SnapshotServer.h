// A server process that answers with a list of grants, so that the benchmark can time how long a
// client takes to receive and unmarshal one.
//
//   vq::SnapshotServer server(grants);   // before this process starts an ORB
//   const QCSCorbaAuth2LvlSeq_var list = server.Fetch();
#ifndef VQ_BENCHMARKS_AUTHORIZATIONS_SNAPSHOTSERVER_H
#define VQ_BENCHMARKS_AUTHORIZATIONS_SNAPSHOTSERVER_H

#include <sys/types.h>

#include <vector>

#include <benchmarks/authorizations/GrantGenerator.h>
#include <support/orb/Corba.h>
#include <vq_idl/AuthorizationC.h>

namespace vq {

// The grants as the wire carries them.
QCSCorbaAuth2LvlSeq AsWire(const std::vector<GeneratedGrant>& grants);

// Thread contract: one thread.
class SnapshotServer {
 public:
  explicit SnapshotServer(const std::vector<GeneratedGrant>& grants);
  ~SnapshotServer();  // ends the server
  SnapshotServer(const SnapshotServer&) = delete;
  SnapshotServer& operator=(const SnapshotServer&) = delete;

  // One call over a loopback connection. The caller owns the result.
  QCSCorbaAuth2LvlSeq* Fetch() const;

 private:
  pid_t m_pid = -1;
  CORBA::ORB_var m_orb;
  QCSCorbaAuthorization_var m_object;
};

}  // namespace vq

#endif  // VQ_BENCHMARKS_AUTHORIZATIONS_SNAPSHOTSERVER_H
