// What the accounting functions ask of the store, and that each says so when the store fails.
#include "netwr98/capture.h"
#include "support/books.h"
#include "vlfn98/costs.h"
#include "vlfn98/currency.h"
#include "vlfn98/tax.h"
#include "vlfn98/terms.h"
#include "zelkctl/verbs.h"

namespace test {
namespace {

using namespace vldb98;
using namespace vlfn98;

struct Question {
  const char *name;
  std::function<int(Store &, uint8_t &flag)> ask;
};

int steusa(Store &store, int64_t rate, uint8_t &flag) {
  STEUSA record;
  return GetSteusa(store, 3, "461121", rate, record, flag);
}

const Question kQuestions[] = {
    {"tax key of the day", [](Store &s, uint8_t &f) { return steusa(s, -1, f); }},
    {"tax key with its rate", [](Store &s, uint8_t &f) { return steusa(s, 19'00, f); }},
    {"tax key with an earlier rate", [](Store &s, uint8_t &f) { return steusa(s, 16'00, f); }},
    {"tax key with a rate that it never had", [](Store &s, uint8_t &f) { return steusa(s, 5'00, f); }},
    {"exchange rate",
     [](Store &s, uint8_t &f) {
       Wechselkurs rate;
       return HoleKurs(s, "USD", "461121", rate, f);
     }},
    {"exchange rate stored already",
     [](Store &s, uint8_t &) {
       return SpeichereKurs(s, "USD", "450102", {1'000'000, 1});
     }},
    {"cost centre",
     [](Store &s, uint8_t &f) {
       KOST centre;
       return IsKostenstelle(s, "100", 0, centre, f);
     }},
    {"combination without limits", [](Store &s, uint8_t &f) { return CheckKomb(s, "4600", "100", f); }},
    {"limited combination", [](Store &s, uint8_t &f) { return CheckKomb(s, "4610", "400", f); }},
    {"cost template", [](Store &s, uint8_t &f) { return IsKoscha(s, 1, f); }},
    {"shares of a cost template",
     [](Store &s, uint8_t &) {
       std::vector<KOSCHA_ZEILE> shares;
       return HoleKoscha(s, 1, shares);
     }},
    {"payment term", [](Store &s, uint8_t &f) { return IsZahlziel(s, 1, f); }},
    {"due date",
     [](Store &s, uint8_t &) {
       char due[7];
       return ErmittleZahlungsziel(s, 1, {2026, 1, 1}, due);
     }},
    {"due date without a term",
     [](Store &s, uint8_t &) {
       char due[7];
       return ErmittleZahlungsziel(s, 0, {2026, 1, 1}, due);
     }},
    {"captured document", [](Store &s, uint8_t &f) { return netwr98::OCR_IsBelegkontierungAktiv(s, 1, f); }},
};

TEST_F(Books, AccountingFunctionsTellWhenTheStoreFails) {
  Faults faults;
  auto store = session();
  uint8_t flag = 0;
  ASSERT_TRUE(store->SetzeFista(1, flag) && flag);
  for (const Question &question : kQuestions) {
    SCOPED_TRACE(question.name);
    const auto [operations, answered] = sweep(
        faults, [&] { flag = 0; }, [&] { return question.ask(*store, flag); },
        [&](int done) {
          EXPECT_FALSE(done);
          EXPECT_EQ(flag, 0);
        });
    EXPECT_TRUE(answered);
  }
}

TEST_F(Books, ExchangeRateIsNotHalfStored) {
  Faults faults;
  auto store = session();
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  const std::string before = dump(*store, 1, {kKurse});
  const auto last = sweep(
      faults, [] {},
      [&] {
        return SpeichereKurs(*store, "GBP", "460315", {1'154'321, 1});
      },
      [&](int done) {
        EXPECT_FALSE(done);
        EXPECT_EQ(dump(*store, 1, {kKurse}), before);
      });
  EXPECT_TRUE(last.second);
}

} // namespace
} // namespace test
