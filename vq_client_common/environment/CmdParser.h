// The client program's command line, split into switches and parameters.
//
// Terms. A *switch* is a name that is merely present: "/verbose". A *parameter* is a name with a
// value, which may be empty: "-user operator". A *bare* token has neither prefix and is read as
// the name of a parameter too.
//
//   item = "/" name                 a switch
//        | "-" name value           a parameter; the value does not begin with "-"
//        | "-" name                 a parameter with an empty value: a name or nothing follows
//        | name value | name        the same without prefix, the name kept in its own case
//
// Only the first "-" or "/" of a name is taken off. A value is kept exactly as given and may begin
// with "/". A negative number cannot be a value: "-x -5" gives two names.
//
//   CmdParser* const parser = CmdParser::Get();
//   parser->SetCmdLineArgs(argc, argv);
//   std::string unused;
//   parser->parse(unused);                            // program -u operator /v
//   parser->param("USER", "U");                       // "operator"
//   parser->is_switch_on("V");                        // true
//
// The library itself reads one parameter, "DBG": the level of the diagnostic log.
#ifndef VQ_CLIENT_COMMON_ENVIRONMENT_CMDPARSER_H
#define VQ_CLIENT_COMMON_ENVIRONMENT_CMDPARSER_H

#include <list>
#include <map>
#include <string>

#include <support/Export.h>

// The process's command line.
// Thread contract: none. The making of the one object and its tables are not guarded; a program
// fills them on one thread before it starts others, which may then read.
class VQ_CLIENT_COMMON_API CmdParser {
 public:
  // The one object, made on first use with case folding and short names on. Never null; nothing in
  // the library frees it.
  static CmdParser* Get();

  // Where Get keeps it: null before the first call and after somebody has deleted it.
  static CmdParser* m_pCmdParser;

  // Writes "CmdParser destructor" and a line end to standard output.
  virtual ~CmdParser();
  CmdParser(const CmdParser&) = delete;
  CmdParser& operator=(const CmdParser&) = delete;

  // Stores the two and reads nothing. The caller keeps the vector and its strings until the end of
  // parse, which copies what it needs. A null vector counts as empty; a null string ends it early.
  void SetCmdLineArgs(int argc, char** argv);

  // Whether names keep their case. When they do not, they are folded to upper case as they are
  // parsed and as they are asked for; names that are parsed already stay as they are.
  void SetCaseSensitive(bool caseSensitive);

  // Whether param tries the second name.
  void SetAcceptShortParams(bool acceptShortParams);

  // Reads the stored vector without its first string, the program's name, and adds what it finds to
  // what is there: nothing ever clears the tables. Then sets the level of the diagnostic log to the
  // number that the parameter "DBG" begins with, if it has a value. Returns true. The argument is
  // neither read nor written.
  bool parse(std::string&);

  // The value that was given first for `name` or, where `name` does not occur at all and short
  // names are on, for a `shortName` that is not empty. The empty text when there is none, which
  // cannot be told from an empty value.
  std::string param(const std::string& name, const std::string& shortName) const;

  // All parameters in byte order of the name, repeats in the order in which they were given. The
  // reference holds as long as the object.
  const std::multimap<std::string, std::string>& params() const { return m_params; }

  // Whether the switch was given. `name` is compared as it is, never folded: unless names keep
  // their case it must be given in upper case.
  bool is_switch_on(const std::string& name) const;
  bool is_switch_on(char name) const;

  // Writes all parameters and then all switches to standard output, one a line. Secrets too: this
  // is the tool of whoever debugs the client program.
  void debug() const;

  // The same to the diagnostic log at level 5, without the parameters named exactly "PASSWORD" and
  // "P". Where names keep their case, "password" is another name and is written.
  void diag_print() const;

 protected:
  // No parameters and no switches. For Get and for derived classes.
  CmdParser(bool caseSensitive, bool acceptShortParams);

  bool is_switch(std::string& token) const;  // begins with "/"
  bool is_param(std::string& token) const;   // begins with "-"

  // Takes off one "-" or "/" at the start. Throws std::out_of_range for an empty token.
  void trim(std::string& token) const;
  void set_case(std::string& token) const;  // folds to upper case, if names are folded
  // Sets the log's level from the parameter "DBG"; see parse.
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
