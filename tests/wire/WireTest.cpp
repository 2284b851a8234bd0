// Pins what a type looks like on the wire: its repository id, the names, types and order of its
// members, the order of its values, as the TypeCodes of the generated code say it; and which
// interfaces a reference is.

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <support/orb/OrbServer.h>
#include <vq_idl/AdministrationRecordsC.h>
#include <vq_idl/CallbackRepositoryC.h>
#include <vq_idl/DefinitionItemC.h>
#include <vq_idl/SystemConfigurationC.h>
#include <vq_idl/UsersManagerC.h>

namespace {

// The lines of a table beside the tests: "#" opens a comment, and a line that is indented by six or
// more goes on with the one before. Empty when there is no such file.
std::vector<std::string> ReadTable(const std::string& name) {
  std::ifstream file(VQ_WIRE_TABLES + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::size_t indent = line.find_first_not_of(' ');
    if (indent >= 6 && !lines.empty()) {
      lines.back() += " " + line.substr(indent);
    } else {
      lines.push_back(line);
    }
  }
  return lines;
}

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

// The table's entry of a type: "struct CrbAttribute = string attrName, attrVal".
std::string Describe(CORBA::TypeCode_ptr type) {
  const CORBA::TCKind kind = type->kind();
  // An id of another form stays whole, and is not in the table.
  const std::string name = std::regex_replace(type->id(), std::regex("^IDL:([^:]+):1\\.0$"), "$1");
  if (kind == CORBA::tk_objref) return "interface " + name;
  if (kind == CORBA::tk_alias) {
    const CORBA::TypeCode_var original = type->content_type();
    return "alias " + name + " = " + NameOf(original);
  }
  std::string text = (kind == CORBA::tk_enum     ? "enum "
                      : kind == CORBA::tk_struct ? "struct "
                                                 : "exception ") +
                     name + " =";
  std::string former;
  for (CORBA::ULong i = 0; i < type->member_count(); ++i) {
    if (kind != CORBA::tk_enum) {
      const CORBA::TypeCode_var member = type->member_type(i);
      const std::string own = NameOf(member);
      text += own == former ? "," : (i == 0 ? " " : "; ") + own;
      former = own;
    }
    text += std::string(" ") + type->member_name(i);
  }
  return text;
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

  std::set<std::string> told;
  for (const std::string& line : ReadTable("types.txt")) {
    const bool several = line.starts_with("alias ") || line.starts_with("interface ");
    std::istringstream rest(several ? line.substr(line.find(' ')) : line);
    const std::string kind = several ? line.substr(0, line.find(' ')) : "";
    for (std::string entry; std::getline(rest, entry, several ? ';' : '\n');)
      told.insert(kind + entry);
  }
  EXPECT_THAT(generated, ::testing::UnorderedElementsAreArray(told));
  EXPECT_GT(told.size(), 80U);
}

template <typename Value>
Value ThroughAny(Value value) {
  CORBA::Any any;
  any <<= value;
  Value back{};
  EXPECT_TRUE(any >>= back);
  return back;
}

TEST(WireTypes, ClosingValuesAndEmptyOnesPassLikeAnyOther) {
  EXPECT_EQ(ThroughAny(dummy_QCSJobActions), 43);
  EXPECT_EQ(ThroughAny(MAX_ACCESS), 5);
  EXPECT_EQ(ThroughAny(MAX_RES_TYPE), 10);
  EXPECT_EQ(ThroughAny(MAX_PRIV_TYPE), 22);
  EXPECT_EQ(ThroughAny(DEFAULT_ACCESS), 0);
  CORBA::Any any;
  any <<= QCSCorbaJobActsSet();
  const QCSCorbaJobActsSet* back = nullptr;
  ASSERT_TRUE(any >>= back);
  EXPECT_EQ(back->length(), 0U);
  const QCSCommAdminStruct record{};  // its texts are never null
  EXPECT_STREQ(record.m_Code.in(), "");
  EXPECT_STREQ(record.m_UnreadAfterNewDayTime.in(), "");
  EXPECT_STREQ(record.m_UpperCase.in(), "");
}

// Asked of real references, so it holds for the generated code of every ORB product.
// The object as the generated code of its interface has it: some products make a plain one.
template <class Interface>
CORBA::Object_ptr Typed(CORBA::Object_ptr object) {
  return Interface::_unchecked_narrow(object);
}
#define ROW(interface) \
  { #interface, Typed < interface> }
const std::map<std::string, CORBA::Object_ptr (*)(CORBA::Object_ptr)> kInterfaces = {
    ROW(QCSCorbaAttrHolderIterator),
    ROW(QCSCorbaDef),
    ROW(QCSCorbaMatching),
    ROW(QCSCorbaTerm),
    ROW(QCSCorbaSelectionDef),
    ROW(QCSCorbaDBSelectionDef),
    ROW(QCSCorbaSESelectionDef),
    ROW(QCSCorbaCollectionDef),
    ROW(QCSCorbaFilterDef),
    ROW(QCSCorbaAuthSelectionDef),
    ROW(QCSCorbaHierarchyDef),
    ROW(QCSCorbaViewDef),
    ROW(QCSCorbaAuthorization),
    ROW(IManageUserPreferences),
    ROW(DefinitionItem),
    ROW(QCSCorbaUsersManager),
    ROW(VQCorbaSystemConfiguration),
    ROW(CrbCallbackRepository),
    ROW(TestCallback)};

TEST(WireReferences, AReferenceIsOfItsInterfaceAndItsBasesAndOfNoOther) {
  std::map<std::string, std::set<std::string>> bases;  // of each interface, itself among them
  for (const std::string& line : ReadTable("operations.txt")) {
    std::istringstream words(std::regex_replace(line, std::regex(":"), ""));
    std::string name, base;
    if (words >> base >> name; base != "interface") continue;
    bases[name].insert(name);
    while (words >> base) bases[name].merge(std::set(bases.at(base)));
  }
  ASSERT_EQ(bases.size(), kInterfaces.size());
  const auto server = vq::orb::StartServerOrb({});
  const CORBA::Object_var root = server->Orb()->resolve_initial_references("RootPOA");
  const PortableServer::POA_var poa = PortableServer::POA::_narrow(root.in());
  const PortableServer::POAManager_var manager = poa->the_POAManager();
  manager->activate();  // Until then a question to the object may wait.
  for (const auto& [name, known] : bases) {
    const CORBA::Object_var plain = poa->create_reference(("IDL:" + name + ":1.0").c_str());
    const CORBA::Object_var object = kInterfaces.at(name)(plain.in());
    EXPECT_TRUE(object->_is_a("IDL:omg.org/CORBA/Object:1.0")) << name;
    for (const auto& [other, ignored] : bases) {
      bool is = false;
      try {
        is = object->_is_a(("IDL:" + other + ":1.0").c_str());
      } catch (const CORBA::SystemException&) {
        // The generated code does not know, and asks the object, which there is none behind.
      }
      EXPECT_EQ(is, known.contains(other)) << name << " as " << other;
    }
  }
  server->Stop();
}

}  // namespace
