// Attribute tables: one row per XML attribute, with its name and how its text is stored in a
// record. Walk applies a table to an element, WalkIndexed to the item elements under a container.
// Nothing here owns or keeps anything; a record may be filled from one thread at a time.
#pragma once

#include <strings.h>
#include <tinyxml.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "CBB/Util/TextCopy.h"
#include "config/TextValue.h"

template <auto M>
struct MemberOf;
template <class R, class F, F R::*M>
struct MemberOf<M> {
  using Record = R;
  using Field = F;
};

// A store takes a record and a text (of an attribute or a form variable) and fills one field. It
// returns 0; 1 to make the import's result 1; a negative number to reject the section at once.

// By the field's type: a text is cut to its capacity minus one; a float or an integer is converted.
template <auto M>
int Store(typename MemberOf<M>::Record& rec, const char* pszText) {
  using F = typename MemberOf<M>::Field;
  if constexpr (std::is_array_v<F>) {
    CopyText(rec.*M, sizeof(F), pszText);
  } else if constexpr (std::is_floating_point_v<F>) {
    rec.*M = TextToFloat(pszText);
  } else {
    rec.*M = static_cast<F>(TextToInt(pszText));  // Deliberate: unchecked, "300" in a uc is 44.
  }
  return 0;
}

// An address in any spelling; any other text leaves the field unchanged.
template <auto M>
int StoreAddress(typename MemberOf<M>::Record& rec, const char* pszText) {
  ConvertAddressValue(pszText, rec.*M);
  return 0;
}

template <class R>
struct stAttr {
  const char* pszName;
  int (*pfnStore)(R& rec, const char* pszText);
};

// A row whose name and member cannot drift apart; ATTR_AS is for a store other than the plain one.
#define ATTR(R, field) \
  { #field, Store < &R::field> }
#define ATTR_AS(R, field, pfnStore) \
  { #field, pfnStore < &R::field> }

// Stores every attribute that the table names, in document order and ignoring case; others are
// skipped, and fields without an attribute keep their value. Returns 0; 1 when a store asked for it
// (the walk goes on); -1 when a store rejected the section (the walk stops) or there is no element.
template <class R, size_t N>
int Walk(const TiXmlElement* pElem, const stAttr<R> (&rows)[N], R& rec) {
  if (pElem == nullptr) return -1;
  int nResult = 0;
  size_t nNext = 0;  // devices send attributes roughly in table order: try the next row first
  for (const TiXmlAttribute* p = pElem->FirstAttribute(); p != nullptr; p = p->Next()) {
    for (size_t i = 0; i < N; ++i) {
      const stAttr<R>& row = rows[(nNext + i) % N];
      if (strcasecmp(p->Name(), row.pszName) != 0) continue;
      const int nRet = row.pfnStore(rec, p->Value());
      if (nRet < 0) return -1;
      if (nRet > 0) nResult = nRet;
      nNext += i + 1;
      break;
    }
  }
  return nResult;
}

// How long an item element's name may be from its first "_" on.
enum class Suffix { kExactlyTwo, kAtLeastTwo };

// The item number in an item element's name: the digit after the first "_". Returns 0 to 9, or -1
// when there is no "_", no digit after it, or more after it than the rule allows.
int ItemIndex(const char* pszName, Suffix rule);

// Walks the item elements under the section's container child into pItems[0 .. nItems - 1]. Returns
// 0 (also without a container or items); 1 at the first item with an index beyond the last, which
// ends the import: it and everything after it, later containers included, stay unread; -1 at an
// item with a malformed name, keeping what was stored before it.
template <class R, size_t N>
int WalkItems(const TiXmlElement* pSection, const char* pszContainer, const stAttr<R> (&rows)[N],
              R* pItems, int nItems, Suffix rule) {
  if (pSection == nullptr) return -1;
  const TiXmlElement* pItem = pSection->FirstChildElement(pszContainer);
  for (pItem = pItem != nullptr ? pItem->FirstChildElement() : nullptr; pItem != nullptr;
       pItem = pItem->NextSiblingElement()) {
    const int nIndex = ItemIndex(pItem->Value(), rule);
    if (nIndex < 0) return -1;
    if (nIndex >= nItems) return 1;
    if (Walk(pItem, rows, pItems[nIndex]) < 0) return -1;
  }
  return 0;
}

// The same for an array of items whose names end in "_" and one digit.
template <class R, size_t N, size_t M>
int WalkItems(const TiXmlElement* pSection, const char* pszContainer, const stAttr<R> (&rows)[N],
              R (&items)[M]) {
  return WalkItems(pSection, pszContainer, rows, items, static_cast<int>(M), Suffix::kExactlyTwo);
}

// For a section's last container, with the arguments of WalkItems. Returns the import's result: 0
// (also at an index beyond the last) or -1.
template <class... Args>
int WalkIndexed(Args&&... args) {
  return WalkItems(args...) < 0 ? -1 : 0;
}
