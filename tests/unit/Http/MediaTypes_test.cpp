#include "CBB/Http/MediaTypes.h"

#include <gtest/gtest.h>

namespace {

TEST(MediaType, FollowsTheEndOfTheName) {
  const struct {
    const char* pszPath;
    const char* pszType;
  } rows[] = {
      {"/a.html", "text/html; charset=utf-8"},
      {"/a.HTM", "text/html; charset=utf-8"},
      {"/a.css", "text/css; charset=utf-8"},
      {"/a.js", "text/javascript; charset=utf-8"},
      {"/a.mjs", "text/javascript; charset=utf-8"},
      {"/a.min.js", "text/javascript; charset=utf-8"},
      {"/a.json", "application/json"},
      {"/a.js.map", "application/json"},
      {"/a.svg", "image/svg+xml"},
      {"/a.webmanifest", "application/manifest+json"},
      {"/a.woff2", "font/woff2"},
      {"/a.xml", "text/xml; charset=utf-8"},
      {"/a.txt", "text/plain; charset=utf-8"},
      {"/a.png", "image/png"},
      {"/a.jpg", "image/jpeg"},
      {"/a.gif", "image/gif"},
      {"/a.ico", "image/x-icon"},
      {"/a.unknown", "text/plain; charset=utf-8"},
      {"/html", "text/plain; charset=utf-8"},
      {"/a.html/b", "text/plain; charset=utf-8"},
  };
  for (const auto& row : rows) EXPECT_EQ(row.pszType, MediaType(row.pszPath)) << row.pszPath;
}

}  // namespace
