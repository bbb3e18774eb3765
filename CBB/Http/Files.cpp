#include "CBB/Http/Files.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "CBB/Http/Conditions.h"
#include "CBB/Http/Connection.h"
#include "CBB/Http/Descriptors.h"
#include "CBB/Http/FileCache.h"
#include "CBB/Http/HeadRules.h"
#include "CBB/Http/Library.h"
#include "CBB/Http/LibraryFiles.h"
#include "CBB/Http/Refusals.h"

namespace {

constexpr char kServerAndDate[] = "\r\nServer: Mongoose/" MG_VERSION "\r\nDate: ";
constexpr char kAllow[] = "Allow: GET, HEAD, POST, OPTIONS\r\n";
// What browsers are told about every file and page: revalidate each time, and trust the media type.
constexpr char kPageFields[] = "Cache-Control: no-cache\r\nX-Content-Type-Options: nosniff";
constexpr char kPageTypes[] = ".shtml=text/html; charset=utf-8,.shtm=text/html; charset=utf-8";
// Files in this folder have a hash of their content in their names.
constexpr std::string_view kVersioned = "/assets/";
constexpr char kVersionedFields[] =
    "Cache-Control: max-age=31536000, immutable\r\nX-Content-Type-Options: nosniff";

CFileCache g_cache;

struct stRequest {
  mg_connection& conn;
  http_message& msg;
  std::string strUri;  // the library changes its copy
  bool bHead;
  bool bKeepsOpen;
};

std::string_view Text(const mg_str& text) { return {text.p, text.len}; }

// True when nothing in it would be read differently by the library.
bool IsPlainUri(std::string_view uri) {
  return uri.size() > 1 && uri.front() == '/' && uri.back() != '/' &&
         uri.find('%') == std::string_view::npos && uri.find("//") == std::string_view::npos &&
         uri.find("/.") == std::string_view::npos;
}

// The current date, formatted once a second.
const char* Now() {
  static time_t s_second = -1;
  static char s_szDate[kHttpDateSize];
  const time_t now = time(nullptr);
  if (now != s_second) FormatHttpDate(s_second = now, s_szDate);
  return s_szDate;
}

// The fields that say where a part belongs.
std::string RangeField(const stSelection& part, size_t nSize) {
  if (part.nStatus == 416) return "\r\nContent-Range: bytes */" + std::to_string(nSize);
  if (part.nStatus != 206) return {};
  return "\r\nContent-Range: bytes " + std::to_string(part.nAt) + "-" +
         std::to_string(part.nAt + part.nSize - 1) + "/" + std::to_string(nSize);
}

// Appends the texts to the reply. If memory is short, nothing of the reply will be sent.
void Append(mbuf& sent, std::initializer_list<std::string_view> texts) {
  size_t nSize = sent.len;
  for (const std::string_view text : texts) nSize += text.size();
  mbuf_resize(&sent, nSize);
  if (sent.size < nSize) return;
  for (const std::string_view text : texts) {
    memcpy(sent.buf + sent.len, text.data(), text.size());
    sent.len += text.size();
  }
}

// The head's fields from after the date on: as the library writes them, followed by those it does
// not know.
std::string MakeFields(const stRequest& request, const stFile& file, const stForm& form,
                       const stSelection& part) {
  const bool bSame = part.nStatus == 304;
  std::string strFields = "\r\nLast-Modified: " + form.strModified;
  if (!bSame) strFields.append("\r\nAccept-Ranges: bytes\r\nContent-Type: ").append(file.strType);
  strFields.append("\r\nConnection: ").append(request.bKeepsOpen ? "keep-alive" : "close");
  if (!bSame) {
    strFields.append("\r\nContent-Length: ").append(std::to_string(part.nSize));
    strFields.append(RangeField(part, static_cast<size_t>(form.stat.st_size)));
  }
  strFields.append("\r\nEtag: ").append(form.strTag);
  if (&form == &file.packed && !bSame) strFields.append("\r\nContent-Encoding: gzip");
  if (file.bHasPacked) strFields.append("\r\nVary: Accept-Encoding");
  const bool bVersioned = request.strUri.compare(0, kVersioned.size(), kVersioned) == 0;
  strFields.append("\r\n").append(bVersioned ? kVersionedFields : kPageFields);
  return strFields.append("\r\n\r\n");
}

// Where the fields of a usual reply are kept; null for any other reply.
std::string* KeptFields(const stRequest& request, const stForm& form, const stSelection& part) {
  if (!request.bKeepsOpen) return nullptr;
  if (part.nStatus == 304) return &form.strSameFields;
  return part.nStatus == 200 ? &form.strWholeFields : nullptr;
}

void SendHead(const stRequest& request, const stFile& file, const stForm& form,
              const stSelection& part) {
  std::string strOnce;
  std::string* const pKept = KeptFields(request, form, part);
  std::string& strFields = pKept != nullptr ? *pKept : strOnce;
  if (strFields.empty()) strFields = MakeFields(request, file, form, part);
  Append(request.conn.send_mbuf, {"HTTP/1.1 ", std::to_string(part.nStatus), " ",
                                  ReasonPhrase(part.nStatus), kServerAndDate, Now(), strFields});
}

// nFd: the open file, which stays the caller's; -1 when the text is in memory.
void SendFile(const stRequest& request, const stFile& file, int nFd) {
  const bool bRange = !FieldValue(request.msg, "Range").empty();
  const bool bPacked = file.bHasPacked && !bRange && AcceptsGzip(request.msg);
  const stForm& form = bPacked ? file.packed : file.plain;
  const auto nSize = static_cast<size_t>(form.stat.st_size);
  const stSelection part = Select(request.msg, {form.strTag, form.stat.st_mtime, nSize});
  if (part.nStatus == 412) {
    SendStatus(&request.conn, part.nStatus, request.bKeepsOpen, !request.bHead);
    return;
  }
  const bool bBody = !request.bHead && part.nSize != 0;
  const int nOwn = bBody && !form.IsKept() ? Duplicate(nFd) : -1;
  if (bBody && !form.IsKept() && nOwn < 0) {
    SendStatus(&request.conn, 503, request.bKeepsOpen, true);
    return;
  }
  CBody body = form.pLent != nullptr   ? CBody(form.pLent, part.nAt, part.nSize)
               : form.pText != nullptr ? CBody(form.pText, part.nAt, part.nSize)
                                       : CBody(nOwn, static_cast<off_t>(part.nAt),
                                               static_cast<off_t>(part.nSize), form.stat.st_ctim);
  SendHead(request, file, form, part);
  if (bBody) CConnection::Of(request.conn).SetBody(std::move(body));
}

// The library's messages about includes contain full paths.
void HidePaths(mbuf& sent, const char* pszRoot) {
  constexpr std::string_view kDeep = "SSI #include level is too deep";
  constexpr std::string_view kLong = ": SSI tag is too large";
  std::string strText(sent.buf, sent.len);
  for (size_t nAt = strText.find(kDeep); nAt != std::string::npos;
       nAt = strText.find(kDeep, nAt + 1)) {
    const size_t nPath = nAt + kDeep.size();
    const size_t nEnd = strText.find(')', nPath);
    if (strText.compare(nPath, 2, " (") == 0 && nEnd != std::string::npos)
      strText.erase(nPath, nEnd + 1 - nPath);
  }
  for (size_t nAt = strText.find(kLong); nAt != std::string::npos; nAt = strText.find(kLong, nAt)) {
    const size_t nPath = std::min(strText.rfind(pszRoot, nAt), nAt);
    strText.erase(nPath, nAt + 2 - nPath);
    nAt = nPath;
  }
  sent.len = 0;
  mbuf_append(&sent, strText.data(), strText.size());
}

// The status of the library's answer; 500 when there is none.
int StatusOf(const std::string& strAnswer) {
  constexpr size_t kAt = sizeof("HTTP/1.1");
  return strAnswer.size() > kAt + 3 ? atoi(strAnswer.substr(kAt, 3).c_str()) : 500;
}

// Redirects to the same path with a slash at its end. Two slashes at its start would name another
// host.
void SendRedirect(const stRequest& request) {
  const std::string& strUri = request.strUri;
  const size_t nPath = strUri.find_first_not_of('/');
  const std::string strPath = nPath == std::string::npos ? "" : strUri.substr(nPath);
  mg_printf(&request.conn, "HTTP/1.1 301 %s\r\nLocation: /%s/\r\nContent-Length: 0\r\n\r\n",
            ReasonPhrase(301), strPath.c_str());
}

// The library's answers other than a file: a page with includes stays as it is; of a redirect or an
// error only the status is used.
void SendOther(const stRequest& request, const mg_serve_http_opts& opts) {
  mbuf& sent = request.conn.send_mbuf;
  const std::string strAnswer(sent.buf, sent.len);
  const int nStatus = StatusOf(strAnswer);
  if (nStatus == 200) {
    HidePaths(sent, opts.document_root);
    return;
  }
  request.conn.flags &= ~static_cast<unsigned long>(MG_F_SEND_AND_CLOSE);
  sent.len = 0;
  if (nStatus == 301) {
    SendRedirect(request);
  } else {
    SendStatus(&request.conn, nStatus, request.bKeepsOpen, !request.bHead);
  }
}

// Conditional fields and ranges are evaluated here, by today's rules.
void TakeAwayConditions(http_message& msg) {
  for (size_t i = 0; msg.header_names[i].len > 0; ++i) {
    const std::string_view name = Text(msg.header_names[i]);
    if (IsSameName(name.substr(0, 3), "If-") || IsSameName(name, "Range"))
      msg.header_names[i] = mg_mk_str("-");
  }
}

void ServeThroughLibrary(const stRequest& request, mg_serve_http_opts opts) {
  http_message msg = request.msg;
  TakeAwayConditions(msg);
  opts.extra_headers = kPageFields;
  opts.custom_mime_types = kPageTypes;
  FILE* const pRaw = LibraryServeFile(&request.conn, &msg, &opts);
  const std::unique_ptr<FILE, int (*)(FILE*)> pFile(pRaw, &fclose);
  const stOpened& opened = OpenedFile();
  if (*opened.pszPath == '\0' || IsPage(opened.pszPath)) {
    SendOther(request, opts);
    return;
  }
  request.conn.send_mbuf.len = 0;
  request.conn.flags &= ~static_cast<unsigned long>(MG_F_SEND_AND_CLOSE);
  // The library has closed an empty file.
  const COwnedFd again(pFile == nullptr ? OpenForReading(opened.pszPath) : -1);
  const int nFd = pFile != nullptr ? fileno(pFile.get()) : again.Get();
  const auto pRead =
      g_cache.Add(IsPlainUri(request.strUri) ? request.strUri : "", opened.pszPath, nFd);
  if (pRead != nullptr) {
    SendFile(request, *pRead, nFd);
  } else {
    SendStatus(&request.conn, 503, request.bKeepsOpen, !request.bHead);
  }
}

}  // namespace

void ServeFile(mg_connection* pConn, http_message* pMsg, const mg_serve_http_opts& opts) {
  const std::string_view method = Text(pMsg->method);
  const stRequest request = {*pConn, *pMsg, std::string(Text(pMsg->uri)), method == "HEAD",
                             CConnection::Of(*pConn).KeepsOpen()};
  if (method == "OPTIONS") {
    SendStatus(pConn, 204, request.bKeepsOpen, false, kAllow);
    return;
  }
  if (method != "GET" && method != "HEAD" && method != "POST") {
    SendStatus(pConn, 501, request.bKeepsOpen, true);
    return;
  }
  BeginFiles(opts.document_root);
  const auto pFile = IsPlainUri(request.strUri) ? g_cache.Find(request.strUri) : nullptr;
  if (pFile != nullptr) {
    SendFile(request, *pFile, -1);
  } else {
    ServeThroughLibrary(request, opts);
  }
}
