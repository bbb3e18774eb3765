// A device application on its own loopback port; a function turns each request into a reply.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class CDevice {
 public:
  // The function runs on the device's own thread; an empty reply means no answer.
  explicit CDevice(std::function<std::string(const std::string& strRequest)> pfnAnswer);
  ~CDevice();
  CDevice(const CDevice&) = delete;
  CDevice& operator=(const CDevice&) = delete;

  uint16_t Port() const { return m_usPort; }
  // Every datagram so far, in order.
  std::vector<std::string> Requests();

 private:
  void Play();

  std::function<std::string(const std::string&)> m_pfnAnswer;
  int m_nSock;
  uint16_t m_usPort = 0;
  std::atomic<bool> m_bEnd{false};
  std::mutex m_mutex;
  std::vector<std::string> m_requests;
  std::thread m_thread;
};
