// The endpoints of the speed comparison as constants: what the daemon did for one request, recorded
// by the driver in one folder per endpoint (files "request", "trace" and "reply").
#pragma once

#include <map>
#include <string>
#include <vector>

struct stReplay {
  std::string strRequest;           // the datagram to the device application
  std::vector<std::string> lines;   // the traces, each with its line end
  std::string strHead;              // the reply up to its body
  std::vector<std::string> chunks;  // the body's pieces, without the closing one
};

// The endpoints under the folder by URI ("/get_BaseInfo"). Ends the program when a file is missing.
std::map<std::string, stReplay> LoadReplays(const std::string& strFolder);

// The endpoint's whole body.
std::string Body(const stReplay& replay);
