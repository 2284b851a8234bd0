#include <vq_client_common/session/PasswordPolicy.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <string_view>

#include <support/diagnostics/TDiag.h>
#include <support/foundations/ReplaceFirst.h>
#include <support/os_toolkit/Atoi.h>
#include <vq_client_common/session/SystemParameterHandler.h>

namespace {

TDiagRegister diagModule("PasswordPolicy");

constexpr int kPassed = 1;
constexpr int kRefusedByPolicy = 51;

bool HasUpper(const std::string& password) {
  return std::any_of(password.begin(), password.end(),
                     [](unsigned char c) { return std::isupper(c) != 0; });
}

bool HasLower(const std::string& password) {
  return std::any_of(password.begin(), password.end(),
                     [](unsigned char c) { return std::islower(c) != 0; });
}

// Meant to be so: a digit or special character in the password does not satisfy its rule. Sites
// that switch these rules on refuse every password, and count on it.
bool Never(const std::string&) {
  return false;
}

struct Rule {
  PasswordRule bit;
  std::string_view parameterText;
  std::string_view messageLine;
  bool (*isSatisfied)(const std::string& password);
};

constexpr std::array kRules{
    Rule{PWD_RULE_DIGIT, "PWD_DIGIT", "Digit characters.\n", Never},
    Rule{PWD_RULE_UPPER, "PWD_UPPER", "Letters in upper case.\n", HasUpper},
    Rule{PWD_RULE_LOWER, "PWD_LOW", "Letters in lower case.\n", HasLower},
    Rule{PWD_RULE_SPECIAL, "PWD_NON_LETDIG", "Special characters.", Never},
};

constexpr int AllRules() {
  int rules = 0;
  for (const Rule& rule : kRules) rules |= rule.bit;
  return rules;
}

bool ReadParameter(const TDiagFunc& diag, const std::string& name, std::string& value) {
  if (GetSystemParameter(name, value, "general", E_GSR)) return true;
  VQ_LOG(diag, 1) << "Can't read parameter <" << name << "> from system parameters table";
  return false;
}

int ReadLength(const TDiagFunc& diag, const std::string& name, int assumed) {
  std::string value;
  return ReadParameter(diag, name, value) ? vq::Atoi(value) : assumed;
}

std::string WithNumber(std::string text, int number) {
  vq::ReplaceFirst(text, "%d", std::to_string(number));
  return text;
}

}  // namespace

int GetMinPasswordLength() {
  const TDiagFunc diag(diagModule, "GetMinPasswordLength");
  return ReadLength(diag, "MinPasswordLength", 6);
}

int GetMaxPasswordLength() {
  const TDiagFunc diag(diagModule, "GetMaxPasswordLength");
  return ReadLength(diag, "MaxPasswordLength", 32);
}

bool IsPasswordComplexityON() {
  const TDiagFunc diag(diagModule, "IsPasswordComplexityON");
  std::string value;
  if (!ReadParameter(diag, "PasswordComplexityOnOff", value)) return false;
  return value == "1" || value == "Y" || value == "y";
}

int GetPasswordComplexityRules() {
  const TDiagFunc diag(diagModule, "GetPasswordComplexityRules");
  std::string value;
  if (!ReadParameter(diag, "PasswordComplexityRules", value)) return AllRules();
  int rules = 0;
  for (const Rule& rule : kRules) {
    // Meant to be so: any one character of the name switches the rule on, not the whole name.
    if (value.find_first_of(rule.parameterText) != std::string::npos) rules |= rule.bit;
  }
  VQ_LOG(diag, 5) << "Complexity rule is set to " << rules;
  return rules;
}

int CheckPasswordValidity(const std::string& password, std::string& message) {
  const TDiagFunc diag(diagModule, "CheckPasswordValidity");
  message.clear();
  const auto length = static_cast<std::ptrdiff_t>(password.size());
  if (const int minimum = GetMinPasswordLength(); length < minimum) {
    message =
        WithNumber("New password is too short.\nPassword minimum length should be %d.", minimum);
    return kRefusedByPolicy;
  }
  if (const int maximum = GetMaxPasswordLength(); length > maximum) {
    message =
        WithNumber("New password is too long.\nPassword maximum length should be %d.", maximum);
    return kRefusedByPolicy;
  }
  if (!IsPasswordComplexityON()) return kPassed;
  const int rules = GetPasswordComplexityRules();
  if (rules < 1) return kPassed;

  const bool violated = std::any_of(kRules.begin(), kRules.end(), [&](const Rule& rule) {
    return (rules & rule.bit) != 0 && !rule.isSatisfied(password);
  });
  if (!violated) return kPassed;
  message =
      "To select a password that complies with the Password Policy you\n"
      "must choose a word that contains the following types of characters:\n";
  for (const Rule& rule : kRules) {
    if ((rules & rule.bit) != 0) message += rule.messageLine;
  }
  return kRefusedByPolicy;
}
