#include "tools/devsim/Options.h"

#include <getopt.h>
#include <limits.h>
#include <unistd.h>

#include "tools/devsim/Fault.h"
#include "tools/devsim/Text.h"

namespace {

constexpr char kUsage[] =
    "Usage: devsim [OPTION]...\n"
    "Plays the device application of a vehicle recorder: answers VariCfgSec messages over UDP.\n"
    "Runs until SIGINT or SIGTERM.\n"
    "\n"
    "  --address A      address to listen on (127.0.0.1)\n"
    "  --port N         port to listen on (6000); 0 takes a free one. The first line of output\n"
    "                   tells it: devsim: listening on 127.0.0.1:6000\n"
    "  --defaults FILE  settings to begin with (devsim_default.xml beside the program)\n"
    "  --state FILE     settings are kept here: read when the file exists, written at every\n"
    "                   accepted set. Without it changes live as long as the program\n"
    "  --log FILE       append a line for each datagram received and sent; - is standard output:\n"
    "                   recv|send FROM TO LENGTH \"bytes escaped as \\xNN\"\n"
    "  --control N      take commands on this port of 127.0.0.1 (0: a free one). The second line\n"
    "                   of output tells it: devsim: control on 127.0.0.1:N\n"
    "  --fault FAULT    answer wrongly; may be given several times\n"
    "  --help           print this text\n"
    "\n"
    "FAULT is one argument: [for=WHO[,WHO]] [times=N] KIND[:ARGUMENT]\n"
    "WHO is query, set or the name of a section; all of them must fit. After N requests the fault\n"
    "is over. Faults add up; of two of one kind the later one decides. KIND is one of\n";

constexpr char kControlHelp[] =
    "\n"
    "Control commands, one per datagram, answered with \"ok\" or \"error: <reason>\":\n"
    "  fault FAULT      one more fault\n"
    "  clear            no more faults, and answers still to come are dropped\n"
    "  reset            the settings of --defaults again\n"
    "\n"
    "Exit status: 0 after a signal, 1 when a file or a port cannot be used, 2 for a bad option.\n";

const option kOptions[] = {{"address", required_argument, nullptr, 'a'},
                           {"port", required_argument, nullptr, 'p'},
                           {"defaults", required_argument, nullptr, 'd'},
                           {"state", required_argument, nullptr, 's'},
                           {"log", required_argument, nullptr, 'l'},
                           {"control", required_argument, nullptr, 'c'},
                           {"fault", required_argument, nullptr, 'f'},
                           {"help", no_argument, nullptr, 'h'},
                           {nullptr, 0, nullptr, 0}};

std::string DefaultsPath() {
  char szPath[PATH_MAX] = "";
  const ssize_t nLen = readlink("/proc/self/exe", szPath, sizeof(szPath));
  const std::string strExe(szPath, nLen > 0 ? static_cast<size_t>(nLen) : 0);
  return strExe.substr(0, strExe.rfind('/') + 1) + "devsim_default.xml";
}

int ReadPort(const char* pszText, const char* pszOption, long& nPort, std::string& strError) {
  if (ReadNumber(pszText, 65535, nPort) == 0) return 0;
  strError = std::string(pszOption) + " needs a number from 0 to 65535, not '" + pszText + "'";
  return -1;
}

int CheckAddress(const stOptions& options, std::string& strError) {
  sockaddr_in addr;
  if (MakeAddr(options.strAddress, 0, addr) == 0) return 0;
  strError = "--address needs an IPv4 address, not '" + options.strAddress + "'";
  return -1;
}

// Parses one option. Returns 0, or -1 with the reason.
int TakeOption(int nOption, const char* pszWord, stOptions& options, std::string& strError) {
  long nPort = 0;
  CFaults check;
  switch (nOption) {
    case 'a':
      options.strAddress = optarg;
      return CheckAddress(options, strError);
    case 'p':
      if (ReadPort(optarg, "--port", nPort, strError) != 0) return -1;
      options.usPort = static_cast<uint16_t>(nPort);
      return 0;
    case 'c':
      if (ReadPort(optarg, "--control", nPort, strError) != 0) return -1;
      options.nControlPort = static_cast<int>(nPort);
      return 0;
    case 'd':
      options.strDefaults = optarg;
      return 0;
    case 's':
      options.strState = optarg;
      return 0;
    case 'l':
      options.strLog = optarg;
      return 0;
    case 'f':
      options.faults.emplace_back(optarg);
      return check.Add(optarg, strError);
    case 'h':
      options.bHelp = true;
      return 0;
    default:
      strError = (nOption == ':' ? "a value is missing behind " : "unknown option ");
      strError += std::string(pszWord) + " (see --help)";
      return -1;
  }
}

}  // namespace

int ReadOptions(int nArgs, char** ppszArgs, stOptions& options, std::string& strError) {
  opterr = 0;
  for (int nOption; (nOption = getopt_long(nArgs, ppszArgs, ":", kOptions, nullptr)) != -1;)
    if (TakeOption(nOption, ppszArgs[optind - 1], options, strError) != 0) return -1;
  if (optind < nArgs) {
    strError = std::string("unexpected argument ") + ppszArgs[optind] + " (see --help)";
    return -1;
  }
  if (options.strDefaults.empty()) options.strDefaults = DefaultsPath();
  return 0;
}

std::string HelpText() { return kUsage + FaultHelp() + kControlHelp; }
