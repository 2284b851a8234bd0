// Makes the grants and the objects that the tests and the benchmark of the grant index use.
//
// The same seed gives the same grants on every host. The mix is that of a large installation:
//
//   45 %  one name          NAME = 'PAYROLL_EU_0004711'
//   25 %  a range of names  NAME LIKE 'PAYROLL_EU_00047*'
//    5 %  an ending         NAME LIKE '*_EU_0004711'
//    5 %  a part            NAME LIKE '*_EU_00047*'
//   12 %  in one place      DATACENTER = 'PROD3' AND NAME LIKE 'PAYROLL_EU_00047*'
//    4 %  with exceptions   NAME LIKE 'PAYROLL_EU_00047*' AND NAME != 'PAYROLL_EU_0004711'
//    2 %  either of two     NAME = '...' OR OWNER = 'ops4711'
//    2 %  by priority       PRIORITY >= '7' AND NAME LIKE 'PAYROLL_EU_00047*'
//
// The numbers run up to twice the count of grants, so that about half of the objects fit none.
//
//   const auto grants = vq::GenerateGrants(10'000, 1);
//   const auto objects = vq::GenerateObjects(100, 10'000, 2);
#ifndef VQ_BENCHMARKS_GRANTGENERATOR_H
#define VQ_BENCHMARKS_GRANTGENERATOR_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <support/selection/QCSObject.h>

namespace vq {

struct GeneratedGrant {
  std::string criteria;
  std::uint8_t level;  // 1 to 4
};

// Random numbers, the same on every host.
class GrantRandom {
 public:
  explicit GrantRandom(std::uint64_t seed) : m_engine(seed) {}

  // A number from 0 to `bound` - 1.
  std::size_t Below(std::size_t bound) { return m_engine() % bound; }

 private:
  std::mt19937_64 m_engine;
};

class GrantGenerator {
 public:
  GrantGenerator(std::size_t grants, std::uint64_t seed) : m_random(seed), m_numbers(2 * grants) {}

  GeneratedGrant Grant() {
    const std::string name = Name();
    const std::string range = name.substr(0, name.size() - 2) + "*";
    const std::string local = name.substr(name.find('_'));
    const auto level = static_cast<std::uint8_t>(1 + m_random.Below(4));
    const std::size_t kind = m_random.Below(100);
    if (kind < 45) return {"NAME = '" + name + "'", level};
    if (kind < 70) return {"NAME LIKE '" + range + "'", level};
    if (kind < 75) return {"NAME LIKE '*" + local + "'", level};
    if (kind < 80) return {"NAME LIKE '*" + local.substr(0, local.size() - 2) + "*'", level};
    if (kind < 92) {
      return {"DATACENTER = '" + DataCenter() + "' AND NAME LIKE '" + range + "'", level};
    }
    if (kind < 96) return {"NAME LIKE '" + range + "' AND NAME != '" + name + "'", level};
    if (kind < 98) return {"NAME = '" + name + "' OR OWNER = '" + Owner() + "'", level};
    return {"PRIORITY >= '7' AND NAME LIKE '" + range + "'", level};
  }

  QCSObject Object() {
    QCSObject object;
    object.SetAttribute("NAME", Name());
    object.SetAttribute("DATACENTER", DataCenter());
    object.SetAttribute("OWNER", Owner());
    object.SetAttribute("PRIORITY", std::to_string(m_random.Below(10)));
    return object;
  }

 private:
  std::string Name() {
    static constexpr std::array kApplications = {"PAYROLL", "LEDGER",  "BILLING", "STOCK",
                                                 "ORDERS",  "ARCHIVE", "CLAIMS",  "REPORTS"};
    static constexpr std::array kAreas = {"EU", "US", "ASIA", "LATAM"};
    std::string number = std::to_string(m_random.Below(m_numbers));
    number.insert(0, number.size() < 7 ? 7 - number.size() : 0, '0');
    return std::string(kApplications[m_random.Below(kApplications.size())]) + "_" +
           kAreas[m_random.Below(kAreas.size())] + "_" + number;
  }
  std::string DataCenter() { return "PROD" + std::to_string(m_random.Below(8)); }
  std::string Owner() { return "ops" + std::to_string(m_random.Below(m_numbers)); }

  GrantRandom m_random;
  std::size_t m_numbers;
};

inline std::vector<GeneratedGrant> GenerateGrants(std::size_t count, std::uint64_t seed) {
  GrantGenerator generator(count, seed);
  std::vector<GeneratedGrant> grants;
  grants.reserve(count);
  for (std::size_t i = 0; i < count; ++i) grants.push_back(generator.Grant());
  return grants;
}

// Objects that meet grants made by GenerateGrants(grants, ...).
inline std::vector<QCSObject> GenerateObjects(std::size_t count, std::size_t grants,
                                              std::uint64_t seed) {
  GrantGenerator generator(grants, seed);
  std::vector<QCSObject> objects;
  for (std::size_t i = 0; i < count; ++i) objects.push_back(generator.Object());
  return objects;
}

}  // namespace vq

#endif  // VQ_BENCHMARKS_GRANTGENERATOR_H
