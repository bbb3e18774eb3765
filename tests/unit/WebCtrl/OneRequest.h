// One request through the service to a simulated device and back. Needs a network namespace of the
// caller's, because exchanges are bound to a fixed port.
#pragma once

#include <functional>
#include <string>
#include <vector>

// What the device receives, the browser receives and the service prints for one request.
struct stOutcome {
  std::vector<std::string> requests;
  std::string strSent;
  std::string strPrinted;
};

// The device answers with the function's result; an empty one means no answer.
stOutcome Ask(const std::string& strRequest,
              std::function<std::string(const std::string& strRequest)> fnAnswer);

// The same with a device that gives every request the same answer.
stOutcome Ask(const std::string& strRequest, const std::string& strDeviceReply);
