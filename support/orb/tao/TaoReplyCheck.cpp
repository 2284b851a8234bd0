#include <support/orb/tao/TaoReplyCheck.h>

#include <tao/LocalObject.h>
#include <tao/ORB_Core.h>
#include <tao/PI/PI.h>

namespace vq::orb {
namespace {

using PortableInterceptor::ClientRequestInfo_ptr;

// Whether the ORB has read how the call went; it refuses to tell when it has not.
bool IsUnderstood(ClientRequestInfo_ptr call) {
  try {
    return call->reply_status() == PortableInterceptor::SUCCESSFUL;
  } catch (const CORBA::BAD_INV_ORDER&) {
    return false;
  }
}

// Thread contract: no state.
class ReplyCheck : public virtual PortableInterceptor::ClientRequestInterceptor,
                   public virtual CORBA::LocalObject {
 public:
  char* name() override { return CORBA::string_dup("vq::orb::ReplyCheck"); }
  void destroy() override {}
  void send_request(ClientRequestInfo_ptr) override {}
  void send_poll(ClientRequestInfo_ptr) override {}
  void receive_reply(ClientRequestInfo_ptr call) override {
    if (!IsUnderstood(call)) throw CORBA::MARSHAL(0, CORBA::COMPLETED_MAYBE);
  }
  void receive_exception(ClientRequestInfo_ptr) override {}
  void receive_other(ClientRequestInfo_ptr) override {}
};

}  // namespace

void CheckReplies(CORBA::ORB_ptr orb) {
  const PortableInterceptor::ClientRequestInterceptor_var check = new ReplyCheck;
  orb->orb_core()->add_interceptor(check.in());
}

}  // namespace vq::orb
