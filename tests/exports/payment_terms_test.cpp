// Payment terms: every check in its order, what is stored, finding them again.
#include <cstring>

#include "resources/strings.h"
#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

struct Term {
  int32_t action = 1, number = 0;
  const char *name = "NEU"; ///< UTF-8
  int32_t days1 = 0;
  const char *rate1 = nullptr;
  int32_t days2 = 0;
  const char *rate2 = nullptr;
  int32_t days = 0, dayOfMonth = 0, months = 0;
  const char *remark = nullptr;
  int32_t method = 0;
  int32_t client = 1;

  ZelkResult call(int32_t flag) const {
    std::string ansi = *vlba98::toWindows1252(name ? name : "");
    return ZELK_Zahlungsziel(client, action, number, name ? ansi.c_str() : nullptr, days1, rate1, days2, rate2, days,
                             dayOfMonth, months, remark, method, flag);
  }
};

const char kOrder[] = "Fehler bei der Skontoangabe!\nDer erste gewährte Skonto muss den kleineren\nZeitraum und den "
                      "grösseren Skontosatz haben.",
           kNothing[] = "Bitte geben Sie einen Skontosatz grösser als 0,00 %\nund eine Skontofrist grösser als 0 Tage "
                        "ein!",
           kRate[] = "Der Skontosatz ist unzulässig!", kRate2[] = "Der Skontosatz 2 ist unzulässig!",
           kPeriod[] = "Die Skontofrist 1 ist unzulässig!", kPeriod2[] = "Die Skontofrist 2 ist unzulässig!",
           kDays[] = "Die Zahlungsfrist ist unzulässig!", kDay[] = "Der Tag im Monat ist unzulässig!",
           kMonths[] = "Die Folgemonatszahl unzulässig!", kMethod[] = "Die Zahlungsart unzulässig!";

class PaymentTerms : public Books {
protected:
  /// As the library delivers it: "6 NEU 10/03,00 0/ 30 15+1 (2) Bemerkung"; the code when it does not.
  static std::string read(int32_t number, int32_t client = 1) {
    ZELK_ZAHLUNGSZIEL term;
    if (ZelkResult result = ZELK_HoleZahlungsziel(client, number, &term, 0); result != ZELK_OK)
      return std::to_string(result);
    auto discount = [](int32_t days, const char *rate) { return std::to_string(days) + "/" + rate; };
    return std::to_string(term.Zahlzielnummer) + " " + vlba98::toUtf8(term.Name) + " " +
           discount(term.Skontotage1, term.Skontosatz1) + " " + discount(term.Skontotage2, term.Skontosatz2) + " " +
           std::to_string(term.Zahltage) + " " + std::to_string(term.TagInMonat) + "+" +
           std::to_string(term.MonatePlus) + " (" + std::to_string(term.Zahlungsart) + ") " +
           vlba98::toUtf8(term.Bemerkung) + " >" + std::to_string(term.Naechstes);
  }

  std::unique_ptr<Store> other = session(std::chrono::milliseconds(0));
};

TEST_F(PaymentTerms, AreCheckedInTheirOrder) {
  // What is checked after the reason of a refusal is wrong as well.
  const struct {
    Term term;
    ZelkResult result;
    const char *message;
  } rows[] = {
      {{.action = 3, .name = "", .client = 99}, ZELKERR_uzl_Mandnr, ""},
      {{.action = 0, .name = ""}, ZELKERR_sonst, "Unzulässige Aktion!"},
      {{.action = 3, .name = ""}, ZELKERR_sonst, "Unzulässige Aktion!"},
      {{.action = 2, .number = 99, .name = ""}, ZELKERR_uzl_Kuerzel, "Fehlendes Kürzel!"},
      {{.name = nullptr}, ZELKERR_uzl_Kuerzel, "Fehlendes Kürzel!"},
      {{.name = " \t          X", .days1 = -1}, ZELKERR_uzl_Skontotage, kPeriod}, // trimmed, then cut
      {{.name = " \t\r\n ", .days1 = -1}, ZELKERR_uzl_Kuerzel, "Fehlendes Kürzel!"},
      {{.name = " SOFORT ", .days1 = -1}, ZELKERR_ZZ_existiert, "Das Zahlungsziel existiert bereits!"},
      {{.name = "10T3 20T2 und mehr", .days1 = -1}, ZELKERR_ZZ_existiert, "Das Zahlungsziel existiert bereits!"},
      {{.action = 2, .number = 2, .name = "\tSOFORT", .days1 = -1},
       ZELKERR_Kuerzel_existiert,
       "Das Kürzel existiert bereits!"},
      {{.name = "SOFORT", .days1 = -1}, ZELKERR_ZZ_existiert, "Das Zahlungsziel existiert bereits!"},
      {{.number = 1, .name = "SOFORT", .days1 = -1}, ZELKERR_ZZ_existiert, "Das Zahlungsziel existiert bereits!"},
      {{.action = 2, .number = 99, .name = "SOFORT", .days1 = -1},
       ZELKERR_uzl_Zahlungsziel,
       "Das Zahlziel existiert nicht!"},
      {{.action = 2, .number = 0, .name = "NEU"}, ZELKERR_uzl_Zahlungsziel, "Das Zahlziel existiert nicht!"},
      {{.action = 2, .number = 2, .name = "SOFORT", .days1 = -1},
       ZELKERR_Kuerzel_existiert,
       "Das Kürzel existiert bereits!"},
      {{.days1 = -1, .days2 = -1}, ZELKERR_uzl_Skontotage, kPeriod},
      {{.days1 = 1000, .days2 = -1}, ZELKERR_uzl_Skontotage, kPeriod},
      {{.days1 = 65536 + 10, .rate1 = "3,00"}, ZELKERR_uzl_Skontotage, kPeriod},
      {{.days1 = 999, .days2 = 1000, .rate2 = "x"}, ZELKERR_uzl_Skontotage, kPeriod2},
      {{.days2 = -1, .rate2 = "x"}, ZELKERR_uzl_Skontotage, kPeriod2},
      {{.days1 = 30, .rate1 = "x", .days2 = 10, .rate2 = "x"}, ZELKERR_uzl_Skontotage, kOrder},
      {{.days1 = 10, .rate1 = "x", .days2 = 10}, ZELKERR_uzl_Skontotage, kOrder},
      {{.days1 = 10, .rate1 = "x", .days2 = 20, .rate2 = "x"}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .rate1 = "-3,00"}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .rate1 = "3,001"}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .rate1 = "100,00"}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .rate1 = "3.00"}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .rate1 = "     "}, ZELKERR_uzl_Skontoprozent, kRate},
      {{.days1 = 10, .days2 = 20, .rate2 = "x"}, ZELKERR_uzl_Skontoprozent, kRate2},
      {{.days1 = 10, .rate1 = "02,00", .days2 = 30, .rate2 = "03,00", .days = -1}, ZELKERR_uzl_Skontoprozent, kOrder},
      {{.days1 = 10, .rate1 = "2", .days2 = 30, .rate2 = "2,0", .days = -1}, ZELKERR_uzl_Skontoprozent, kOrder},
      {{.days1 = 10, .days2 = 30, .days = -1}, ZELKERR_uzl_Skontoprozent, kOrder},
      {{.days1 = 10, .rate1 = "00,00", .days = -1}, ZELKERR_uzl_Skontoprozent, kNothing},
      {{.days1 = 10, .days = -1}, ZELKERR_uzl_Skontoprozent, kNothing},
      {{.days1 = 10, .rate1 = "3", .days2 = 30, .rate2 = "0", .days = -1}, ZELKERR_uzl_Skontoprozent, kNothing},
      {{.days1 = 10, .rate1 = "3", .rate2 = "03,00", .days = -1}, ZELKERR_uzl_Skontoprozent, kNothing},
      {{.days = -1, .dayOfMonth = 32}, ZELKERR_uzl_Zahltage, kDays},
      {{.days = 1000, .dayOfMonth = 32}, ZELKERR_uzl_Zahltage, kDays},
      {{.dayOfMonth = 32, .months = 100}, ZELKERR_uzl_TagInMonat, kDay},
      {{.dayOfMonth = -1, .months = 100}, ZELKERR_uzl_TagInMonat, kDay},
      {{.months = 100, .method = 6}, ZELKERR_uzl_MonatePlus, kMonths},
      {{.months = -1, .method = 6}, ZELKERR_uzl_MonatePlus, kMonths},
      {{.method = 6}, ZELKERR_uzl_Zahlungsart, kMethod},
      {{.method = -1}, ZELKERR_uzl_Zahlungsart, kMethod},
  };
  std::string before = dump(*other, 1, {kZahlziel});
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    EXPECT_EQ(row.term.call(0), row.result);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(row.term.call(2), row.result);
    EXPECT_EQ(recorder.takeText(), row.message);
    EXPECT_EQ(dump(*other, 1, {kZahlziel}), before);
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
}

TEST_F(PaymentTerms, AreStoredAsGiven) {
  const std::string remark(50, 'r');
  const struct {
    Term term;
    const char *read; ///< up to the next term; null: refused
    ZelkResult refused = 0;
  } rows[] = {
      {{.number = 77, .name = "A"}, "6 A 0/00,00 0/ 0 0+0 (0) "}, // the number is for changes only
      {{.name = "B", .days1 = 10, .rate1 = "03,00"}, "7 B 10/03,00 0/ 0 0+0 (0) "},
      {{.name = "Zwölf lange",
        .days1 = 999,
        .rate1 = "99,99",
        .days = 999,
        .dayOfMonth = 31,
        .months = 99,
        .method = 5},
       "8 Zwölf lang 999/99,99 0/ 999 31+99 (5) "},
      {{.name = "C", .days1 = 998, .rate1 = "3", .days2 = 999, .rate2 = "2,5", .remark = remark.c_str()},
       "9 C 998/03,00 999/02,50 0 0+0 (0) rrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrrr"},
      {{.name = "Zwölf langes"}, nullptr, ZELKERR_ZZ_existiert},
      {{.name = "D", .rate1 = "2,001", .rate2 = "1"}, nullptr, ZELKERR_uzl_Skontoprozent},
      {{.name = "D", .rate1 = "02,009", .rate2 = "1"}, "10 D 0/02,00 0/01,00 0 0+0 (0) "}, // five characters count
      {{.name = "E", .rate1 = "12", .days2 = 5, .rate2 = "9,99"}, "11 E 0/12,00 5/09,99 0 0+0 (0) "},
      // A change keeps nothing of what was.
      {{.action = 2, .number = 9, .name = "C", .days = 7}, "9 C 0/00,00 0/ 7 0+0 (0) "},
      {{.action = 2, .number = 4, .name = "10T3 20T2!", .remark = "x"}, "4 10T3 20T2! 0/00,00 0/ 0 0+0 (0) x"},
      {{.action = 2, .number = 9, .name = "c"}, "9 c 0/00,00 0/ 0 0+0 (0) "}, // capitals count
      {{.name = " C\n"}, "12 C 0/00,00 0/ 0 0+0 (0) "},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    if (!row.read) {
      EXPECT_EQ(row.term.call(0), row.refused);
      continue;
    }
    ZelkResult number = row.term.call(1);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(number, std::atoi(row.read));
    std::string stored = read(number);
    EXPECT_EQ(stored.substr(0, stored.rfind(" >")), row.read);
    EXPECT_EQ(ZELK_HoleZZnr(1, vlba98::toWindows1252(row.term.name)->c_str()), number);
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
  EXPECT_EQ(read(6, 2), "-27") << "another client's";
}

TEST_F(PaymentTerms, AreFound) {
  EXPECT_EQ(read(4), "4 10T3 20T2 10/03,00 20/02,00 45 0+0 (1) 10 Tage 3 %; 20 Tage 2 %; 45 Tage netto >5");
  std::string walked;
  ZELK_ZAHLUNGSZIEL term;
  int32_t next = 0;
  do {
    ASSERT_EQ(ZELK_HoleZahlungsziel(1, next, &term, 1), ZELK_OK);
    walked += std::to_string(term.Zahlzielnummer) + " ";
  } while ((next = term.Naechstes) != 0);
  EXPECT_EQ(walked, "1 2 3 4 5 ");
  std::memset(&term, 'x', sizeof term);
  const ZELK_ZAHLUNGSZIEL untouched = term;
  const struct {
    int32_t client, number;
    ZelkResult result;
    const char *message;
  } rows[] = {{99, 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
              {1, 6, ZELKERR_uzl_Zahlungsziel, "Das Zahlziel existiert nicht!"},
              {1, -1, ZELKERR_uzl_Zahlungsziel, "Das Zahlziel existiert nicht!"}};
  for (const auto &row : rows) {
    EXPECT_EQ(ZELK_HoleZahlungsziel(row.client, row.number, &term, 0), row.result);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(ZELK_HoleZahlungsziel(row.client, row.number, &term, 1), row.result);
    EXPECT_EQ(recorder.takeText(), row.message);
  }
  EXPECT_EQ(ZELK_HoleZahlungsziel(1, 1, nullptr, 1), ZELKERR_nicht_moeglich);
  EXPECT_EQ(recorder.takeText(), resources::text(338));
  const struct {
    int32_t client;
    const char *name;
    ZelkResult result;
  } names[] = {
      {1, "SOFORT", 1}, {1, " 30 NETTO", 2}, {2, "30 NETTO", 1}, {1, "10T3 20T2 und mehr", 4},      {1, "30", 0},
      {1, "sofort", 0}, {1, "", 0},          {1, nullptr, 0},    {99, "SOFORT", ZELKERR_uzl_Mandnr}};
  for (const auto &row : names)
    EXPECT_EQ(ZELK_HoleZZnr(row.client, row.name), row.result) << (row.name ? row.name : "null");
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && other->DeleteTable(kZahlziel));
  for (int32_t number : {0, 1})
    EXPECT_EQ(ZELK_HoleZahlungsziel(1, number, &term, 1), ZELKERR_keine_Zahlungsziele);
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(std::memcmp(&term, &untouched, sizeof term), 0);
}

TEST_F(PaymentTerms, DecideWhenAPostingIsDue) {
  const struct {
    int32_t days, dayOfMonth, months;
    const char *from, *due;
  } rows[] = {{30, 0, 0, "310126", "020326"},
              {0, 31, 0, "010226", "280226"},
              {0, 0, 1, "310126", "280226"},
              {0, 15, 1, "151226", "150127"},
              {14, 1, 0, "200226", "010426"}};
  ASSERT_EQ((Term{.name = "FRIST"}.call(0)), 6);
  for (const auto &row : rows) {
    ASSERT_EQ((Term{.action = 2,
                    .number = 6,
                    .name = "FRIST",
                    .days = row.days,
                    .dayOfMonth = row.dayOfMonth,
                    .months = row.months}
                   .call(0)),
              6);
    ZELK_BUCHUNG posting = validPosting();
    posting.Zahlungsziel = 6;
    put(posting.Belegdatum, row.from);
    ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
    ZELK_SPLITBUCHUNG stored;
    ASSERT_EQ(ZELK_InitHoleBatch(1, 3, 0), ZELK_OK);
    while (ZELK_HoleBatch(&stored) == ZELK_OK)
      ;
    ZELK_BATCHZEILE line;
    ASSERT_GT(ZELK_HoleBatchZeile(&line), 0);
    EXPECT_STREQ(line.Faelligkeit, row.due) << row.from;
  }
}

TEST_F(PaymentTerms, WaitForTheirTable) {
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr));
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && other->Lock(kZahlziel, nullptr, 0));
  EXPECT_EQ(Term{}.call(1), ZELKERR_Datenbank);
  EXPECT_EQ((Term{.client = 2}.call(1)), 4);
  EXPECT_EQ(read(1).substr(0, 8), "1 SOFORT") << "reading waits for nobody";
  ASSERT_TRUE(other->Unlock(kZahlziel, 1));
  EXPECT_EQ(Term{}.call(1), 6);
  EXPECT_EQ(recorder.takeText(), "");
}

} // namespace
} // namespace test
