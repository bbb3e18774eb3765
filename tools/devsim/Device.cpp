#include "tools/devsim/Device.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "tools/devsim/TagReader.h"

namespace {

// A reply to a query with StartChn has at most this many items, so that it fits into 2,048 bytes.
constexpr int kItemsPerReply = 4;
constexpr std::string_view kRoot = "VariCfgSec";
constexpr std::string_view kQuery = "DEVICE_QUERY";
constexpr std::string_view kSet = "DEVICE_SET";
constexpr std::string_view kActions[] = {"BROAD_SEARCH", kQuery, kSet, "DEVICE_REBOOT",
                                         "DEVICE_FORMAT"};

bool IsAction(std::string_view action) {
  return std::find(std::begin(kActions), std::end(kActions), action) != std::end(kActions);
}

void ReadSection(CTagReader& reader, stRequest& req) {
  stTag tag;
  req.bSectionReadable = reader.Next(tag) == 0;
  if (!req.bSectionReadable) return;
  if (tag.kind == stTag::Kind::kClose) {
    req.bSectionReadable = tag.name == kRoot;
    return;
  }
  req.section = tag.name;
  for (const stTagAttr& attr : tag.attrs)
    if (attr.name == "StartChn") req.nStartChn = atoi(std::string(attr.value).c_str());
}

}  // namespace

int ReadRequest(std::string_view text, stRequest& req) {
  CTagReader reader(text);
  stTag root;
  if (text.find('\0') != std::string_view::npos || text.substr(0, 1) != "<") return -1;
  if (reader.Next(root) != 0 || root.name != kRoot) return -1;
  if (root.kind == stTag::Kind::kClose || root.attrs.empty()) return -1;
  if (root.attrs[0].name != "Action" || !IsAction(root.attrs[0].value)) return -1;
  if (root.attrs.size() > 1 && root.attrs[1].name == "Result") return -1;
  req.text = text;
  req.action = root.attrs[0].value;
  if (root.kind == stTag::Kind::kOpen) ReadSection(reader, req);
  return 0;
}

std::string PrintReply(const stReply& reply) {
  std::string strText = "<VariCfgSec";
  for (const stReply::stAttr& attr : reply.attrs)
    strText += " " + attr.strName + "=\"" + attr.strValue + "\"";
  if (reply.strSections.empty()) return strText + " />";
  return strText + ">" + reply.strSections + "</VariCfgSec>";
}

int CDevice::Open(const std::string& strDefaults, const std::string& strState,
                  std::string& strError) {
  m_strDefaults = strDefaults;
  m_strState = strState;
  const bool bSaved = !strState.empty() && access(strState.c_str(), F_OK) == 0;
  return m_doc.Load(bSaved ? strState : strDefaults, strError);
}

int CDevice::Reset(std::string& strError) {
  CConfigDoc next;
  return next.Load(m_strDefaults, strError) == 0 ? Accept(std::move(next), strError) : -1;
}

stReply CDevice::Answer(const stRequest& req) {
  stReply reply(req.action);
  int nRet = -1;  // the other actions are known and refused
  if (req.action == kQuery) nRet = AnswerQuery(req, reply);
  if (req.action == kSet) nRet = ApplySet(req);
  if (nRet != 0) reply.Result().strValue = "1";
  return reply;
}

int CDevice::AnswerQuery(const stRequest& req, stReply& reply) const {
  if (!req.bSectionReadable) return -1;
  if (req.section.empty()) {
    reply.strSections = m_doc.AllSections();
  } else if (req.nStartChn >= 0) {
    reply.strSections = m_doc.SectionItems(req.section, req.nStartChn, kItemsPerReply);
  } else if (const std::string* pText = m_doc.Section(req.section)) {
    reply.strSections = *pText;
  }
  return reply.strSections.empty() ? -1 : 0;
}

int CDevice::ApplySet(const stRequest& req) {
  if (req.text.size() > kMessageMax || CheckNesting(req.text, kDepthMax) != 0) return -1;
  TiXmlDocument msg;
  msg.SetTabSize(0);
  msg.Parse(std::string(req.text).c_str(), nullptr, TIXML_ENCODING_LEGACY);
  const TiXmlElement* pRoot = msg.RootElement();
  if (msg.Error() || pRoot == nullptr || pRoot->FirstChildElement() == nullptr) return -1;
  CConfigDoc next = m_doc;
  next.Merge(*pRoot);
  std::string strError;
  if (Accept(std::move(next), strError) == 0) return 0;
  fprintf(stderr, "devsim: set refused, %s\n", strError.c_str());
  return -1;
}

int CDevice::Accept(CConfigDoc next, std::string& strError) {
  stReply whole(kQuery);
  whole.strSections = next.AllSections();
  if (PrintReply(whole).size() > kMessageMax) {
    strError = "the whole configuration would not fit one message";
    return -1;
  }
  if (!m_strState.empty() && next.Save(m_strState, strError) != 0) return -1;
  m_doc = std::move(next);
  return 0;
}
