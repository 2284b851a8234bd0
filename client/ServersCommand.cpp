// vqclient servers: what the naming service knows, and what of it is alive.

#include <algorithm>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <support/orb/ORBCommon.h>
#include <support/orb/ReferenceAddress.h>

#include "Commands.h"
#include "ExitCodes.h"
#include "NamingConnection.h"

namespace vqclient {
namespace {

constexpr int kCallLimit = 3000;  // milliseconds

using Bindings = std::vector<CosNaming::Binding>;

// Everything that a context holds. Raises Failure for more than any naming service has.
Bindings List(CosNaming::NamingContext_ptr context) {
  constexpr CORBA::ULong kAtOnce = 500;
  constexpr std::size_t kMost = 100'000;
  CosNaming::BindingList_var list;
  CosNaming::BindingIterator_var more;
  context->list(kAtOnce, list.out(), more.out());
  Bindings all;
  for (bool isMore = true; isMore;) {
    if (all.size() > kMost) throw Failure(kRefused, "The naming service does not end its list.");
    for (CORBA::ULong i = 0; i < list->length(); ++i) all.push_back(list[i]);
    isMore = !CORBA::is_nil(more.in()) && more->next_n(kAtOnce, list.out()) && list->length() > 0;
  }
  if (!CORBA::is_nil(more.in())) more->destroy();
  return all;
}

// Adds a row for each address of a server. A server is a context with services in it; its first
// service stands for it. The root is asked for the service, too: with TLS on, no other object of
// the naming service may be.
void AddServer(nlohmann::json& rows, CosNaming::NamingContext_ptr root, CosNaming::Name name) {
  nlohmann::json row{{"name", name[0].id.in()},
                     {"kind", name[0].kind.in()},
                     {"host", ""},
                     {"port", 0},
                     {"tls", false},
                     {"alive", false}};
  const CORBA::Object_var object = root->resolve(name);
  // Makes no call: the naming service has said what it is.
  const CosNaming::NamingContext_var context =
      CosNaming::NamingContext::_unchecked_narrow(object.in());
  Bindings services;
  try {
    if (!CORBA::is_nil(context.in())) services = List(context.in());
  } catch (const CORBA::SystemException&) {  // a context elsewhere, which does not answer
    rows.push_back(row);
    return;
  }
  const auto service =
      std::find_if(services.begin(), services.end(), [](const CosNaming::Binding& binding) {
        return binding.binding_type == CosNaming::nobject && binding.binding_name.length() == 1;
      });
  if (service == services.end()) return;
  name.length(2);
  name[1] = service->binding_name[0];
  const CORBA::Object_var found = root->resolve(name);
  try {
    row["alive"] = !CORBA::is_nil(found.in()) && !found->_non_existent();
  } catch (const CORBA::Exception&) {  // It is not.
  }
  const auto endpoints = vq::orb::EndpointsOf(found.in());
  if (endpoints.empty()) rows.push_back(row);
  for (const vq::orb::ReferenceEndpoint& endpoint : endpoints) {
    row.update({{"host", endpoint.host}, {"port", endpoint.port}, {"tls", endpoint.tls}});
    rows.push_back(row);
  }
}

int Show(CommandLine& line) {
  constexpr int kOrbNotUp = ExitCodeOf(vq::LoginResult::kOrbNotUp);
  const NamingConnection connection(line, kCallLimit, kOrbNotUp);
  nlohmann::json rows = nlohmann::json::array();
  try {
    CosNaming::NamingContext_ptr root = ORBCommon<1>::Get()->GetNamingRoot();
    for (const CosNaming::Binding& binding : List(root)) {
      if (binding.binding_type != CosNaming::ncontext || binding.binding_name.length() != 1)
        continue;
      try {
        AddServer(rows, root, binding.binding_name);
      } catch (const CosNaming::NamingContext::NotFound&) {  // It has gone meanwhile.
      }
    }
  } catch (const CORBA::Exception& e) {
    throw Failure(kOrbNotUp, "The naming service fails: " + CauseOf(e));
  }
  if (!Form().json && !Form().quiet) {
    const nlohmann::json header{{"name", "NAME"}, {"kind", "KIND"}, {"host", "HOST"},
                                {"port", "PORT"}, {"tls", "TLS"},   {"alive", "ALIVE"}};
    rows.insert(rows.begin(), header);
  }
  PrintRows(rows,
            {{"name", 21}, {"kind", 10}, {"host", 27}, {"port", 7}, {"tls", 5}, {"alive", 0}});
  return kSuccess;
}

}  // namespace

void AddServersCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "servers",
                  "List the servers that the naming service knows, and whether each is alive",
                  false, Show);
}

}  // namespace vqclient
