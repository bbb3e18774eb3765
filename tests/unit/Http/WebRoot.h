// A document root with a folder beside it, and a handler that serves files from it.
#pragma once

#include <mongoose.h>

#include <string>

class CWebRoot {
 public:
  // Creates the folders "root", its lookalike "root2" and "outside" in a new folder. One at a time.
  CWebRoot();
  ~CWebRoot();
  CWebRoot(const CWebRoot&) = delete;
  CWebRoot& operator=(const CWebRoot&) = delete;

  std::string Path(const std::string& strName) const { return m_szTop + ("/" + strName); }
  void Write(const std::string& strName, const std::string& strText) const;
  void Link(const std::string& strTarget, const std::string& strName) const;

  // Serves from another folder than "root".
  void ServeFrom(const std::string& strName);

  // The handler.
  static void Serve(mg_connection* pConn, int nEvent, void* pData);

 private:
  char m_szTop[32] = "/tmp/WebRootXXXXXX";
  std::string m_strRoot;
};

// Returns when a change of a file gets a later time stamp than one before the call.
void AwaitNextTimeStamp();

// How many descriptors are open.
size_t OpenDescriptors();
