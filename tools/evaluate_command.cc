#include "tools/evaluate_command.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "tools/exit_code.h"

namespace corvex_cli {
namespace {

constexpr char kPython[] = "/usr/bin/python3";

// `python3 -m corvex`, but with a message that says what to do when the package is missing.
constexpr char kRunModule[] =
    "import runpy, sys\n"
    "try:\n"
    "    import corvex._cli\n"
    "except ImportError as error:\n"
    "    sys.exit(f'corvex: evaluate needs the Python package corvex, which '\n"
    "             f'/usr/bin/python3 cannot import ({error}). Build it with CMake '\n"
    "             f'and set PYTHONPATH=BUILD/python, or install it from the source '\n"
    "             f'tree: /usr/bin/python3 -m pip install --no-build-isolation .')\n"
    "runpy.run_module('corvex', run_name='__main__', alter_sys=True)\n";

}  // namespace

void EvaluateCommand::addTo(CLI::App& app) {
  app.add_subcommand("evaluate",
                     "Measure corvex against ground truth and simple baselines, on simulated "
                     "scenes or labelled records (runs python3 -m corvex evaluate; see its "
                     "--help)");
}

bool EvaluateCommand::chosen(int argc, char** argv) {
  return argc >= 2 && std::strcmp(argv[1], "evaluate") == 0;
}

int EvaluateCommand::run(int argc, char** argv) {
  std::vector<char*> arguments = {const_cast<char*>(kPython), const_cast<char*>("-c"),
                                  const_cast<char*>(kRunModule)};
  arguments.insert(arguments.end(), argv + 1, argv + argc);  // "evaluate" and what follows
  arguments.push_back(nullptr);
  ::execv(kPython, arguments.data());
  std::cerr << "corvex: cannot run " << kPython << ": " << std::strerror(errno) << "\n";
  return kExitFailure;
}

}  // namespace corvex_cli
