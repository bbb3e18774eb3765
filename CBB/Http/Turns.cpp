#include "CBB/Http/Turns.h"

namespace {

stTurn Next(const CRequest& request, bool bHungUp) {
  switch (request.State()) {
    case Reading::kWhole:
      return {stTurn::kServe, 0};
    case Reading::kRefused:
      return {stTurn::kRefuse, request.Refusal()};
    case Reading::kPartial:
      break;
  }
  if (bHungUp) return {stTurn::kClose, 0};
  return {request.AwaitsContinue() ? stTurn::kContinue : stTurn::kWait, 0};
}

// 0 goes first.
int Rank(const stPlace& place) {
  if (!place.bServed) return place.nAgeMs >= kGraceMs ? 0 : 2;
  return place.nUnusedMs >= kUnusedMs ? 1 : 3;
}

}  // namespace

stTurn NextTurn(State state, const CRequest& request, bool bAllSent) {
  if (state == State::kClosed) return {stTurn::kNothing, 0};
  if (!bAllSent) return {stTurn::kWait, 0};
  if (state == State::kLastReply) return {stTurn::kPart, 0};
  return Next(request, state == State::kHungUp);
}

bool GoesBefore(const stPlace& one, const stPlace& other) {
  if (Rank(one) != Rank(other)) return Rank(one) < Rank(other);
  return one.nLastUse < other.nLastUse;
}
