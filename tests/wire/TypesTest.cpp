// Pins what a type looks like on the wire: its repository id, the names, types and order of its
// members, the order of its values. All of it is read from the TypeCodes of the generated code.

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <vq_idl/AdministrationRecordsC.h>
#include <vq_idl/AttributesC.h>
#include <vq_idl/AuthorizationC.h>
#include <vq_idl/CallbackRepositoryC.h>
#include <vq_idl/DefinitionItemC.h>
#include <vq_idl/SelectionDefinitionC.h>
#include <vq_idl/SharedTypesC.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UserPreferencesC.h>
#include <vq_idl/UsersManagerC.h>

#include "Table.h"

namespace {

// What a member or element of this type is called in the table.
std::string NameOf(CORBA::TypeCode_ptr type) {
  switch (type->kind()) {
    case CORBA::tk_string:
      return type->length() == 0 ? "string" : "bounded string";
    case CORBA::tk_long:
      return "long";
    case CORBA::tk_boolean:
      return "boolean";
    case CORBA::tk_octet:
      return "octet";
    case CORBA::tk_sequence: {
      const CORBA::TypeCode_var element = type->content_type();
      return (type->length() == 0 ? "sequence<" : "bounded sequence<") + NameOf(element) + ">";
    }
    default:
      return type->name();
  }
}

// The table's line of a type: "struct IDL:CrbAttribute:1.0 = string attrName; string attrVal".
std::string Describe(CORBA::TypeCode_ptr type) {
  std::string kind = "?";
  std::string content;
  switch (type->kind()) {
    case CORBA::tk_enum:
      kind = "enum";
      for (CORBA::ULong i = 0; i < type->member_count(); ++i) {
        content += (i == 0 ? " = " : " ") + std::string(type->member_name(i));
      }
      break;
    case CORBA::tk_struct:
    case CORBA::tk_except:
      kind = type->kind() == CORBA::tk_struct ? "struct" : "exception";
      content = " =";
      for (CORBA::ULong i = 0; i < type->member_count(); ++i) {
        const CORBA::TypeCode_var member = type->member_type(i);
        content += (i == 0 ? " " : "; ") + NameOf(member) + " " + type->member_name(i);
      }
      break;
    case CORBA::tk_alias: {
      kind = "alias";
      const CORBA::TypeCode_var original = type->content_type();
      content = " = " + NameOf(original);
      break;
    }
    case CORBA::tk_objref:
      kind = "interface";
      break;
    default:
      break;
  }
  return kind + " " + type->id() + content;
}

TEST(WireTypes, AreWhatTheTableSays) {
  const CORBA::TypeCode_ptr types[] = {
      // clang-format off
      _tc_QCSJobActions, _tc_QCSAuthLevelEnum, _tc_QCSResTypeEnum, _tc_PrivilegeTypeEnum,
      _tc_UseGroupFilterEnum, _tc_ADD_ON_STATUS_ENUM, _tc_QCSCorbaLMInfoSeq, _tc_CrbOctetSeq,
      _tc_stringSeq, _tc_stringSeqSeq, _tc_stringSeqSeqSeq, _tc_boolSeq, _tc_VQLongSeq,
      _tc_QCSAuthLevelEnumSeq, _tc_QCSCorbaJobActsSet, _tc_ProtoMsg, _tc_UserID, _tc_CRB_TRC,
      _tc_CrbAttributeSeq, _tc_CrbWebSrvConnectorSeq, _tc_CrbWebSrvApplicationDataSeq,
      _tc_QCSCorbaUserDetSeq, _tc_QCSCorbaAuth2LvlSeq, _tc_QCSCorbaAuth2LvlSeq2,
      _tc_QCSCorbaAuthFolderIncJLSeq, _tc_QCSCORBAAuthGroupPiarSeq,
      _tc_QCSCorbaUserActiveQueriesSeq, _tc_ItemInCategorySeq, _tc_DefinitionItemId,
      _tc_DefinitionItemInfo, _tc_DefinitionItemData, _tc_DefinitionItemInfos,
      _tc_ResourceBinaryData, _tc_DefinitionItemsList, _tc_QCSCorbaAttrHolderSeq,
      _tc_QCSCorbaDBJob, _tc_QCSCorbaDBJobSeq, _tc_CrbCallbackId, _tc_QCSCommAdminSeq,
      _tc_QCSCorbaLMInfo, _tc_CrbAttribute, _tc_ArchiveParams, _tc_CrbWebSrvConnector,
      _tc_CrbWebSrvApplicationData, _tc_QCSCorbaUserDetailsStruct, _tc_QCSCORBAAuthPair,
      _tc_QCSCORBAAuthPair2, _tc_QCSCORBAAuthFolderIncJLPair, _tc_QCSCORBAAuthGroupPiar,
      _tc_QCSCorbaUserDefinitionQueries, _tc_QCSCorbaUserVltActiveQueries, _tc_ItemInCategory,
      _tc_QCSCorbaAttrHolder, _tc_DBConnectionParams, _tc_QCSCorbaAuthorizationStruct,
      _tc_QCSCorbaAuthorizationStructEx, _tc_QCSCorbaAuthorizationStructEx2,
      _tc_QCSCorbaAuthorizationStructA, _tc_QCSCommAdminStruct, _tc_USER_NOT_AUTHORIZED,
      _tc_USER_NOT_FOUND, _tc_DB_CONNECTION_ERROR, _tc_VQ_SERVICE_NOT_SUPPORTED,
      _tc_VQ_SERVICE_UNAVAILABLE, _tc_OPERATION_NOT_SUPPORTED,
      VQCorbaSystemConfiguration::_tc_PARAMETER_NOT_FOUND, VQCorbaSystemConfiguration::_tc_FAIL,
      QCSCorbaUsersManager::_tc_INVALID_ACTION_NAME, QCSCorbaTerm::_tc_INVALID_ARGUMENT,
      _tc_QCSCorbaAttrHolderIterator, _tc_QCSCorbaDef, _tc_QCSCorbaMatching, _tc_QCSCorbaTerm,
      _tc_QCSCorbaSelectionDef, _tc_QCSCorbaDBSelectionDef, _tc_QCSCorbaSESelectionDef,
      _tc_QCSCorbaCollectionDef, _tc_QCSCorbaFilterDef, _tc_QCSCorbaAuthSelectionDef,
      _tc_QCSCorbaHierarchyDef, _tc_QCSCorbaViewDef, _tc_QCSCorbaAuthorization,
      _tc_IManageUserPreferences, _tc_DefinitionItem, _tc_QCSCorbaUsersManager,
      _tc_VQCorbaSystemConfiguration, _tc_CrbCallbackRepository, _tc_TestCallback
      // clang-format on
  };
  std::set<std::string> generated;
  for (const CORBA::TypeCode_ptr type : types) generated.insert(Describe(type));

  const std::vector<std::string> lines = ReadTable("types.txt");
  ASSERT_GT(lines.size(), 80U);
  for (const std::string& line : lines) {
    EXPECT_EQ(generated.erase(line), 1U) << "not generated: " << line;
  }
  for (const std::string& line : generated) ADD_FAILURE() << "not in the table: " << line;
}

// A value passes through an Any and comes back, the values that close an enum like any other.
template <typename Value>
Value ThroughAny(Value value) {
  CORBA::Any any;
  any <<= value;
  Value back{};
  EXPECT_TRUE(any >>= back);
  return back;
}

TEST(WireTypes, ClosingValuesPassLikeAnyOther) {
  EXPECT_EQ(ThroughAny(dummy_QCSJobActions), 43);
  EXPECT_EQ(ThroughAny(MAX_ACCESS), 5);
  EXPECT_EQ(ThroughAny(MAX_RES_TYPE), 10);
  EXPECT_EQ(ThroughAny(MAX_PRIV_TYPE), 22);
  EXPECT_EQ(ThroughAny(DEFAULT_ACCESS), 0);
}

TEST(WireTypes, AnEmptySetOfJobActionsIsLegal) {
  CORBA::Any any;
  any <<= QCSCorbaJobActsSet();
  const QCSCorbaJobActsSet* back = nullptr;
  ASSERT_TRUE(any >>= back);
  EXPECT_EQ(back->length(), 0U);
}

// Text members of an administration record are never null, also in a record that nobody filled.
TEST(WireTypes, AnEmptyAdministrationRecordHoldsEmptyTexts) {
  const QCSCommAdminStruct record{};
  EXPECT_STREQ(record.m_Code.in(), "");
  EXPECT_STREQ(record.m_UnreadAfterNewDayTime.in(), "");
  EXPECT_STREQ(record.m_UpperCase.in(), "");
}

}  // namespace
