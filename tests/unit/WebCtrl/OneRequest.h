// One request through the service to a played device and back. In a network namespace of the
// caller's: the exchanges are bound to a fixed port.
#pragma once

#include <functional>
#include <string>
#include <vector>

// What one request makes the device receive, the browser receive and the service print.
struct stOutcome {
  std::vector<std::string> requests;
  std::string strSent;
  std::string strPrinted;
};

// The device answers by the function; what it leaves empty stays unanswered.
stOutcome Ask(const std::string& strRequest,
              std::function<std::string(const std::string& strRequest)> fnAnswer);

// The same with a device that answers everything alike.
stOutcome Ask(const std::string& strRequest, const std::string& strDeviceReply);
