#include <vq_client_common/environment/CmdParser.h>

#include <algorithm>
#include <cctype>
#include <iostream>
#include <stdexcept>

#include <support/diagnostics/TDiag.h>
#include <support/os_toolkit/Atoi.h>

namespace {

TDiagRegister diagModule("CmdParser");

}  // namespace

CmdParser* CmdParser::m_pCmdParser = nullptr;

CmdParser::CmdParser(bool caseSensitive, bool acceptShortParams)
    : m_caseSensitive(caseSensitive), m_acceptShortParams(acceptShortParams) {}

CmdParser::~CmdParser() {
  if (m_pCmdParser == this) m_pCmdParser = nullptr;
  std::cout << "CmdParser destructor" << std::endl;
}

CmdParser* CmdParser::Get() {
  if (m_pCmdParser == nullptr) m_pCmdParser = new CmdParser(false, true);
  return m_pCmdParser;
}

void CmdParser::SetCmdLineArgs(int argc, char** argv) {
  m_argc = argc;
  m_argv = argv;
}

void CmdParser::SetCaseSensitive(bool caseSensitive) {
  m_caseSensitive = caseSensitive;
}

void CmdParser::SetAcceptShortParams(bool acceptShortParams) {
  m_acceptShortParams = acceptShortParams;
}

bool CmdParser::is_switch(std::string& token) const {
  return token.starts_with('/');
}

bool CmdParser::is_param(std::string& token) const {
  return token.starts_with('-');
}

void CmdParser::trim(std::string& token) const {
  if (token.empty()) throw std::out_of_range("invalid string position");
  if (is_param(token) || is_switch(token)) token.erase(0, 1);
}

void CmdParser::set_case(std::string& token) const {
  if (m_caseSensitive) return;
  for (char& c : token) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool CmdParser::parse(std::string&) {
  const TDiagFunc diag(diagModule, "CmdParser::parse");
  int count = 1;
  while (m_argv != nullptr && count < m_argc && m_argv[count] != nullptr) ++count;

  for (int i = 1; i < count; ++i) {
    std::string token = m_argv[i];
    if (is_switch(token)) {
      trim(token);
      set_case(token);
      m_switches.push_back(token);
      continue;
    }
    // Intentional: a bare word keeps its case, for clients that read params(). So param finds it
    // only if it is in upper case.
    if (is_param(token)) {
      trim(token);
      set_case(token);
    }
    std::string value = i + 1 < count ? m_argv[i + 1] : "";
    if (is_param(value)) {
      value.clear();  // the next name
    } else {
      ++i;
    }
    m_params.emplace(token, value);
  }
  check_debug();
  return true;
}

std::string CmdParser::param(const std::string& name, const std::string& shortName) const {
  const TDiagFunc diag(diagModule, "CmdParser::param");
  const auto find = [this](std::string key) {
    set_case(key);
    // lower_bound, not find: the first of several equal names counts.
    const auto entry = m_params.lower_bound(key);
    return entry != m_params.end() && entry->first == key ? entry : m_params.end();
  };
  auto entry = find(name);
  if (entry == m_params.end() && m_acceptShortParams && !shortName.empty()) {
    entry = find(shortName);
  }
  return entry != m_params.end() ? entry->second : std::string();
}

bool CmdParser::is_switch_on(const std::string& name) const {
  const TDiagFunc diag(diagModule, "CmdParser::is_switch_on");
  VQ_LOG(diag, 4) << "Testing " << name;
  // Intentional: the case of `name` matters, unlike in param; client programs ask in upper case.
  const bool isOn = std::find(m_switches.begin(), m_switches.end(), name) != m_switches.end();
  VQ_LOG(diag, 4) << name << (isOn ? " turned on" : " turned off");
  return isOn;
}

bool CmdParser::is_switch_on(char name) const {
  const TDiagFunc diag(diagModule, "CmdParser::is_switch_on");
  VQ_LOG(diag, 4) << "Testing: " << name;
  return is_switch_on(std::string(1, name));
}

void CmdParser::check_debug() {
  const std::string level = param("DBG", "");
  if (!level.empty()) TDiag::Instance()->SetMinimumDebugLevel(vq::Atoi(level));
}

void CmdParser::debug() const {
  for (const auto& [name, value] : m_params) std::cout << name << " = " << value << std::endl;
  for (const std::string& name : m_switches) std::cout << "/" << name << std::endl;
}

void CmdParser::diag_print() const {
  const TDiagFunc diag(diagModule, "CmdParser::diag_print");
  if (!diag.IsActive(5)) return;
  for (const auto& [name, value] : m_params) {
    // Intentional: by the exact name, and without a line that shows that a secret was given.
    if (name == "PASSWORD" || name == "P") continue;
    VQ_LOG(diag, 5) << name << " = " << value;
  }
  for (const std::string& name : m_switches) VQ_LOG(diag, 5) << "/" << name;
}
