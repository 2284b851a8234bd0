#include <string>

#include <gtest/gtest.h>

#include <support/configuration/XmlPlatform.h>
#include <tests/fixture/Environment.h>
#include <vq_client_common/environment/StrX.h>
#include <vq_client_common/environment/VqNodeFilter.h>
#include <xercesc/dom/DOM.hpp>

namespace {

using xercesc::DOMNode;

TEST(StrX, GivesTheTextInTheLocalesEncoding) {
  const vq::test::Variable locale("LC_ALL", "C.UTF-8");
  const vq::XmlSession xml;
  const StrX text(u"a\u00E9");
  EXPECT_STREQ(text.localForm(), "a\xC3\xA9");
  EXPECT_EQ(static_cast<char*>(text), text.localForm());
  EXPECT_STREQ(StrX(nullptr).localForm(), "");
}

TEST(VqNodeFilter, AcceptsItsTypeAndNameAlone) {
  const struct {
    short type;
    const char* name;
    int withReject, without;  // 1 to accept, 2 to reject, 3 to skip
  } cases[] = {{DOMNode::ELEMENT_NODE, "server", 1, 1},
               {DOMNode::ELEMENT_NODE, "other", 2, 3},
               {DOMNode::COMMENT_NODE, "server", 2, 3},
               {0, "server", 3, 3}};
  const vq::XmlSession xml;
  auto* document = xercesc::DOMImplementation::getImplementation()->createDocument();
  const DOMNode* element = document->createElement(u"server");
  for (const auto& [type, name, withReject, without] : cases) {
    EXPECT_EQ(VqNodeFilter(type, name, true).acceptNode(element), withReject) << type << name;
    EXPECT_EQ(VqNodeFilter(type, name, false).acceptNode(element), without) << type << name;
  }
  document->release();
}

}  // namespace
