// The HTTP library's file-serving options: only the document root is set. One object per process.
#pragma once

#include <mongoose.h>

inline mg_serve_http_opts& HttpOptions() {
  static mg_serve_http_opts opts{};
  return opts;
}
