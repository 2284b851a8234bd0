// Settings of the user and of the machine.
//
// Two files "profile.ini" hold them: the user's in the directory "vq" of the user's settings
// directory (vq::GetUserSettingsDirectory), which a set-user-ID program does not read; the
// machine's in "/etc/vq/".
//
//   [Orb Parameters]
//   RegisterTimeOut = 900
#ifndef VQ_SUPPORT_FOUNDATIONS_PROFILESETTINGS_H
#define VQ_SUPPORT_FOUNDATIONS_PROFILESETTINGS_H

#include <string>

// Reads a whole decimal number. True when one of the files has it; `value` is then the number, and
// otherwise stays as it is. With `userFirst` the user's value wins over the machine's, without it
// the machine's over the user's. `location` is a subdirectory that both files are looked for in;
// empty for none. A value that is not a whole number, or does not fit an int, counts as not there.
bool GetProfileIntFromCurrentUserOrLocalMachine(const std::string& location,
                                                const std::string& section, const std::string& key,
                                                int& value, bool userFirst);

#endif  // VQ_SUPPORT_FOUNDATIONS_PROFILESETTINGS_H
