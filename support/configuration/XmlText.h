// Texts between this library (UTF-8) and the XML library (UTF-16), whatever the process's locale.
//
//   const auto name = vq::XmlFromUtf8("default");
//   if (name) element->setAttribute(u"name", name->c_str());
#ifndef VQ_SUPPORT_CONFIGURATION_XMLTEXT_H
#define VQ_SUPPORT_CONFIGURATION_XMLTEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace vq {

// Nothing when the text is no UTF-8 or holds a character that no XML document can hold, such as a
// zero byte. Xerces must be started. Safe on any thread.
std::optional<std::u16string> XmlFromUtf8(std::string_view text);

// Null gives the empty text. Xerces must be started. Safe on any thread.
std::string Utf8FromXml(const char16_t* text);

}  // namespace vq

#endif  // VQ_SUPPORT_CONFIGURATION_XMLTEXT_H
