#include <simulator/Call.h>

#include <cstdlib>

#include <simulator/Orb.h>
#include <simulator/Raise.h>

namespace vq::sim {
namespace {

nlohmann::ordered_json Shortened(nlohmann::ordered_json value) {
  if (!value.is_string()) return value;
  auto& text = value.get_ref<std::string&>();
  const std::size_t size = text.size();
  if (size <= kLongestLogged) return value;
  text.resize(kLongestLogged);
  text += "... (" + std::to_string(size) + " bytes)";
  return value;
}

}  // namespace

Call::Call(World& world, const std::string& kind, std::string_view object, const char* operation,
           Arguments arguments)
    : m_world(world), m_kind(kind), m_operation(operation) {
  m_line = {{"event", "call"}, {"kind", kind}, {"object", object}, {"operation", operation}};
  Add(arguments);
}

Call& Call::Add(Arguments arguments) {
  for (const auto& [name, value] : arguments) m_arguments[name] = Shortened(value);
  return *this;
}

Call& Call::Secret(const char* name, const char* value, std::string_view form) {
  m_arguments[name] = {{"length", std::string_view(value).size()}};
  m_line[std::string(name) + "Form"] = form;
  return *this;
}

void Call::Note(const char* name, nlohmann::ordered_json value) {
  m_notes[name] = std::move(value);
}

void Call::Arrive() {
  m_line["arguments"] = m_arguments;
  m_world.log.Count(m_operation);
  m_faults = m_world.faults.Hit(m_operation, m_kind);
  m_number = m_world.log.Write(m_line);
}

std::optional<Fault> Call::Act(bool after) {
  std::optional<Fault> answers;
  for (const Fault& fault : m_faults) {
    if (fault.after != after) continue;
    switch (fault.action) {
      case Fault::Action::kDelay:
        m_world.Wait(fault.delay);
        break;
      case Fault::Action::kDrop:
        m_world.log.Write({{"event", "drop"}, {"call", m_number}, {"operation", m_operation}});
        DropConnections();
        break;
      case Fault::Action::kDie:
        m_world.log.Write({{"event", "die"}, {"call", m_number}, {"operation", m_operation}});
        std::_Exit(kDiedOnDemand);
      case Fault::Action::kRaise:
        RaiseNamed(fault);
      case Fault::Action::kReturn:
      case Fault::Action::kRefuse:
        answers = fault;
        break;
    }
  }
  return answers;
}

void Call::Answer(const char* member, nlohmann::ordered_json value) {
  nlohmann::ordered_json line = {
      {"event", "answer"}, {"call", m_number}, {"operation", m_operation}};
  if (!value.is_null()) line[member] = std::move(value);
  line.update(m_notes);
  m_world.log.Write(line);
}

}  // namespace vq::sim
