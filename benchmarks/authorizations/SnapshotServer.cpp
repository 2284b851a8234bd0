#include <benchmarks/authorizations/SnapshotServer.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace vq {
namespace {

CORBA::ORB_var StartOrb() {
  int argc = 0;
  return CORBA::ORB_init(argc, nullptr);
}

// Answers CRB_GetResAccess with the list. Dynamic, so as not to define the interface's 68 others.
class Servant : public PortableServer::DynamicImplementation {
 public:
  Servant(CORBA::ORB_ptr orb, const std::vector<GeneratedGrant>& grants)
      : m_orb(CORBA::ORB::_duplicate(orb)) {
    m_answer <<= AsWire(grants);
  }

  void invoke(CORBA::ServerRequest_ptr request) override {
    CORBA::NVList_ptr arguments;
    m_orb->create_list(2, arguments);
    arguments->add(CORBA::ARG_IN)->value()->replace(_tc_QCSResTypeEnum, nullptr);
    arguments->add(CORBA::ARG_IN)->value()->replace(CORBA::_tc_string, nullptr);
    request->arguments(arguments);
    request->set_result(m_answer);
  }
  char* _primary_interface(const PortableServer::ObjectId&, PortableServer::POA_ptr) override {
    return CORBA::string_dup(_tc_QCSCorbaAuthorization->id());
  }

 private:
  CORBA::ORB_var m_orb;
  CORBA::Any m_answer;
};

[[noreturn]] void Serve(const std::vector<GeneratedGrant>& grants, int out) {
  const CORBA::ORB_var orb = StartOrb();
  const CORBA::Object_var root = orb->resolve_initial_references("RootPOA");
  const PortableServer::POA_var poa = PortableServer::POA::_narrow(root);
  Servant servant(orb, grants);
  const PortableServer::ObjectId_var id = poa->activate_object(&servant);
  const CORBA::Object_var object = poa->id_to_reference(id);
  const PortableServer::POAManager_var manager = poa->the_POAManager();
  manager->activate();
  const CORBA::String_var text = orb->object_to_string(object);
  FILE* pipe = fdopen(out, "w");
  std::fputs(text, pipe);
  std::fclose(pipe);
  orb->run();
  _exit(0);
}

}  // namespace

QCSCorbaAuth2LvlSeq AsWire(const std::vector<GeneratedGrant>& grants) {
  QCSCorbaAuth2LvlSeq wire;
  wire.length(static_cast<CORBA::ULong>(grants.size()));
  for (CORBA::ULong i = 0; i < wire.length(); ++i) {
    wire[i].m_sCriteria = grants[i].criteria.c_str();
    wire[i].m_eLevel = static_cast<QCSAuthLevelEnum>(grants[i].level);
  }
  return wire;
}

SnapshotServer::SnapshotServer(const std::vector<GeneratedGrant>& grants) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  m_pid = fork();
  if (m_pid < 0) throw std::runtime_error("no process");
  if (m_pid == 0) {
    close(ends[0]);
    Serve(grants, ends[1]);
  }
  close(ends[1]);
  std::string reference;
  char buffer[1024];
  for (ssize_t n = 0; (n = read(ends[0], buffer, sizeof buffer)) > 0;) {
    reference.append(buffer, static_cast<std::size_t>(n));
  }
  close(ends[0]);
  m_orb = StartOrb();
  const CORBA::Object_var object = m_orb->string_to_object(reference.c_str());
  m_object = QCSCorbaAuthorization::_narrow(object);
}

SnapshotServer::~SnapshotServer() {
  m_object = QCSCorbaAuthorization::_nil();
  m_orb->destroy();
  kill(m_pid, SIGKILL);
  waitpid(m_pid, nullptr, 0);
}

QCSCorbaAuth2LvlSeq* SnapshotServer::Fetch() const {
  return m_object->CRB_GetResAccess(static_cast<QCSResTypeEnum>(0), "user");
}

}  // namespace vq
