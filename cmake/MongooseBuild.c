// The HTTP library, built for a thread with a stack of 128 KiB.
//
// Pages that include each other nest up to ten levels, each with a buffer of BUFSIZ bytes and two
// of MG_MAX_PATH on the stack: 180 KiB with the C library's sizes. An include's tag is read into
// the first buffer and copied unchecked from there into a path, so BUFSIZ must not exceed
// MG_MAX_PATH.
#include <mongoose.h>

#undef BUFSIZ
#define BUFSIZ 1024
#if BUFSIZ > MG_MAX_PATH
#error "an include's tag may be longer than a path"
#endif

// The room that a growing send buffer gets in advance does not shrink with it.
#undef MBUF_SIZE_MAX_HEADROOM
#define MBUF_SIZE_MAX_HEADROOM 8192

#include <mongoose.c>

#include "MongooseBuild.h"

/* More than the pages could need: each look at a body goes through all of its chunks. */
enum { kMostChunks = 1000, kMostSizeDigits = 6 };

static size_t HexDigit(char cDigit) {
  return (size_t)(cDigit <= '9' ? cDigit - '0' : (cDigit | 0x20) - 'a' + 10);
}

/* Whether what the library does not take for a chunk can still become one. */
static int MayBecomeChunk(const char* pBuf, size_t nLen) {
  size_t nAt = 0, nData = 0;
  for (; nAt < nLen && isxdigit((unsigned char)pBuf[nAt]); ++nAt) {
    if (nAt == kMostSizeDigits) return 0;
    nData = nData * 16 + HexDigit(pBuf[nAt]);
  }
  if (nAt == nLen) return 1;
  if (nAt == 0 || pBuf[nAt] != '\r' || (nAt + 1 < nLen && pBuf[nAt + 1] != '\n')) return 0;
  nAt += 2 + nData;
  return nAt >= nLen || (pBuf[nAt] == '\r' && nAt + 1 == nLen);
}

static ptrdiff_t ChunksLength(char* pBuf, size_t nLen) {
  char* pData;
  size_t nAt = 0, nData = 1;
  int nChunks = 0;
  while (nData != 0) {
    const size_t nChunk = mg_http_parse_chunk(pBuf + nAt, nLen - nAt, &pData, &nData);
    if (nChunk == 0)
      return MayBecomeChunk(pBuf + nAt, nLen - nAt) ? kRequestNotWhole : kRequestBroken;
    if (++nChunks > kMostChunks) return kRequestBroken;
    nAt += nChunk;
  }
  return (ptrdiff_t)nAt;
}

ptrdiff_t FirstRequestLength(const struct mbuf* pReceived) {
  const size_t nToTheEnd = ~(size_t)0;
  struct http_message msg;
  const int nHead = mg_parse_http(pReceived->buf, (int)pReceived->len, &msg, 1);
  const struct mg_str* pEncoding;
  if (nHead < 0) return kRequestBroken;
  if ((nHead == 0 ? pReceived->len : (size_t)nHead) >= MG_MAX_HTTP_REQUEST_SIZE)
    return kRequestBroken;
  if (nHead == 0) return kRequestNotWhole;
  pEncoding = mg_get_http_header(&msg, "Transfer-Encoding");
  if (pEncoding != NULL && mg_vcasecmp(pEncoding, "chunked") == 0) {
    const ptrdiff_t nBody = ChunksLength(pReceived->buf + nHead, pReceived->len - (size_t)nHead);
    return nBody > 0 ? nHead + nBody : nBody;
  }
  if (msg.message.len == nToTheEnd && msg.body.len == nToTheEnd)
    return pEncoding == NULL ? kRequestToTheEnd : kRequestBroken;
  if (msg.body.len > nToTheEnd / 2) return kRequestBroken; /* its length is negative */
  return msg.message.len <= pReceived->len ? (ptrdiff_t)msg.message.len : kRequestNotWhole;
}

int IsSendingFile(const struct mg_connection* pConn) {
  const struct mg_http_proto_data* pData = (const struct mg_http_proto_data*)pConn->proto_data;
  return pData != NULL && pData->file.fp != NULL;
}
