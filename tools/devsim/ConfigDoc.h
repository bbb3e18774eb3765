// The settings of the simulated recorder: the sections of one VariCfgSec document, in GBK. Each is
// kept as an element and as its printed text, so that a query only copies bytes. Copying the whole
// object is cheap (unchanged elements are shared and never written), so a set is first tried on a
// copy. One thread.
#pragma once

#include <stddef.h>
#include <tinyxml.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CConfigDoc {
 public:
  // Reads a document file. Returns 0, or -1 with the reason; the object is then unchanged.
  int Load(const std::string& strPath, std::string& strError);

  // Writes the document beside the file and renames it over it, so that a reader sees the old or
  // the new settings, never a part. Returns 0, or -1 with the reason; the file is then unchanged.
  int Save(const std::string& strPath, std::string& strError) const;

  // Merges every attribute of every section below the root, children included; missing ones are
  // created. The element must not be nested deeper than the caller can afford to recurse.
  void Merge(const TiXmlElement& root);

  // The printed section, or null if there is none of this name. Valid until the object changes.
  const std::string* Section(std::string_view name) const;

  // The printed section with only the items (children of a container, numbered after the last "_")
  // from nFirst on, at most nCount of them. Empty if there is no section of this name.
  std::string SectionItems(std::string_view name, int nFirst, int nCount) const;

  // All printed sections, one after another.
  std::string AllSections() const;

 private:
  struct stSection {
    std::string strName;
    std::shared_ptr<const TiXmlElement> pElem;
    std::string strText;
  };

  const stSection* Find(std::string_view name) const;
  void Put(const std::string& strName, std::shared_ptr<const TiXmlElement> pElem);

  std::vector<stSection> m_sections;  // in the file's order
};
