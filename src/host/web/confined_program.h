#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "core/contracts/host.h"

// Programs that browsers type into. Whoever is signed in may type anything, so such a program must not become
// a shell of the host's account.
namespace zrl::web {

// What differs between the programs that pages start.
struct Confinement {
  // Stands before the operands of the page.
  std::vector<std::string> options;
  // It can neither start another program nor write to a file.
  bool alone = false;
  // These bytes never reach it.
  std::string withheld;
};

// telnet runs without its escape character, by which one would otherwise leave the connection for telnet's
// own commands, and it runs alone, should it know another way to them. Of other programs nothing is known,
// and only what start_confined() does to every program is done to them.
Confinement confinement_of(const ProgramStart& program);

// What a program learns of our environment: PATH and LANG, and TERM for the browser's terminal.
std::vector<std::string> clean_environment();

// Starts the program on the terminal of this name, which becomes the controlling one of a new session,
// without a shell, and in the folder that it names. It has no other open files, no privileges that it could
// gain (PR_SET_NO_NEW_PRIVS), default signals, a clean environment, the umask 077, and limits on memory,
// processor time, files and their sizes; it is killed should the calling thread end before it. The caller
// must wait for the process (waitpid), whose id is returned. Raises zrl::Error if the program is not found or
// cannot be started.
pid_t start_confined(const ProgramStart& program, const std::string& terminal);

}  // namespace zrl::web
