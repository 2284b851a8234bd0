#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <support/configuration/XmlPlatform.h>
#include <tests/TestEnvironment.h>
#include <vq_client_common/environment/StrX.h>
#include <vq_client_common/environment/VqNodeFilter.h>
#include <xercesc/dom/DOM.hpp>

namespace {

using xercesc::DOMNode;
using xercesc::DOMNodeFilter;

TEST(StrX, GivesTheTextInTheLocalesEncoding) {
  const vq::test::Variable locale("LC_ALL", "C.UTF-8");
  const vq::XmlSession xml;
  const StrX text(u"a\u00E9");
  EXPECT_STREQ(text.localForm(), "a\xC3\xA9");
  const char* converted = text;
  EXPECT_EQ(converted, text.localForm());
  EXPECT_STREQ(StrX(nullptr).localForm(), "");
}

TEST(VqNodeFilter, AcceptsItsTypeAndNameAlone) {
  struct Case {
    short type;
    const char* name;
    bool reject;
    DOMNodeFilter::FilterAction element, comment;
  };
  constexpr auto kAccept = DOMNodeFilter::FILTER_ACCEPT;
  constexpr auto kReject = DOMNodeFilter::FILTER_REJECT;
  constexpr auto kSkip = DOMNodeFilter::FILTER_SKIP;
  const Case cases[] = {
      {DOMNode::ELEMENT_NODE, "server", false, kAccept, kSkip},
      {DOMNode::ELEMENT_NODE, "server", true, kAccept, kReject},
      {DOMNode::ELEMENT_NODE, "other", true, kReject, kReject},
      {DOMNode::ELEMENT_NODE, "other", false, kSkip, kSkip},
      {DOMNode::COMMENT_NODE, "#comment", true, kReject, kAccept},
      {0, "server", true, kSkip, kSkip},
  };
  const vq::XmlSession xml;
  xercesc::DOMDocument* document =
      xercesc::DOMImplementationRegistry::getDOMImplementation(u"Core")->createDocument();
  const DOMNode* element = document->createElement(u"server");
  const DOMNode* comment = document->createComment(u"server");
  for (const Case& c : cases) {
    const VqNodeFilter filter(c.type, c.name, c.reject);
    EXPECT_EQ(filter.acceptNode(element), c.element) << c.type << c.name << c.reject;
    EXPECT_EQ(filter.acceptNode(comment), c.comment) << c.type << c.name << c.reject;
  }
  document->release();
}

}  // namespace
