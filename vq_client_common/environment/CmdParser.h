// Splits the client program's command line into switches and parameters.
//
// Terms. A *switch* is a name without a value: "/verbose". A *parameter* is a name with a value,
// which may be empty: "-user operator". A *bare* word has no prefix and is the name of a parameter,
// too.
//
//   item = "/" name                 a switch
//        | "-" name value           a parameter; the value does not begin with "-"
//        | "-" name                 a parameter with an empty value: a name or nothing follows
//        | name value | name        the same without prefix; the case of the name does not change
//
// Only the first "-" or "/" of a name is removed. A value is stored exactly as given and may begin
// with "/". A negative number cannot be a value: "-x -5" has two names.
//
//   CmdParser* const parser = CmdParser::Get();
//   parser->SetCmdLineArgs(argc, argv);   // program -u operator /v
//   std::string unused;
//   parser->parse(unused);
//   parser->param("USER", "U");           // "operator"
//   parser->is_switch_on("V");            // true
//
// The library reads one parameter, "DBG": the level of the diagnostic log.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_CMDPARSER_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_CMDPARSER_H

#include <list>
#include <map>
#include <string>

#include <support/Export.h>

// The process's command line.
//
// Thread safety: no lock. Call Get, the setters and parse before the program starts other threads;
// these may then read.
class VQ_CLIENT_COMMON_API CmdParser {
 public:
  // The one instance, created by the first call; never null. Names are in upper case, and short
  // names are accepted. The library never deletes it.
  static CmdParser* Get();

  // The instance of Get: null before the first call and after a program has deleted it.
  static CmdParser* m_pCmdParser;

  // Writes "CmdParser destructor" and a line end to stdout.
  virtual ~CmdParser();
  CmdParser(const CmdParser&) = delete;
  CmdParser& operator=(const CmdParser&) = delete;

  // Stores the command line for parse. The caller owns `argv` and its strings, which must be valid
  // until parse returns. A null `argv` counts as empty; a null string ends the command line.
  void SetCmdLineArgs(int argc, char** argv);

  // Whether the case of names matters; false until set. When it does not, parse and param change
  // names to upper case; names that are stored already do not change.
  void SetCaseSensitive(bool caseSensitive);

  // Whether param uses its second name; true until set.
  void SetAcceptShortParams(bool acceptShortParams);

  // Parses the stored command line without its first string, the program's name, and adds switches
  // and parameters to those that are there already. Then sets the level of the diagnostic log to
  // the number at the start of the value of "DBG", if there is a value. Returns true. The argument
  // is not used.
  bool parse(std::string&);

  // The first value given for `name`. When there is no such parameter and short names are accepted,
  // the first value given for `shortName`, unless that is empty. Empty when there is none.
  std::string param(const std::string& name, const std::string& shortName) const;

  // All parameters in the order of their names; equal names in the order of the command line. The
  // reference is valid as long as the object.
  const std::multimap<std::string, std::string>& params() const { return m_params; }

  // Whether the switch was given. The case of `name` always matters: pass it in upper case, unless
  // names are case sensitive.
  bool is_switch_on(const std::string& name) const;
  bool is_switch_on(char name) const;

  // Writes all parameters and then all switches to stdout, one a line, secret values too.
  void debug() const;

  // The same to the diagnostic log at level 5, without parameters named "PASSWORD" or "P". With
  // case sensitive names, "password" is another name and is logged.
  void diag_print() const;

 protected:
  // An object without parameters and switches. For Get and for derived classes.
  CmdParser(bool caseSensitive, bool acceptShortParams);

  bool is_switch(std::string& token) const;  // whether it begins with "/"
  bool is_param(std::string& token) const;   // whether it begins with "-"

  // Removes one "-" or "/" at the start. Throws std::out_of_range for an empty token.
  void trim(std::string& token) const;
  void set_case(std::string& token) const;  // to upper case, unless names are case sensitive
  // Sets the log's level by the parameter "DBG"; see parse.
  void check_debug();

 private:
  bool m_caseSensitive;
  bool m_acceptShortParams;
  std::multimap<std::string, std::string> m_params;
  std::list<std::string> m_switches;
  int m_argc = 0;
  char** m_argv = nullptr;
};

#endif  // VQ_CLIENT_COMMON_ENVIRONMENT_CMDPARSER_H
