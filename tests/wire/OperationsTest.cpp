// Pins what an interface offers: its bases, its operations in declared order, their arguments,
// results and exceptions.
//
// Signatures come from the generated skeleton classes, order and wire names from the generated
// dispatchers, exceptions from the generated call descriptors: the test reads the generated files,
// which no one writes by hand, in the form that omniORB's compiler gives them.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Table.h"

namespace {

// The text between `open` and the next `close` at or after `from`; moves `from` behind it.
std::string Between(const std::string& text, std::string_view open, std::string_view close,
                    std::size_t& from) {
  const std::size_t start = text.find(open, from);
  if (start == std::string::npos) return from = std::string::npos, std::string();
  const std::size_t end = text.find(close, start + open.size());
  if (end == std::string::npos) return from = std::string::npos, std::string();
  from = end + close.size();
  return text.substr(start + open.size(), end - start - open.size());
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    const std::size_t first = part.find_first_not_of(" \n");
    if (first == std::string::npos) continue;
    parts.push_back(part.substr(first, part.find_last_not_of(" \n") - first + 1));
  }
  return parts;
}

bool TakeEnd(std::string& text, std::string_view end) {
  if (!text.ends_with(end)) return false;
  text.resize(text.size() - end.size());
  return true;
}

// The wire's name of a C++ type without its reference, pointer or _out.
std::string WireType(std::string type) {
  if (type.starts_with("::")) type.erase(0, 2);
  static const std::map<std::string, std::string> kBasic = {
      {"CORBA::Long", "long"},     {"CORBA::ULong", "unsigned long"}, {"CORBA::Boolean", "boolean"},
      {"CORBA::String", "string"}, {"CORBA::Object", "Object"},       {"char", "string"}};
  const auto basic = kBasic.find(type);
  return basic == kBasic.end() ? type : basic->second;
}

// "const ::X& name" is in X, "::X& name" inout X, "::X_out name" out X, "::X_ptr name" in X.
std::string WireArgument(std::string argument) {
  argument.resize(argument.rfind(' '));
  if (argument == "const char*") return "in string";
  const bool constant = argument.starts_with("const ");
  if (constant) argument.erase(0, 6);
  const bool reference = TakeEnd(argument, "&");
  if (TakeEnd(argument, "_out")) return "out " + WireType(argument);
  if (reference && !constant) return "inout " + WireType(argument);
  TakeEnd(argument, "_ptr");
  return "in " + WireType(argument);
}

// "virtual char* CRB_GetName(const char* userId) = 0" without its "virtual" and "= 0", as the table
// writes it.
std::string WireSignature(const std::string& declaration) {
  const std::size_t open = declaration.find('(');
  const std::size_t space = declaration.rfind(' ', open);
  std::string result = declaration.substr(0, space);
  if (!TakeEnd(result, "*")) TakeEnd(result, "_ptr");
  std::string arguments;
  for (const std::string& argument :
       Split(declaration.substr(open + 1, declaration.rfind(')') - open - 1), ',')) {
    arguments += (arguments.empty() ? "" : ", ") + WireArgument(argument);
  }
  return WireType(result) + declaration.substr(space, open - space) + "(" + arguments + ")";
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Call descriptor class -> the exceptions that it lets through, sorted, as the table writes them.
std::map<std::string, std::string> ExceptionsByDescriptor(const std::string& source) {
  std::map<std::string, std::string> exceptions;
  std::size_t at = 0;
  while (true) {
    std::string name = Between(source, "\nconst char* const ", "::_user_exns[] = {", at);
    if (at == std::string::npos) return exceptions;
    std::string& line = exceptions[name];
    std::size_t end = at;
    std::set<std::string> sorted;
    for (std::string& id : Split(Between(source, "", "}", end), ',')) {
      if (TakeEnd(id, "::_PD_repoId")) sorted.insert(id.substr(id.rfind(':') + 1));
    }
    for (const std::string& id : sorted) line += (line.empty() ? " raises " : " ") + id;
  }
}

// Appends every interface of one generated pair of files to `table`, as the table writes it.
void ReadInterfaces(const std::string& header, const std::string& source,
                    std::vector<std::string>& table) {
  const std::map<std::string, std::string> exceptions = ExceptionsByDescriptor(source);
  for (std::size_t at = 0; at != std::string::npos;) {
    const std::string head = Between(header, "\nclass _impl_", "{", at);
    if (at == std::string::npos) return;
    if (head.find(';') != std::string::npos) {  // a forward declaration
      at -= 1;
      continue;
    }
    const std::string name = head.substr(0, head.find(' '));
    std::string line = "interface " + name;
    std::string separator = ": ";
    for (std::size_t base = 0;;) {
      const std::string baseName = Between(head + ",", "virtual _impl_", ",", base);
      if (base == std::string::npos) break;
      line += separator + Split(baseName, '\n').front();
      separator = " ";
    }
    table.push_back(line);

    std::size_t end = at;
    const std::string body = Between(header, "", "};", end);
    std::vector<std::string> names;
    for (const std::string& statement : Split(body, ';')) {
      std::string declaration =
          statement.substr(std::min(statement.find("virtual "), statement.size()));
      if (!TakeEnd(declaration, " = 0")) continue;
      const std::string signature = WireSignature(declaration.substr(8));
      const std::size_t open = signature.find('(');
      const std::size_t space = signature.rfind(' ', open);
      names.push_back(signature.substr(space + 1, open - space - 1));

      std::size_t call = source.find("_objref_" + name + "::" + names.back() + "(");
      ASSERT_NE(call, std::string::npos) << name << "::" << names.back();
      const std::string descriptor = Between(source, "{\n  ", " _call_desc", call);
      const auto raised = exceptions.find(descriptor);
      table.push_back("  " + signature + (raised == exceptions.end() ? "" : raised->second));
    }

    // The dispatcher knows the same operations, in the same order and under these names.
    std::size_t dispatcher = source.find("\n_impl_" + name + "::_dispatch(");
    ASSERT_NE(dispatcher, std::string::npos) << name;
    const std::string dispatch = Between(source, "{", "\n}\n", dispatcher);
    std::vector<std::string> dispatched;
    for (std::size_t op = 0;;) {
      dispatched.push_back(Between(dispatch, "strMatch(op, \"", "\"", op));
      if (op == std::string::npos) break;
    }
    dispatched.pop_back();
    EXPECT_EQ(dispatched, names) << name;
  }
}

// The table by interface, so that a difference is reported beside the interface's name.
std::map<std::string, std::vector<std::string>> ByInterface(const std::vector<std::string>& table) {
  std::map<std::string, std::vector<std::string>> interfaces;
  std::vector<std::string>* current = nullptr;
  for (const std::string& line : table) {
    if (line.starts_with("interface ")) current = &interfaces[line];
    if (current != nullptr) current->push_back(line);
  }
  return interfaces;
}

TEST(WireOperations, AreWhatTheTableSays) {
  std::vector<std::string> generated;
  for (const auto& file : std::filesystem::directory_iterator(VQ_WIRE_GENERATED)) {
    if (file.path().extension() != ".h") continue;
    std::filesystem::path source = file.path();
    ReadInterfaces(ReadFile(file.path()), ReadFile(source.replace_extension(".cpp")), generated);
  }
  const auto actual = ByInterface(generated);
  const auto expected = ByInterface(ReadTable("operations.txt"));
  ASSERT_EQ(expected.size(), 19U);
  for (const auto& [name, lines] : expected) {
    const auto found = actual.find(name);
    if (found == actual.end()) {
      ADD_FAILURE() << name << " is not generated so";
    } else {
      EXPECT_EQ(found->second, lines) << name;
    }
  }
  EXPECT_EQ(actual.size(), expected.size());
}

}  // namespace
