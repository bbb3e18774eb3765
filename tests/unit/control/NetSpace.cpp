#include "tests/unit/control/NetSpace.h"

#include <sched.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace {

bool Shell(const std::string& strCommand) {
  return system((strCommand + " >/dev/null 2>&1").c_str()) == 0;
}

bool SetUp(Eth0 eth0) {
  // Only the calling thread and what it starts move into the new namespace.
  if (unshare(CLONE_NEWNET) != 0 || !Shell("ip link set lo up")) return false;
  return eth0 == Eth0::kNone ||
         Shell(std::string("ip link add eth0 type veth peer name peer0 && ip addr add ") + kEth0Ip +
               "/24 brd " + kEth0Broadcast +
               " dev eth0 && ip link set eth0 up && ip link set peer0 up");
}

}  // namespace

bool RunInNetSpace(Eth0 eth0, const std::function<void()>& fn) {
  bool bRan = false;
  std::thread([&] {
    bRan = SetUp(eth0);
    if (bRan) fn();
  }).join();
  return bRan;
}
