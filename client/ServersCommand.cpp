// vqclient servers: what the naming service knows, and what of it is alive.

#include <iomanip>
#include <iostream>

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

struct Server {
  std::string name;
  std::string kind;
  std::string host;
  int port = 0;
  bool tls = false;
  bool alive = false;
};

using Bindings = std::vector<CosNaming::Binding>;

// Everything that a context holds.
Bindings List(CosNaming::NamingContext_ptr context) {
  constexpr CORBA::ULong kAtOnce = 500;
  CosNaming::BindingList_var list;
  CosNaming::BindingIterator_var more;
  context->list(kAtOnce, list.out(), more.out());
  Bindings all;
  for (bool isMore = true; isMore;) {
    for (CORBA::ULong i = 0; i < list->length(); ++i) all.push_back(list[i]);
    isMore = !CORBA::is_nil(more.in()) && more->next_n(kAtOnce, list.out());
  }
  if (!CORBA::is_nil(more.in())) more->destroy();
  return all;
}

// A server is a context with services in it; its first service stands for it.
std::vector<Server> Examine(const CosNaming::Binding& binding, CosNaming::NamingContext_ptr root) {
  const CORBA::Object_var object = root->resolve(binding.binding_name);
  const CosNaming::NamingContext_var context = CosNaming::NamingContext::_narrow(object.in());
  if (CORBA::is_nil(context.in())) return {};
  for (const CosNaming::Binding& service : List(context.in())) {
    if (service.binding_type != CosNaming::nobject) continue;
    const CORBA::Object_var found = context->resolve(service.binding_name);
    const auto& name = binding.binding_name[0];
    Server server;
    server.name = name.id.in();
    server.kind = name.kind.in();
    try {
      server.alive = !found->_non_existent();
    } catch (const CORBA::Exception&) {  // It is not.
    }
    std::vector<Server> servers;
    for (const vq::orb::ReferenceEndpoint& endpoint : vq::orb::EndpointsOf(found.in())) {
      server.host = endpoint.host;
      server.port = endpoint.port;
      server.tls = endpoint.tls;
      servers.push_back(server);
    }
    return servers.empty() ? std::vector{server} : servers;
  }
  return {};
}

void Print(const std::vector<Server>& servers) {
  if (Form().json) {
    nlohmann::json list = nlohmann::json::array();
    for (const Server& server : servers) {
      list.push_back({{"name", server.name},
                      {"kind", server.kind},
                      {"host", server.host},
                      {"port", server.port},
                      {"tls", server.tls},
                      {"alive", server.alive}});
    }
    PrintJson(list);
    return;
  }
  const auto print = [](const auto&... cells) {
    std::size_t column = 0;
    constexpr int kWidths[] = {20, 9, 26, 6, 4, 0};
    ((std::cout << std::left << std::setw(kWidths[column++]) << cells << ' '), ...);
    std::cout << '\n';
  };
  if (!Form().quiet) print("NAME", "KIND", "HOST", "PORT", "TLS", "ALIVE");
  for (const Server& server : servers) {
    print(server.name, server.kind, server.host, server.port, server.tls ? "yes" : "no",
          server.alive ? "yes" : "no");
  }
}

int Show(CommandLine& line) {
  const NamingConnection connection(line, kCallLimit);
  if (!connection.IsUp()) {
    Tell(connection.Error());
    return kOrbNotUp;
  }
  try {
    CosNaming::NamingContext_ptr root = ORBCommon<1>::Get()->GetNamingRoot();
    std::vector<Server> servers;
    for (const CosNaming::Binding& binding : List(root)) {
      if (binding.binding_type != CosNaming::ncontext || binding.binding_name.length() != 1)
        continue;
      for (const Server& server : Examine(binding, root)) servers.push_back(server);
    }
    Print(servers);
    return kSuccess;
  } catch (const CORBA::Exception& e) {
    Tell("The naming service fails: " + FailureOf(e));
    return kOrbNotUp;
  }
}

}  // namespace

void AddServersCommand(CLI::App& program, CommandLine& line, int& exitCode) {
  CLI::App* const command = program.add_subcommand(
      "servers", "List the servers that the naming service knows, and whether each is alive");
  line.AddConnectionOptions(*command);
  command->callback([&] {
    line.Apply();
    exitCode = Show(line);
  });
}

}  // namespace vqclient
