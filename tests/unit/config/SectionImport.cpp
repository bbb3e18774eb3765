#include "tests/unit/config/SectionImport.h"

#include <algorithm>
#include <cstring>

Bytes OfNumber(uint32_t uiValue, size_t nWidth) {
  Bytes bytes(nWidth);
  for (size_t i = 0; i < nWidth; ++i) bytes[i] = static_cast<unsigned char>(uiValue >> (8 * i));
  return bytes;
}

Bytes OfFloat(float fValue) {
  Bytes bytes(sizeof(fValue));
  memcpy(bytes.data(), &fValue, sizeof(fValue));
  return bytes;
}

Bytes OfText(const std::string& strText, size_t nWidth) {
  Bytes bytes(nWidth);
  memcpy(bytes.data(), strText.data(), strText.size());
  return bytes;
}

stValue Sample(const stField& field, unsigned uiSeed) {
  const std::string strSeed = std::to_string(uiSeed % 200 + 1);
  const unsigned uiNumber = uiSeed % 200 + 1;
  const std::string strBusy(std::min<size_t>(field.nWidth - 1, 5),
                            static_cast<char>('a' + uiSeed % 26));
  switch (field.eKind) {
    case Kind::kNumber: {
      const uint32_t uiValue = uiNumber << (field.nWidth == 1 ? 0 : 8 * field.nWidth - 16);
      return {std::to_string(uiValue), OfNumber(uiValue, field.nWidth)};
    }
    case Kind::kText:
      return {strBusy, OfText(strBusy, field.nWidth)};
    case Kind::kIdentifier:
      return {"340200000013200" + std::to_string(10000 + uiSeed),
              OfText("340200000013200" + std::to_string(10000 + uiSeed), field.nWidth)};
    case Kind::kFloat:
      return {strSeed + ".5", OfFloat(static_cast<float>(uiNumber) + 0.5f)};
    case Kind::kWholeFloat:
      return {"-" + strSeed + ".7", OfFloat(-static_cast<float>(uiNumber))};
    case Kind::kTimeOfDay:
      return {"01:02:" + std::to_string(uiNumber % 60), OfNumber(3720 + uiNumber % 60, 4)};
    case Kind::kAddress:
      return {"10.1.2." + strSeed, {10, 1, 2, static_cast<unsigned char>(uiNumber)}};
    case Kind::kRoiCorner:
      return {std::to_string(uiNumber * 16 + 1), OfNumber(uiNumber * 16, 4)};
    case Kind::kRoiSize:
      return {std::to_string(uiNumber * 16), OfNumber(uiNumber * 16 + 16, 4)};
    case Kind::kHexBytes:
      return {"0aFF", OfText("\x0a\xff", field.nWidth)};
    case Kind::kDeviceNo:
      return {"BUS00" + strSeed, OfText("BUS00" + strSeed, field.nWidth)};
    case Kind::kRevision:
      return {"ATI Revision: R" + strSeed + "\r\nOK", OfText(" R" + strSeed, field.nWidth)};
  }
  return {};
}

CImport::CImport(const stSection& section, unsigned char ucFill)
    : m_section(section), m_should(sizeof(m_is), ucFill) {
  memset(static_cast<void*>(&m_is), ucFill, sizeof(m_is));
}

void CImport::Expect(size_t nOffset, const Bytes& bytes) {
  memcpy(&m_should[m_section.nOffset + nOffset], bytes.data(), bytes.size());
}

int CImport::Run(TiXmlElement& elem) {
  CConfig_Task task;
  return m_section.pfnImport(task, &elem, &m_is);
}

bool CImport::IsAsExpected() const { return memcmp(&m_is, m_should.data(), sizeof(m_is)) == 0; }

TiXmlElement* AddItem(TiXmlElement& section, const std::string& strContainer,
                      const std::string& strItem) {
  TiXmlElement* pContainer = section.FirstChildElement(strContainer);
  if (pContainer == nullptr) {
    pContainer = section.InsertEndChild(TiXmlElement(strContainer))->ToElement();
  }
  return pContainer->InsertEndChild(TiXmlElement(strItem))->ToElement();
}
