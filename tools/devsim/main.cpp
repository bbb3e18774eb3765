// devsim: the simulated recorder. It answers the web-control daemon in tests and during
// development.
#include <stdio.h>

#include "tools/devsim/Options.h"
#include "tools/devsim/Simulator.h"

int main(int nArgs, char** ppszArgs) {
  stOptions options;
  std::string strError;
  if (ReadOptions(nArgs, ppszArgs, options, strError) != 0) {
    fprintf(stderr, "devsim: %s\n", strError.c_str());
    return 2;
  }
  if (options.bHelp) {
    printf("%s", HelpText().c_str());
    return 0;
  }
  CSimulator simulator;
  if (simulator.Open(options, strError) != 0) {
    fprintf(stderr, "devsim: %s\n", strError.c_str());
    return 1;
  }
  return simulator.Run() == 0 ? 0 : 1;
}
