// The base of every servant of the simulator: its world, its server kind, and its name in the log.
//
//   class X : public Servant<POA_CrbCallbackRepository> { ... Begin("CRB_GetCallbackById") ... };
#ifndef VQ_SIMULATOR_SERVANT_H
#define VQ_SIMULATOR_SERVANT_H

#include <string>
#include <utility>

#include <simulator/Call.h>

// Overrides an operation that the simulator does not offer. `...`: the types of its parameters.
#define VQ_NOT_OFFERED(Result, operation, ...) \
  Result operation(__VA_ARGS__) override {     \
    NotOffered(#operation);                    \
  }

namespace vq::sim {

template <typename Skeleton>
class Servant : public Skeleton {
 protected:
  // `object` is the servant's name in the log; a literal.
  Servant(World& world, std::string kind, const char* object)
      : m_world(world), m_kind(std::move(kind)), m_object(object) {}

  // A call of an operation of this object.
  [[nodiscard]] Call Begin(const char* operation, Call::Arguments arguments = {}) {
    return Call(m_world, m_kind, m_object, operation, arguments);
  }

  // The same, served: see Call::Run.
  template <typename Body>
  auto Serve(const char* operation, Call::Arguments arguments, Body body,
             std::string* text = nullptr) {
    return Begin(operation, arguments).Run(body, text);
  }

  // Serves an operation that the simulator does not offer.
  [[noreturn]] void NotOffered(const char* operation) {
    Serve(operation, {}, [] { throw CORBA::NO_IMPLEMENT(); });
    throw CORBA::NO_IMPLEMENT();
  }

  World& m_world;

 private:
  const std::string m_kind;
  const char* const m_object;
};

}  // namespace vq::sim

#endif  // VQ_SIMULATOR_SERVANT_H
