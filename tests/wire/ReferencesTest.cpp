// Pins of which interfaces a reference is: asked of real references, so it holds for the generated
// code of every ORB product.

#include <map>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <support/orb/OrbServer.h>
#include <vq_idl/UsersManagerC.h>

#include "Table.h"

namespace {

// Every interface of the table, with itself and all of its bases.
std::map<std::string, std::set<std::string>> Bases() {
  std::map<std::string, std::set<std::string>> bases;
  for (const std::string& line : ReadTable("operations.txt")) {
    if (!line.starts_with("interface ")) continue;
    std::istringstream words(line.substr(10));
    std::string name;
    words >> name;
    if (name.ends_with(':')) name.pop_back();
    bases[name].insert(name);
    for (std::string base; words >> base;) bases[name].insert(base);
  }
  for (bool grown = true; grown;) {
    grown = false;
    for (auto& [name, known] : bases) {
      const std::set<std::string> before = known;
      for (const std::string& base : before) {
        known.insert(bases.at(base).begin(), bases.at(base).end());
      }
      grown = grown || known != before;
    }
  }
  return bases;
}

TEST(WireReferences, AReferenceIsOfItsInterfaceAndItsBasesAndOfNoOther) {
  const std::map<std::string, std::set<std::string>> bases = Bases();
  ASSERT_EQ(bases.size(), 19U);
  const auto server = vq::orb::StartServerOrb({});
  const CORBA::Object_var root = server->Orb()->resolve_initial_references("RootPOA");
  const PortableServer::POA_var poa = PortableServer::POA::_narrow(root.in());
  for (const auto& [name, known] : bases) {
    const CORBA::Object_var object = poa->create_reference(("IDL:" + name + ":1.0").c_str());
    EXPECT_TRUE(object->_is_a("IDL:omg.org/CORBA/Object:1.0")) << name;
    for (const auto& [other, ignored] : bases) {
      bool is = false;
      try {
        is = object->_is_a(("IDL:" + other + ":1.0").c_str());
      } catch (const CORBA::SystemException&) {
        // The generated code does not know, and asks the object, which there is none behind.
      }
      EXPECT_EQ(is, known.contains(other)) << name << " as " << other;
    }
  }
  server->Stop();
}

}  // namespace
