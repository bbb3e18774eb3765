#include "fuzz/Utf8Model.h"

#include <cstdint>

namespace {

// By lead byte: the number of bytes that follow, and the smallest code point of that length.
struct stForm {
  unsigned char ucMask;
  unsigned char ucLead;
  size_t nFollow;
  uint32_t uiLeast;
};
constexpr stForm kForms[] = {
    {0x80, 0x00, 0, 0}, {0xE0, 0xC0, 1, 0x80}, {0xF0, 0xE0, 2, 0x800}, {0xF8, 0xF0, 3, 0x10000}};

// Removes one character; false when there is none.
bool Take(std::string_view& rest) {
  const auto ucLead = static_cast<unsigned char>(rest.front());
  for (const stForm& form : kForms) {
    if ((ucLead & form.ucMask) != form.ucLead) continue;
    if (rest.size() <= form.nFollow) return false;
    uint32_t uiPoint = ucLead & static_cast<unsigned char>(~form.ucMask);
    for (size_t i = 1; i <= form.nFollow; ++i) {
      const auto uc = static_cast<unsigned char>(rest[i]);
      if ((uc & 0xC0) != 0x80) return false;
      uiPoint = uiPoint << 6 | (uc & 0x3F);
    }
    rest.remove_prefix(form.nFollow + 1);
    const bool bSurrogate = uiPoint >= 0xD800 && uiPoint < 0xE000;
    return uiPoint >= form.uiLeast && uiPoint <= 0x10FFFF && !bSurrogate;
  }
  return false;
}

}  // namespace

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (!Take(text)) return false;
  }
  return true;
}
