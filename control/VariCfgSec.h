// VariCfgSec messages: XML texts exchanged with the device application, one per datagram.
//
// A message is an element VariCfgSec whose first attribute is Action. A reply to a set has a Result
// attribute; a reply to a query has one section as the root's first child element. Replies are
// hostile. No state is kept between calls; use from one thread.
#pragma once

#include <tinyxml.h>

#include <cstddef>
#include <cstdint>

#include "control/UdpCtrlSocket.h"

constexpr int kDeviceTimeoutSec = 5;
// The import of the whole configuration is the larger message.
constexpr int kImportTimeoutSec = 10;
constexpr uint16_t kLocalPort = 4999;
constexpr char kInterface[] = "eth0";

// The results of GetParaCmdType for an Action value.
enum CParaCmd {
  kCmdBroadSearch = 0,
  kCmdDeviceQuery = 1,
  kCmdDeviceSet = 2,
  kCmdDeviceReboot = 3,
  kCmdDeviceFormat = 4,
  kCmdUnknown = 5
};

// The query transaction: sends a terminated request to the device and receives one reply within
// kDeviceTimeoutSec. nCapacity gives the longest reply accepted, in bytes, and receives the reply's
// length. pReply has room for one more byte and may be the request's own buffer. On success it
// holds exactly the received bytes and a terminator; on failure it is unchanged. Returns 0, or -1
// (the timeout included).
int GetParaInfoByCmd(const char* pszDevIp, uint16_t usDevPort, const char* pszRequest, char* pReply,
                     int& nCapacity);

// The set transaction over the caller's open socket: sends nLen bytes, receives a reply within
// nTimeoutSec and stores its Result in nResult (0: accepted by the device; text that is not a
// number counts as 0). Returns 0 when a reply with a Result came back, whatever its value;
// otherwise -1 with nResult unchanged.
int SetParaInfoByCmd(CUdpCtrlSocket& sock, const char* pszMsg, int nLen, int& nResult,
                     int nTimeoutSec);

// The check for every message. Parses the text into the caller's document and finds the root.
// Returns 0 with the root, which lives as long as the document; -1, with a line printed, when the
// root's first attribute is not Action; -2, silently, when there is no root VariCfgSec (or the text
// is nested too deeply to be parsed).
int CheckMessage(const char* pszText, TiXmlDocument& doc, TiXmlElement*& pRoot);

// The same check for callers that do not need the message itself. Only the root counts; what comes
// before it or below it may be nested to any depth. Parses only the root's tag where the text
// begins with it and it is a plain one.
int CheckRoot(const char* pszText);

// Parses a reply into the caller's document and finds the section: the root's first child element,
// which lives as long as the document. Returns 0, or -1. The values of Action and Result are
// ignored.
int GetParaSection(const char* pszReply, TiXmlDocument& doc, TiXmlElement*& pSection);

// Copies the value of the root's first attribute of that name (Action included) into pszValue, cut
// to nCapacity - 1 bytes and terminated. Returns 0; -1 when the reply is unusable or has no such
// attribute, with pszValue unchanged. nCapacity is at least 1.
int GetParaAttr(const char* pszReply, const char* pszName, char* pszValue, size_t nCapacity);

// Classifies an incoming message by its Action into a CParaCmd. Returns 0; -1 when the message is
// unusable or a reply (its second attribute is Result).
int GetParaCmdType(const char* pszText, int& nCode);
