// VariCfgSec messages: XML texts exchanged with the device application, one per datagram.
//
// A message is the element VariCfgSec whose first attribute is Action; a reply to a set carries
// Result among its attributes, a reply to a query one section as the root's first child element.
// Replies are hostile. Nothing here is kept from call to call; use it from one thread.
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

// What GetParaCmdType makes of an Action value.
enum CParaCmd {
  kCmdBroadSearch = 0,
  kCmdDeviceQuery = 1,
  kCmdDeviceSet = 2,
  kCmdDeviceReboot = 3,
  kCmdDeviceFormat = 4,
  kCmdUnknown = 5
};

// The query transaction: sends a terminated request to the device and receives one reply within
// kDeviceTimeoutSec. nCapacity gives the longest reply wanted, in bytes, and receives the reply's
// length. pReply has room for one byte more and may be the request's own buffer; after success it
// holds exactly the received bytes and a terminator, after a failure it is as it was.
// Returns 0, or -1 (the timeout included).
int GetParaInfoByCmd(const char* pszDevIp, uint16_t usDevPort, const char* pszRequest, char* pReply,
                     int& nCapacity);

// The set transaction over the caller's open socket: sends nLen bytes, receives a reply within
// nTimeoutSec and stores its Result in nResult (0: the device accepted; text that is no number
// counts as 0). Returns 0 when a reply with a Result came back, whatever it says; else -1 with
// nResult untouched.
int SetParaInfoByCmd(CUdpCtrlSocket& sock, const char* pszMsg, int nLen, int& nResult,
                     int nTimeoutSec);

// The check that every message passes. Parses the text into the caller's document and finds the
// root. Returns 0 with the root, which lives as long as the document; -1, with a line printed, when
// the root's first attribute is not Action; -2, silently, when there is no root VariCfgSec (or the
// text nests too deep to be parsed).
int CheckMessage(const char* pszText, TiXmlDocument& doc, TiXmlElement*& pRoot);

// The same check for who needs nothing of the message itself: the root alone decides, and what
// stands before it or below it may nest as deep as it likes. Parses no more than the root's tag
// where that begins the text and is a plain one.
int CheckRoot(const char* pszText);

// Parses a reply into the caller's document and finds the section: the root's first child element,
// which lives as long as the document. Returns 0, or -1. The values of Action and Result are not
// looked at.
int GetParaSection(const char* pszReply, TiXmlDocument& doc, TiXmlElement*& pSection);

// Copies the value of the root's first attribute of that name (Action included) into pszValue, cut
// to nCapacity - 1 bytes and terminated. Returns 0; -1 when the reply is unusable or has no such
// attribute, with pszValue untouched. nCapacity is at least 1.
int GetParaAttr(const char* pszReply, const char* pszName, char* pszValue, size_t nCapacity);

// Classifies an incoming message by its Action into a CParaCmd. Returns 0; -1 when the message is
// unusable or a reply (its second attribute is Result).
int GetParaCmdType(const char* pszText, int& nCode);
