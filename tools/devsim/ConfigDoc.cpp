#include "tools/devsim/ConfigDoc.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace {

std::string Print(const TiXmlElement& elem) {
  TiXmlPrinter printer;
  printer.SetStreamPrinting();
  elem.Accept(&printer);
  return printer.Str();
}

void MergeElement(const TiXmlElement& src, TiXmlElement& dst) {
  for (const TiXmlAttribute* p = src.FirstAttribute(); p != nullptr; p = p->Next())
    dst.SetAttribute(p->Name(), p->Value());
  for (const TiXmlElement* p = src.FirstChildElement(); p != nullptr; p = p->NextSiblingElement()) {
    TiXmlElement* pChild = dst.FirstChildElement(p->Value());
    if (pChild == nullptr) pChild = dst.LinkEndChild(new TiXmlElement(p->Value()))->ToElement();
    MergeElement(*p, *pChild);
  }
}

void KeepItems(TiXmlElement& container, int nFirst, int nCount) {
  TiXmlElement* pNext = nullptr;
  for (TiXmlElement* p = container.FirstChildElement(); p != nullptr; p = pNext) {
    pNext = p->NextSiblingElement();
    const char* pszNumber = strrchr(p->Value(), '_');
    const long nItem = pszNumber != nullptr ? strtol(pszNumber + 1, nullptr, 10) : 0;
    if (nItem < nFirst || nItem - nFirst >= nCount) container.RemoveChild(p);
  }
}

}  // namespace

int CConfigDoc::Load(const std::string& strPath, std::string& strError) {
  std::ifstream file(strPath, std::ios::binary);
  std::ostringstream text;
  if (!file || !(text << file.rdbuf())) {
    strError = "cannot read " + strPath;
    return -1;
  }
  TiXmlDocument doc;
  doc.SetTabSize(0);
  // "Legacy" parses byte by byte, which is safe: no second byte of a GBK pair looks like markup.
  doc.Parse(text.str().c_str(), nullptr, TIXML_ENCODING_LEGACY);
  const TiXmlElement* pRoot = doc.FirstChildElement("VariCfgSec");
  if (doc.Error() || pRoot == nullptr) {
    strError = strPath + " holds no VariCfgSec document";
    return -1;
  }
  m_sections.clear();
  Merge(*pRoot);
  return 0;
}

int CConfigDoc::Save(const std::string& strPath, std::string& strError) const {
  const std::string strTemp = strPath + ".new";
  std::ofstream file(strTemp, std::ios::binary | std::ios::trunc);
  file << "<?xml version=\"1.0\" encoding=\"GBK\"?>\n<VariCfgSec>\n";
  for (const stSection& section : m_sections) file << section.strText << "\n";
  file << "</VariCfgSec>\n";
  file.close();
  if (!file || rename(strTemp.c_str(), strPath.c_str()) != 0) {
    strError = "cannot write " + strPath + ": " + strerror(errno);
    remove(strTemp.c_str());
    return -1;
  }
  return 0;
}

void CConfigDoc::Merge(const TiXmlElement& root) {
  for (const TiXmlElement* p = root.FirstChildElement(); p != nullptr;
       p = p->NextSiblingElement()) {
    const stSection* pOld = Find(p->Value());
    auto pNew = pOld != nullptr ? std::make_shared<TiXmlElement>(*pOld->pElem)
                                : std::make_shared<TiXmlElement>(p->Value());
    MergeElement(*p, *pNew);
    pNew->RemoveAttribute("StartChn");  // selects items in a message; not a setting
    Put(p->ValueStr(), std::move(pNew));
  }
}

const CConfigDoc::stSection* CConfigDoc::Find(std::string_view name) const {
  const auto found =
      std::find_if(m_sections.begin(), m_sections.end(),
                   [&](const stSection& section) { return section.strName == name; });
  return found == m_sections.end() ? nullptr : &*found;
}

void CConfigDoc::Put(const std::string& strName, std::shared_ptr<const TiXmlElement> pElem) {
  std::string strText = Print(*pElem);
  for (stSection& section : m_sections) {
    if (section.strName != strName) continue;
    section.pElem = std::move(pElem);
    section.strText = std::move(strText);
    return;
  }
  m_sections.push_back({strName, std::move(pElem), std::move(strText)});
}

const std::string* CConfigDoc::Section(std::string_view name) const {
  const stSection* pSection = Find(name);
  return pSection != nullptr ? &pSection->strText : nullptr;
}

std::string CConfigDoc::SectionItems(std::string_view name, int nFirst, int nCount) const {
  const stSection* pSection = Find(name);
  if (pSection == nullptr) return "";
  TiXmlElement elem(*pSection->pElem);
  for (TiXmlElement* p = elem.FirstChildElement(); p != nullptr; p = p->NextSiblingElement())
    KeepItems(*p, nFirst, nCount);
  return Print(elem);
}

std::string CConfigDoc::AllSections() const {
  std::string strText;
  for (const stSection& section : m_sections) strText += section.strText;
  return strText;
}
