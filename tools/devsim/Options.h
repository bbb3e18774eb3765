// The command line of the simulator.
#pragma once

#include <stdint.h>

#include <string>
#include <vector>

struct stOptions {
  std::string strAddress = "127.0.0.1";
  uint16_t usPort = 6000;
  std::string strDefaults;  // devsim_default.xml beside the executable, unless given
  std::string strState;     // empty: changes are not kept
  std::string strLog;       // empty: no log
  int nControlPort = -1;    // -1: no control port
  std::vector<std::string> faults;
  bool bHelp = false;
};

// Returns 0, or -1 with the reason in one line.
int ReadOptions(int nArgs, char** ppszArgs, stOptions& options, std::string& strError);

// The text of --help.
std::string HelpText();
