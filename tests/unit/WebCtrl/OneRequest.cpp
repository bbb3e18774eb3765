#include "tests/unit/WebCtrl/OneRequest.h"

#include <gtest/gtest.h>

#include <utility>

#include "CBB/WebCtrl/WebCtrl.h"
#include "tests/unit/Http/ParsedRequest.h"
#include "tests/unit/WebCtrl/Device.h"
#include "tests/unit/WebCtrl/HttpConn.h"

stOutcome Ask(const std::string& strRequest,
              std::function<std::string(const std::string& strRequest)> fnAnswer) {
  CDevice device(std::move(fnAnswer));
  CWebCtrl webCtrl;
  webCtrl.SetDevice("127.0.0.1", device.Port());
  CHttpConn conn;
  CParsedRequest request(strRequest);
  testing::internal::CaptureStdout();
  webCtrl.DoHttpRequeset(conn.Get(), request.Get());
  const std::string strPrinted = testing::internal::GetCapturedStdout();
  return {device.Requests(), conn.Sent(), strPrinted};
}

stOutcome Ask(const std::string& strRequest, const std::string& strDeviceReply) {
  return Ask(strRequest, [&](const std::string&) { return strDeviceReply; });
}
