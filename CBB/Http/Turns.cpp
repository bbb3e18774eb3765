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

bool OnlyHolds(const stPlace& place) { return !place.bServed && place.nAgeMs >= kGraceMs; }

}  // namespace

stTurn NextTurn(State state, const CRequest& request, bool bAllSent) {
  if (state == State::kClosed) return {stTurn::kNothing, 0};
  if (!bAllSent) return {stTurn::kWait, 0};
  if (state == State::kLastReply) return {stTurn::kPart, 0};
  return Next(request, state == State::kHungUp);
}

bool GoesBefore(const stPlace& one, const stPlace& other) {
  if (OnlyHolds(one) != OnlyHolds(other)) return OnlyHolds(one);
  return one.nLastUse < other.nLastUse;
}
