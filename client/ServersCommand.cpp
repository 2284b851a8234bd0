// vqclient servers: the servers in the naming service, and whether each is alive.

#include <algorithm>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <client/Commands.h>
#include <client/ExitCodes.h>
#include <client/NamingConnection.h>
#include <support/orb/ORBCommon.h>
#include <support/orb/ReferenceAddress.h>

namespace vqclient {
namespace {

constexpr int kCallLimit = 3000;  // milliseconds

// Adds a row for each address of a server. A server is a naming context with services in it; the
// first service has the addresses. It is looked up in the root, since with TLS enabled no other
// object of the naming service may be called.
void AddServer(nlohmann::json& rows, CosNaming::NamingContext_ptr root, CosNaming::Name name,
               const CommandLine& line) {
  nlohmann::json row{{"name", name[0].id.in()}, {"kind", name[0].kind.in()}, {"alive", false}};
  const auto add = [&](CORBA::Object_ptr server) {
    std::vector<vq::orb::ReferenceEndpoint> endpoints = vq::orb::EndpointsOf(server);
    if (endpoints.empty()) endpoints.emplace_back();
    for (const vq::orb::ReferenceEndpoint& endpoint : endpoints) {
      row.update({{"host", endpoint.host}, {"port", endpoint.port}, {"tls", endpoint.tls}});
      rows.push_back(row);
    }
  };
  const CORBA::Object_var object = root->resolve(name);
  // Makes no call: the naming service has returned it as a context.
  const CosNaming::NamingContext_var context =
      CosNaming::NamingContext::_unchecked_narrow(object.in());
  std::vector<CosNaming::Binding> services;
  try {
    if (!CORBA::is_nil(context.in())) services = ListContext(context.in());
  } catch (const CORBA::SystemException&) {  // a context at another host that does not answer
    if (line.IsTimeOver()) throw;
    return add(CORBA::Object::_nil());
  }
  const auto service = std::ranges::find_if(services, [](const CosNaming::Binding& binding) {
    return binding.binding_type == CosNaming::nobject && binding.binding_name.length() == 1;
  });
  if (service == services.end()) return;
  name.length(2);
  name[1] = service->binding_name[0];
  const CORBA::Object_var found = root->resolve(name);
  try {
    row["alive"] = !CORBA::is_nil(found.in()) && !found->_non_existent();
  } catch (const CORBA::Exception&) {
    if (line.IsTimeOver()) throw;
  }
  add(found.in());
}

int Show(CommandLine& line) {
  const NamingConnection connection(line, kCallLimit, kOrbNotUp);
  nlohmann::json rows = nlohmann::json::array();
  bool isComplete = true;
  try {
    for (const CosNaming::Name& name : connection.Servers()) {
      try {
        AddServer(rows, ORBCommon<1>::Get()->GetNamingRoot(), name, line);
      } catch (const CosNaming::NamingContext::NotFound&) {  // removed in the meantime
      }
    }
  } catch (const CORBA::Exception& e) {
    if (!line.IsTimeOver()) {
      throw Failure(kOrbNotUp, WithCause("The naming service fails.", CauseOf(e)));
    }
    if (rows.empty()) throw Failure(kRefused, "The time of --max-time is over.");
    isComplete = false;
  }
  if (!Form().json && !Form().quiet) {
    const nlohmann::json header{{"name", "NAME"}, {"kind", "KIND"}, {"host", "HOST"},
                                {"port", "PORT"}, {"tls", "TLS"},   {"alive", "ALIVE"}};
    rows.insert(rows.begin(), header);
  }
  PrintRows(rows,
            {{"name", 21}, {"kind", 10}, {"host", 27}, {"port", 7}, {"tls", 5}, {"alive", 0}});
  if (!isComplete) throw Failure(kRefused, "The time of --max-time is over: servers are missing.");
  return kSuccess;
}

}  // namespace

void AddServersCommand(CLI::App& program, CommandLine& line) {
  line.AddCommand(program, "servers",
                  "List the servers in the naming service, and whether each is alive", false, Show);
}

}  // namespace vqclient
