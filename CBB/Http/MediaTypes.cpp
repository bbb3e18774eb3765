#include "CBB/Http/MediaTypes.h"

#include <string_view>

#include "CBB/Http/HeadRules.h"
#include "CBB/Http/Library.h"

namespace {

constexpr struct {
  std::string_view end;
  const char* pszType;
} kTypes[] = {
    {".html", "text/html; charset=utf-8"},
    {".htm", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".mjs", "text/javascript; charset=utf-8"},
    {".json", "application/json"},
    {".map", "application/json"},
    {".svg", "image/svg+xml"},
    {".webmanifest", "application/manifest+json"},
    {".woff2", "font/woff2"},
    {".xml", "text/xml; charset=utf-8"},
    {".txt", "text/plain; charset=utf-8"},
};

}  // namespace

std::string MediaType(const std::string& strPath) {
  const std::string_view path(strPath);
  for (const auto& row : kTypes) {
    if (path.size() > row.end.size() &&
        IsSameName(path.substr(path.size() - row.end.size()), row.end))
      return row.pszType;
  }
  std::string strType = LibraryMediaType(strPath.c_str());
  if (strType.compare(0, 5, "text/") == 0) strType += "; charset=utf-8";
  return strType;
}
