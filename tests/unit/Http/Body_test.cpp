// Every kind of body, sent with its head through a socket that takes little at a time.
#include "CBB/Http/Body.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "CBB/Http/LentText.h"
#include "tests/unit/Http/SocketPair.h"

namespace {

// Sends and receives by turns. Returns what arrived.
std::string Deliver(CBody body, std::string_view head) {
  const CSocketPair narrow(SOCK_NONBLOCK);
  const int nRoom = 1;  // the system makes it a few kilobytes
  EXPECT_EQ(0, setsockopt(narrow.Sender(), SOL_SOCKET, SO_SNDBUF, &nRoom, sizeof(nRoom)));
  std::string strArrived;
  std::string strGot;
  do {
    if (!head.empty() || body.Left() != 0) {
      const ssize_t nSent = body.SendAfter(head, narrow.Sender());
      if (nSent < 0) return strArrived + " and an error";
      head.remove_prefix(std::min(head.size(), static_cast<size_t>(nSent)));
    }
    strGot = narrow.Receive(1000);
    strArrived += strGot;
  } while (!strGot.empty());
  return strArrived;
}

std::string Numbers(size_t nSize) {
  std::string strText;
  for (int i = 0; strText.size() < nSize; ++i) strText += std::to_string(i) + " ";
  return strText.substr(0, nSize);
}

CBody FileBody(const std::string& strText, size_t nAt, size_t nSize) {
  FILE* const pFile = tmpfile();
  fwrite(strText.data(), 1, strText.size(), pFile);
  fflush(pFile);
  struct stat st {};
  fstat(fileno(pFile), &st);
  const int nFd = dup(fileno(pFile));
  fclose(pFile);
  return CBody(nFd, static_cast<off_t>(nAt), static_cast<off_t>(nSize), st.st_ctim);
}

TEST(Body, ArrivesBehindItsHeadHoweverLittleFits) {
  const std::string strText = Numbers(20000);
  const auto pText = std::make_shared<const std::string>(strText);
  const auto pLent = CLentText::Make(strText);
  ASSERT_NE(nullptr, pLent);
  using Maker = std::function<CBody(size_t, size_t)>;
  const Maker makers[] = {
      [&](size_t nAt, size_t nSize) { return CBody(pText, nAt, nSize); },
      [&](size_t nAt, size_t nSize) { return CBody(pLent, nAt, nSize); },
      [&](size_t nAt, size_t nSize) { return FileBody(strText, nAt, nSize); },
  };
  const struct {
    size_t nAt;
    size_t nSize;
  } parts[] = {{0, 20000}, {0, 1}, {1, 19999}, {19999, 1}};
  for (const Maker& make : makers) {
    for (const auto& part : parts) {
      for (const size_t nHead : {1, 300, 4096, 4097, 9000}) {
        const std::string strHead(nHead, 'h');
        EXPECT_EQ(strHead + strText.substr(part.nAt, part.nSize),
                  Deliver(make(part.nAt, part.nSize), strHead))
            << part.nAt << " " << nHead;
      }
    }
  }
}

TEST(Body, IsNothingAtFirst) {
  EXPECT_EQ(0U, CBody().Left());
  EXPECT_EQ("head", Deliver(CBody(), "head"));
}

}  // namespace
