// The hand-formatted JSON replies: status line and headers, one chunk per piece, an empty chunk.
//
// Nothing is escaped: a value reaches the browser as the device gave it. Used on the HTTP server
// thread only; the connection belongs to the HTTP library.
#pragma once

#include <mongoose.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "config/AttrTable.h"

constexpr const char* kStdHeader = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
// Deliberate: the pages rely on the misspelt media type and the missing blank.
constexpr const char* kJsonHeader =
    "HTTP/1.1 200 OK\r\nContent-Type:applicaion/json;charset=UTF-8\r\n"
    "Transfer-Encoding: chunked\r\n\r\n";

// One query reply. Each Add or Piece is one chunk; Result ends the reply and passes the chunks to
// the connection.
class CJsonReply {
 public:
  // Sends pszHeader at once.
  explicit CJsonReply(mg_connection* pConn, const char* pszHeader = kStdHeader);

  // `"key": "text"`, opened by "{ " as the first piece and by ", " later.
  void Add(const char* pszKey, const char* pszText);

  // `"key": "number"`: numbers are quoted. Unsigned values from 2^31 on appear negative.
  void Add(const char* pszKey, int nValue);

  // `"key": "a.b.c.d"` from an address in network byte order; a platform's own address is masked.
  void AddAddress(const char* pszKey, uint32_t uiAddress);

  // One irregular piece: the texts exactly as given, one after another.
  void Piece(std::initializer_list<std::string_view> texts);

  // `, "result": 1 }` for success, otherwise 0, and the end of the reply.
  void Result(bool bOk);

  // Passes the chunks to the connection, followed by the empty one that ends the reply.
  void End();

 private:
  const char* Lead() const { return m_strChunks.empty() ? "{ " : ", "; }

  mg_connection* m_pConn;
  std::string m_strChunks;  // all pieces so far, framed
};

// The whole reply of a set endpoint: `{"result": 1 }` for success, otherwise 0.
void ReplyResult(mg_connection* pConn, bool bOk);

// One row of a query reply: the key, and how its value is written.
template <class R>
struct stJsonField {
  const char* pszKey;
  void (*pfnEmit)(CJsonReply& reply, const char* pszKey, const R& rec);
};

// Writes the record's field M unchanged.
template <auto M>
void Emit(CJsonReply& reply, const char* pszKey, const typename MemberOf<M>::Record& rec) {
  if constexpr (std::is_array_v<typename MemberOf<M>::Field>) {
    reply.Add(pszKey, rec.*M);
  } else {
    reply.Add(pszKey, static_cast<int>(rec.*M));
  }
}

// Writes field M of the first item in the record's item array A.
template <auto A, auto M>
void EmitItem(CJsonReply& reply, const char* pszKey, const typename MemberOf<A>::Record& rec) {
  Emit<M>(reply, pszKey, (rec.*A)[0]);
}

// Writes the address field M as dotted text; a platform's own address is masked.
template <auto M>
void EmitAddress(CJsonReply& reply, const char* pszKey, const typename MemberOf<M>::Record& rec) {
  reply.AddAddress(pszKey, rec.*M);
}

// Writes the rows in order and the result: a whole query reply.
template <class R, size_t N>
void ReplyFields(mg_connection* pConn, const stJsonField<R> (&rows)[N], const R& rec, bool bOk) {
  CJsonReply reply(pConn);
  for (const stJsonField<R>& row : rows) row.pfnEmit(reply, row.pszKey, rec);
  reply.Result(bOk);
}
