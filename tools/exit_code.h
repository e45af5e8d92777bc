#ifndef CORVEX_TOOLS_EXIT_CODE_H_
#define CORVEX_TOOLS_EXIT_CODE_H_

namespace corvex_cli {

// Exit codes of every corvex subcommand.
enum ExitCode : int {
  kExitSuccess = 0,
  kExitFailure = 1,     // could not finish (out of memory, output not written)
  kExitBadCommand = 2,  // bad command line or bad input; nothing was printed on stdout
};

}  // namespace corvex_cli

#endif  // CORVEX_TOOLS_EXIT_CODE_H_
