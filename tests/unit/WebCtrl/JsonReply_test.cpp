#include "CBB/WebCtrl/JsonReply.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include WEBCTRL_ADDRESS_TABLE
#include "tests/unit/WebCtrl/HttpConn.h"

namespace {

using Chunks = std::vector<std::string>;

constexpr char kHead[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

// The chunks that a piece of code writes after the header.
template <class F>
Chunks ChunksOf(F fn) {
  CHttpConn conn;
  CJsonReply reply(conn.Get());
  fn(reply);
  reply.End();
  return TakeReply(conn.Sent()).chunks;
}

TEST(JsonReply, SendsItsHeaderAtOnce) {
  CHttpConn conn;
  const CJsonReply reply(conn.Get());
  EXPECT_EQ(kHead, conn.Sent());
}

TEST(JsonReply, SendsTheMisspeltJsonHeader) {
  CHttpConn conn;
  const CJsonReply reply(conn.Get(), kJsonHeader);
  EXPECT_EQ(
      "HTTP/1.1 200 OK\r\nContent-Type:applicaion/json;charset=UTF-8\r\n"
      "Transfer-Encoding: chunked\r\n\r\n",
      conn.Sent());
}

TEST(JsonReply, SendsOneChunkAPieceWithItsLengthInHex) {
  CHttpConn conn;
  CJsonReply reply(conn.Get());
  reply.Add("a", "text");
  reply.Add("b", 7);
  reply.Result(true);
  EXPECT_EQ(std::string(kHead) +
                "D\r\n{ \"a\": \"text\"\r\n"
                "A\r\n, \"b\": \"7\"\r\n"
                "F\r\n, \"result\": 1 }\r\n"
                "0\r\n\r\n",
            conn.Sent());
}

TEST(JsonReply, OpensTheObjectOnceWhateverComesFirst) {
  CHttpConn conn;
  CJsonReply reply(conn.Get());
  reply.Result(false);
  EXPECT_EQ("{ \"result\": 0 }", TakeReply(conn.Sent()).Body());
  EXPECT_EQ((Chunks{"{ ", ", \"a\": \"b\""}), ChunksOf([](CJsonReply& pieces) {
              pieces.Piece({"{ "});
              pieces.Add("a", "b");
            }));
}

TEST(JsonReply, SendsIrregularPiecesVerbatim) {
  EXPECT_EQ((Chunks{"a%d\"b,7 "}), ChunksOf([](CJsonReply& reply) {
              reply.Piece({"a%d", "", "\"b,", std::to_string(7), " "});
            }));
}

TEST(JsonReply, QuotesNumbers) {
  const struct {
    int nValue;
    const char* pszChunk;
  } rows[] = {{0, "{ \"n\": \"0\""},
              {-1, "{ \"n\": \"-1\""},
              {INT_MAX, "{ \"n\": \"2147483647\""},
              {INT_MIN, "{ \"n\": \"-2147483648\""}};
  for (const auto& row : rows) {
    EXPECT_EQ(Chunks{row.pszChunk},
              ChunksOf([&](CJsonReply& reply) { reply.Add("n", row.nValue); }));
  }
}

TEST(JsonReply, EscapesNothing) {
  EXPECT_EQ((Chunks{"{ \"t\": \"\"\\%s\n<\x01\xD6\xD0\""}),
            ChunksOf([](CJsonReply& reply) { reply.Add("t", "\"\\%s\n<\x01\xD6\xD0"); }));
}

TEST(JsonReply, KeepsLongPiecesWhole) {
  for (const size_t nLen : {100, 499, 500, 511, 512, 513, 4096, 30719, 90000}) {
    const std::string strText(nLen, 'x');
    EXPECT_EQ(Chunks{"{ \"t\": \"" + strText + "\""},
              ChunksOf([&](CJsonReply& reply) { reply.Add("t", strText.c_str()); }))
        << nLen;
  }
}

TEST(JsonReply, MasksPlatformAddresses) {
  EXPECT_EQ((Chunks{std::string("{ \"a\": \"") + kAddressTable[2][1] + "\"", ", \"b\": \"0.0.0.0\"",
                    ", \"c\": \"192.168.1.2\""}),
            ChunksOf([](CJsonReply& reply) {
              reply.AddAddress("a", inet_addr(kAddressTable[2][0]));
              reply.AddAddress("b", 0);
              reply.AddAddress("c", inet_addr("192.168.1.2"));
            }));
}

TEST(ReplyResult, IsOneChunk) {
  for (const bool bOk : {false, true}) {
    CHttpConn conn;
    ReplyResult(conn.Get(), bOk);
    EXPECT_EQ(std::string(kHead) + "E\r\n{\"result\": " + (bOk ? "1" : "0") + " }\r\n0\r\n\r\n",
              conn.Sent());
  }
}

struct stSample {
  uint8_t ucNumber;
  uint32_t uiNumber;
  char strText[8];
  uint32_t uiAddress;
};
struct stItem {
  uint8_t ucNumber;
};
struct stItems {
  stItem items[2];
};

TEST(ReplyFields, WritesTheRowsInOrderAndTheResult) {
  constexpr stJsonField<stSample> kRows[] = {{"text", Emit<&stSample::strText>},
                                             {"uc", Emit<&stSample::ucNumber>},
                                             {"ui", Emit<&stSample::uiNumber>},
                                             {"ip", EmitAddress<&stSample::uiAddress>}};
  const stSample rec{200, 0xFFFFFFFFU, "seven..", inet_addr("1.2.3.4")};
  for (const bool bOk : {false, true}) {
    CHttpConn conn;
    ReplyFields(conn.Get(), kRows, rec, bOk);
    const stReply reply = TakeReply(conn.Sent());
    EXPECT_EQ(kHead, reply.strHead);
    // Unsigned numbers from 2^31 on appear negative.
    EXPECT_EQ((Chunks{"{ \"text\": \"seven..\"", ", \"uc\": \"200\"", ", \"ui\": \"-1\"",
                      ", \"ip\": \"1.2.3.4\"", bOk ? ", \"result\": 1 }" : ", \"result\": 0 }"}),
              reply.chunks);
    EXPECT_EQ("", reply.strRest);
  }
}

TEST(ReplyFields, TakesTheFirstOfSeveralItems) {
  constexpr stJsonField<stItems> kRows[] = {{"n", EmitItem<&stItems::items, &stItem::ucNumber>}};
  const stItems rec{{{3}, {4}}};
  CHttpConn conn;
  ReplyFields(conn.Get(), kRows, rec, true);
  EXPECT_EQ("{ \"n\": \"3\", \"result\": 1 }", TakeReply(conn.Sent()).Body());
}

}  // namespace
