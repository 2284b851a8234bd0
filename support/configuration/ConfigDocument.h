// The XML document of a configuration domain, in memory.
//
// What counts: <scope name="..."> elements directly in the root <domain>, and <var name="...">
// elements directly in them, whose text is the value. Everything else - comments, other elements
// and attributes, a scope or variable without a name - is ignored and kept in its place. Of two
// with the same name the first counts.
//
//   vq::ConfigDocument document;
//   if (document.Parse(text, error)) {
//     document.Apply({vq::ConfigChange::Kind::kSetVar, "default", "-BiDirPolicy", "1"});
//     text = document.Text().value();
//   }
#ifndef VQ_SUPPORT_CONFIGURATION_CONFIGDOCUMENT_H
#define VQ_SUPPORT_CONFIGURATION_CONFIGDOCUMENT_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <xercesc/util/XercesDefs.hpp>

#include <support/configuration/ConfigAPI.h>

XERCES_CPP_NAMESPACE_BEGIN
class DOMDocument;
XERCES_CPP_NAMESPACE_END

namespace vq {

// Deletes an object of Xerces by its release().
struct CallRelease {
  void operator()(auto* object) const { object->release(); }
};

class ConfigDocument {
 public:
  ConfigDocument();  // an empty domain
  ~ConfigDocument();
  ConfigDocument(const ConfigDocument&) = delete;
  ConfigDocument& operator=(const ConfigDocument&) = delete;

  // Replaces the document by the one in `text`. Returns false, with the reason in `error` and the
  // document unchanged, when the text is not well-formed, has a document type declaration, nests
  // elements more than 100 deep, or its root is no <domain>. Nothing outside `text` is ever read.
  bool Parse(std::string_view text, std::string& error);

  ConfigScopes Scopes() const;

  // Applies the change. XmlFromUtf8 must accept its strings.
  void Apply(const ConfigChange& change);

  // The document as UTF-8 with a closing line end; nothing when it can't be written.
  std::optional<std::string> Text() const;

 private:
  std::unique_ptr<XERCES_CPP_NAMESPACE::DOMDocument, CallRelease> m_document;
};

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_CONFIGDOCUMENT_H
