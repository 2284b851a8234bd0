// One remote call, from its arrival to its answer: it is logged, and the faults set for it apply.
//
//   CORBA::Long CRB_Unregister(const char* userId) override {
//     Call call(m_world, m_kind, "UsersManager", "CRB_Unregister", {{"userId", userId}});
//     return call.Run([&] { return m_world.sessions.Close(userId) ? 1 : 0; });
//   }
//
// The body returns results and out values as values of its own: they are dropped when a fault
// answers instead.
#ifndef VQ_SIMULATOR_CALL_H
#define VQ_SIMULATOR_CALL_H

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <simulator/World.h>
#include <support/orb/Corba.h>

namespace vq::sim {

class Call {
 public:
  // By name, in the operation's order.
  using Arguments = std::initializer_list<std::pair<const char*, nlohmann::ordered_json>>;

  Call(World& world, const std::string& kind, std::string_view object, const char* operation,
       Arguments arguments);

  Call& Add(Arguments arguments);
  // A password or response: the log gets its length only, and "passwordForm" (FormOf).
  Call& Secret(const char* name, const char* value, std::string_view form);
  // Adds a member to the answer's line.
  void Note(const char* name, nlohmann::ordered_json value);

  // Serves the call. `text` is the answer's message, if it has one: a fault may replace it. Raises
  // the exceptions of the body or of a fault; a standard exception becomes INTERNAL.
  template <typename Body>
  auto Run(Body body, std::string* text = nullptr) -> decltype(body());

 private:
  void Arrive();
  // Applies the faults of one moment. Returns the one that determines the answer, if any.
  std::optional<Fault> Act(bool after);
  // Writes the answer's line, with that member unless it is null.
  void Answer(const char* member, nlohmann::ordered_json value);
  template <typename Result>
  Result Forced(const Fault& fault, std::string* text);

  World& m_world;
  std::string m_kind;
  std::string m_operation;
  std::vector<Fault> m_faults;
  nlohmann::ordered_json m_line;
  nlohmann::ordered_json m_arguments = nlohmann::ordered_json::object();
  nlohmann::ordered_json m_notes = nlohmann::ordered_json::object();
  std::uint64_t m_number = 0;
};

template <typename Result>
Result Call::Forced(const Fault& fault, std::string* text) {
  if constexpr (std::is_arithmetic_v<Result>) {
    if (text != nullptr) *text = fault.message;
    return fault.action == Fault::Action::kRefuse ? Result{} : static_cast<Result>(fault.result);
  } else {
    throw CORBA::NO_PERMISSION();  // an operation without a code has no other way to refuse
  }
}

template <typename Body>
auto Call::Run(Body body, std::string* text) -> decltype(body()) {
  using Result = decltype(body());
  Arrive();
  try {
    std::optional<Fault> fault = Act(false);
    if constexpr (std::is_void_v<Result>) {
      if (fault) throw CORBA::NO_PERMISSION();
      body();
      if (Act(true)) throw CORBA::NO_PERMISSION();
      Answer("result", nullptr);
    } else {
      Result result = fault ? Forced<Result>(*fault, text) : body();
      fault = Act(true);
      if (fault) result = Forced<Result>(*fault, text);
      if constexpr (std::is_arithmetic_v<Result> || std::is_same_v<Result, std::string>) {
        Answer("result", result);
      } else {
        Answer("result", nullptr);
      }
      return result;
    }
  } catch (const CORBA::Exception& exception) {
    Answer("exception", exception._name());
    throw;
  } catch (const std::exception& exception) {
    Answer("exception", exception.what());
    throw CORBA::INTERNAL();
  }
}

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_CALL_H
