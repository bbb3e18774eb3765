// Good values for the listed attributes, and an import whose result is compared byte by byte.
#pragma once

#include <string>
#include <vector>

#include "tests/unit/config/SectionList.h"

using Bytes = std::vector<unsigned char>;

// What a record is filled with so that an extra byte written is noticed.
constexpr unsigned char kUntouched = 0x5A;

// An attribute's text and the bytes of the whole field that result.
struct stValue {
  std::string strText;
  Bytes bytes;
};

Bytes OfNumber(uint32_t uiValue, size_t nWidth);
Bytes OfFloat(float fValue);
Bytes OfText(const std::string& strText, size_t nWidth);

// A good value for the field, different for every seed.
stValue Sample(const stField& field, unsigned uiSeed);

// The expected record, and the one that the importer makes from an element.
class CImport {
 public:
  // Both start with every byte set to ucFill.
  CImport(const stSection& section, unsigned char ucFill);

  // nOffset counts from the section's record.
  void Expect(size_t nOffset, const Bytes& bytes);
  int Run(TiXmlElement& elem);
  // Compares every byte of the composite record, those of the other sections included.
  bool IsAsExpected() const;

 private:
  const stSection& m_section;
  stConfig m_is;
  Bytes m_should;
};

// Appends an item element under the section's container, which is created if missing.
TiXmlElement* AddItem(TiXmlElement& section, const std::string& strContainer,
                      const std::string& strItem);
