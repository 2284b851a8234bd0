// Documents that try to make a parser swell, recurse or fetch.
//
//   vq::test::FetchWatch watch(directory);
//   for (const std::string& text : vq::test::HostileXml("P", "<P><K>", "</K></P>", watch)) ...
#ifndef VQ_TESTS_HOSTILEXML_H
#define VQ_TESTS_HOSTILEXML_H

#include <string>
#include <vector>

#include <tests/FetchWatch.h>

namespace vq::test {

inline std::string Repeated(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

// Well-formed documents with the root element `root`: each has `before`, the content that does the
// harm, and `after`.
inline std::vector<std::string> HostileXml(const std::string& root, const std::string& before,
                                           const std::string& after, const FetchWatch& watch) {
  std::string levels = "<!ENTITY e0 'xxxxxxxxxxxxxxxx'>";
  for (int i = 1; i < 12; ++i) {
    levels += "<!ENTITY e" + std::to_string(i) + " '" +
              Repeated("&e" + std::to_string(i - 1) + ";", 10) + "'>";
  }
  std::string parameters = "<!ENTITY % e0 ' '>";
  for (int i = 1; i < 12; ++i) {
    parameters += "<!ENTITY % e" + std::to_string(i) + " '" +
                  Repeated("&#37;e" + std::to_string(i - 1) + ";", 10) + "'>";
  }
  const std::string wide = "<!ENTITY e '" + Repeated("x", 200'000) + "'>";
  const std::string everywhere = "<!ATTLIST d a CDATA '" + Repeated("x", 100'000) + "'>";
  const std::string file = "SYSTEM '" + watch.FileUrl() + "'";
  const std::string page = "SYSTEM '" + watch.HttpUrl() + "'";
  const std::pair<std::string, std::string> cases[] = {
      {"[" + levels + "]", "&e11;"},
      {"[" + levels + "]", "<a b='&e11;'/>"},
      {"[" + wide + "]", Repeated("&e;", 100'000)},
      {"[" + parameters + "%e11;]", "&x;"},
      {"[" + everywhere + "]", Repeated("<d/>", 20'000)},
      {"[<!ENTITY x '&x;'>]", "&x;"},
      {"[<!ENTITY x " + file + ">]", "&x;"},
      {"[<!ENTITY x " + page + ">]", "&x;"},
      {"[<!ENTITY % p " + file + "> %p;]", "&x;"},
      {file, "&x;"},
      {page, "&x;"},
  };
  std::vector<std::string> documents;
  for (const auto& [type, content] : cases) {
    documents.push_back("<!DOCTYPE " + root + " " + type + ">" + before + content + after);
  }
  documents.push_back(before + Repeated("<d>", 100'000) + Repeated("</d>", 100'000) + after);
  return documents;
}

}  // namespace vq::test

#endif  // VQ_TESTS_HOSTILEXML_H
