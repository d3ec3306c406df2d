// Postings as they are inserted and read back.
#include <algorithm>
#include <cstring>

#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

using Postings = PostingBooks;

const std::string kLongText = "\xC4nderung der Miete f\xFCr 35 Zeichen .",
                  kLongId = "0123456789-0123456789-0123456789-0123456789-012345";

/// Every field has a value that no other has.
const Draft kFull = [] {
  Draft draft{2, 2, {{"6200", "70060", "-1.234,5", "8,1", "-46,23", {}, 1}}, "eur", "280227"};
  draft.lines[0].text = kLongText;
  draft.lines[0].text2 = "Zweiter Text: \x80 500,-";
  draft.number = "ABCDEFGHIJKLMNOP";
  draft.openItem = "OP-3456789012345";
  draft.valueDate = "010327";
  draft.slip = "210000000003139471430009017";
  draft.document = kLongId;
  draft.term = 3;
  draft.closing = 5;
  draft.transfer = 1;
  draft.direct = -1;
  return draft;
}();

TEST_F(Postings, SingleOneIsReadBackInEveryField) {
  const ZELK_BUCHUNG single = toSingle(kFull);
  const std::pair<const char *, std::function<ZelkResult()>> ways[] = {
      {"single", [&] { return ZELK_BuchungEinfuegen(&single, 1); }},
      {"flat", [&] { return insertFlat(single, "28.02.2027", "01.03.27"); }},
      {"split", [&] { return insertWhole(kFull); }}};
  for (const auto &[name, way] : ways) {
    SCOPED_TRACE(name);
    ASSERT_EQ(way(), ZELK_OK);
    EXPECT_EQ(recorder.takeText(), "");
    const ZELK_SPLITBUCHUNG read = postingsOf(2, 2).back();
    std::vector<int32_t> numbers = {read.Mandantennummer, read.Stapelnummer,    read.Teilbuchungsanzahl,
                                    read.UStDirekt,       read.Zahlungsziel,    read.Eroeffnungsbuchung,
                                    read.Umbuchung,       read.Abschlussbuchung};
    EXPECT_EQ(numbers, (std::vector<int32_t>{2, 2, 1, 1, 3, 0, 1, 1}));
    std::vector<std::string> texts = {read.Belegdatum, read.Belegnummer, read.OPBelegnummer, read.Valutadatum,
                                      read.Waehrung,   read.ESR,         read.DMSID};
    EXPECT_EQ(texts, (std::vector<std::string>{"280227", "ABCDEFGHIJKLMNOP", "OP-3456789012345", "010327", "EUR",
                                               kFull.slip, kLongId}));
    ZELK_BATCHZEILE line;
    ASSERT_EQ(ZELK_InitHoleBatch(2, 2, 0), ZELK_OK);
    ZELK_SPLITBUCHUNG again;
    while (ZELK_HoleBatch(&again) == ZELK_OK) {
    }
    ASSERT_EQ(ZELK_HoleBatchZeile(&line), ZELK_letzterDatensatz);
    EXPECT_EQ(std::memcmp(&line.Teilbuchung, &read.Teilbuchung[0], sizeof line.Teilbuchung), 0);
    EXPECT_EQ(
        std::vector<int32_t>({line.Teilbuchung.Sollart, line.Teilbuchung.Habenart, line.Teilbuchung.Kostenschablone,
                              line.Steuerschluessel, line.Steuerseite, line.Bewegungsart, line.DmsId}),
        (std::vector<int32_t>{1, 2, 1, 9, 2, 0, 0}));
    texts = {line.Teilbuchung.Sollkonto,
             line.Teilbuchung.Habenkonto,
             line.Teilbuchung.Bruttobetrag,
             line.Teilbuchung.Steuersatz,
             line.Teilbuchung.Steuerbetrag,
             line.Teilbuchung.Text,
             line.Teilbuchung.Text2,
             line.Brutto,
             line.Netto,
             line.Steuer,
             line.Faelligkeit};
    // 0,9319 from October on; due at the end of the month.
    EXPECT_EQ(texts, (std::vector<std::string>{"6200", "70060", "000001234-50", "08,10", "000000046-25", kLongText,
                                               kFull.lines[0].text2, "000001150-43", "000001107-33", "000000043-10",
                                               "310327"}));
  }
}

TEST_F(Postings, FlatArguments) {
  const ZELK_BUCHUNG valid = validPosting();
  static const struct {
    const char *date, *valueDate;
    ZelkResult result;
    const char *message;
  } rows[] = {{"210126", "", 1, ""},
              {" 21.01.2026 ", nullptr, 1, ""},
              {"21.01.26", "01.02.2028", 1, ""},
              {"", "", -11, "Das Buchungsdatum ist unzulässig!"},
              {nullptr, "", -11, "Das Buchungsdatum ist unzulässig!"},
              {"30.02.2026", "", -11, "Das Buchungsdatum ist unzulässig!"},
              {"21.01.20260", "", -11, "Das Buchungsdatum ist unzulässig!"},
              {"21.01.2027", "", -11, "Das Buchungsdatum ist unzulässig!"},
              {"210126", "30.02.2026", -61, "Das Valutadatum ist unzulässig!"},
              {"210126", "x", -61, "Das Valutadatum ist unzulässig!"}};
  for (const auto &row : rows) {
    EXPECT_EQ(insertFlat(valid, row.date, row.valueDate), row.result) << (row.date ? row.date : "null");
    EXPECT_EQ(recorder.takeText(), row.message);
  }
  // Nothing but what there must be; the rest is empty.
  EXPECT_EQ(ZELK_BuchungEinfuegenDirekt(1, 1, 3, "210126", "B-9", nullptr, "1200", 1, "1000", 1, nullptr, nullptr,
                                        nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                        nullptr),
            ZELK_OK);
  EXPECT_STREQ(postingsOf(1, 3).back().Teilbuchung[0].Bruttobetrag, "000000000,00");
  EXPECT_EQ(ZELK_BuchungEinfuegenDirekt(1, 1, 3, "210126", nullptr, nullptr, nullptr, 1, "1000", 1, "1", nullptr,
                                        nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                        nullptr),
            ZELKERR_uzl_Kontonr);
  recorder.takeText();
  EXPECT_EQ(insertFlat(toSingle({99, 3, {{"1200", "1000"}}}), "x", "", 1), ZELKERR_uzl_Mandnr) << "before the date";
  EXPECT_EQ(recorder.takeText(), "Der Mandant existiert nicht!");
  // Each text at its full width and one longer.
  std::string before = dumpAll();
  struct Field {
    const char *number, *text, *account, *gross, *openItem, *currency, *document;
  };
  for (Field field : {Field{"12345678901234567", "", "1200", "1", "", "", ""},
                      {"B", kLongText.c_str(), "1200", "1", "", "", ""},
                      {"B", "", "12000000", "1", "", "", ""},
                      {"B", "", "1200", "0000000000,00", "", "", ""},
                      {"B", "", "1200", "1", "12345678901234567", "", ""},
                      {"B", "", "1200", "1", "", "EURO", ""},
                      {"B", "", "1200", "1", "", "", "012345678901234567890123456789012345678901234567890"}}) {
    std::string text = *field.text ? std::string(field.text) + '.' : "";
    EXPECT_EQ(ZELK_BuchungEinfuegenDirekt(0, 1, 3, "210126", field.number, text.c_str(), field.account, 1, "1000", 1,
                                          field.gross, "", "", 0, 0, 0, 0, 0, field.openItem, "", field.currency, 0, "",
                                          "", field.document),
              ZELKERR_Ueberlauf);
  }
  EXPECT_EQ(dumpAll(), before);
}

TEST_F(Postings, AreDueByTheirTerm) {
  static const struct {
    const char *debit, *credit, *valueDate;
    int32_t term;
    const char *due;
  } rows[] = {{"1200", "1000", "", 0, ""},         {"1200", "1000", "", 2, "200226"},
              {"10010", "8400", "", 0, "200226"},  {"10010", "8400", "010226", 0, "030326"},
              {"10010", "8400", "", 1, "210126"},  {"10010", "8400", "", 5, "150226"},
              {"10130", "8400", "", 0, "150226"},  {"3400", "70020", "", 0, "070326"},
              {"10020", "70020", "", 0, "200226"}, {"10000", "70020", "", 0, "070326"},
              {"10000", "8400", "", 0, ""},        {"10010", "8400", "311279", 0, ""}};
  for (const auto &row : rows) {
    Draft draft{1, 3, {{row.debit, row.credit}}, "", "210126", "B-1", row.valueDate};
    draft.term = row.term;
    ASSERT_EQ(insert(draft, Way::Whole), "1");
    ZELK_BATCHZEILE line;
    ZELK_SPLITBUCHUNG posting;
    ASSERT_EQ(ZELK_InitHoleBatch(1, 3, 0), ZELK_OK);
    while (ZELK_HoleBatch(&posting) == ZELK_OK) {
    }
    ASSERT_EQ(ZELK_HoleBatchZeile(&line), ZELK_letzterDatensatz);
    EXPECT_STREQ(line.Faelligkeit, row.due) << row.debit << ' ' << row.credit << ' ' << row.term;
    EXPECT_EQ(+posting.Zahlungsziel, row.term);
  }
}

TEST_F(Postings, AreReadInTheirOrderByBatch) {
  for (int i = 1; i <= 12; ++i) {
    ZELK_BUCHUNG posting = validPosting();
    posting.Stapelnummer = i % 2 ? 3 : 8;
    put(posting.Belegnummer, "B-" + std::to_string(i));
    ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  }
  for (auto [batch, first] : {std::pair{3, 1}, {8, 2}}) {
    auto all = postingsOf(1, batch);
    ASSERT_EQ(all.size(), 6u);
    for (size_t i = 0; i < all.size(); ++i)
      EXPECT_EQ(all[i].Belegnummer, "B-" + std::to_string(first + 2 * int(i)));
  }
  ZELK_SPLITBUCHUNG posting;
  EXPECT_EQ(ZELK_HoleBatch(&posting), ZELKERR_keinDatensatz);
  EXPECT_EQ(ZELK_InitHoleBatch(1, 1, 1), ZELK_keinKonto) << "an empty batch";
  EXPECT_EQ(ZELK_HoleBatch(&posting), ZELKERR_keinInit);
  EXPECT_EQ(ZELK_InitHoleBatch(1, 99, 1), ZELKERR_uzl_Stapelnr);
  EXPECT_EQ(recorder.takeText(), "Der Stapel existiert nicht!");
  EXPECT_EQ(ZELK_InitHoleBatch(2, 3, 1), ZELK_keinKonto) << "the other client's batch of the number";
}

TEST_F(Postings, ReadingGoesOnWhileTheThreadPosts) {
  for (int i = 0; i < 3; ++i) {
    ZELK_SPLITBUCHUNG posting = validSplit(2 + i);
    ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  }
  ASSERT_EQ(ZELK_InitHoleBatch(1, 3, 0), ZELK_OK);
  ZELK_SPLITBUCHUNG read;
  for (int i = 0; i < 3; ++i) {
    ZELK_BUCHUNG other = validPosting();
    other.Mandantennummer = other.Stapelnummer = 2;
    put(other.Sollkonto, "1020");
    ASSERT_EQ(ZELK_BuchungEinfuegen(&other, 0), ZELK_OK);
    EXPECT_EQ(ZELK_HoleBatch(&read), i < 2 ? ZELK_OK : ZELK_letzterDatensatz);
    EXPECT_EQ(+read.Teilbuchungsanzahl, 2 + i);
    EXPECT_STREQ(read.Teilbuchung[0].Bruttobetrag, "000000100,00");
  }
}

TEST_F(Postings, OpeningTakesTheBalanceForwardAccountOfTheKind) {
  static const struct {
    int32_t client;
    const char *account;
    int32_t kind;
    bool debit; // the side that is given
    const char *balanceForward;
  } rows[] = {{1, "1200", 1, true, "9000"},   {1, "1200", 1, false, "9000"},  {1, "70010", 2, true, "9009"},
              {1, "70010", 2, false, "9009"}, {1, "10010", 4, true, "9008"},  {1, "10010", 4, false, "9008"},
              {2, "1020", 1, true, "9100"},   {2, "70010", 2, false, "9109"}, {2, "10010", 4, true, "9108"}};
  for (const auto &row : rows) {
    ZELK_BUCHUNG posting = validPosting();
    posting.Mandantennummer = row.client;
    posting.Stapelnummer = 2;
    posting.Eroeffnungsbuchung = 1;
    put(posting.Sollkonto, row.debit ? row.account : "");
    put(posting.Habenkonto, row.debit ? "" : row.account);
    // The kind of the empty side does not matter.
    posting.Sollart = row.debit ? row.kind : 7;
    posting.Habenart = row.debit ? 7 : row.kind;
    ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK) << row.account;
    ZELK_SPLITBUCHUNG read = postingsOf(row.client, 2).back();
    const ZELK_TEILBUCHUNG &line = read.Teilbuchung[0];
    EXPECT_EQ(+read.Eroeffnungsbuchung, 1);
    EXPECT_STREQ(row.debit ? line.Sollkonto : line.Habenkonto, row.account);
    EXPECT_STREQ(row.debit ? line.Habenkonto : line.Sollkonto, row.balanceForward);
    EXPECT_EQ(row.debit ? +line.Sollart : +line.Habenart, row.kind);
    EXPECT_EQ(row.debit ? +line.Habenart : +line.Sollart, ZELK_SACHKONTO);
  }
}

TEST_F(Postings, DocumentIdentifiersAreRegisteredOnce) {
  auto other = session();
  auto count = [&](uint16_t client) {
    std::string rows = dump(*other, client, {kDmsId});
    return std::count(rows.begin(), rows.end(), '\n');
  };
  const auto loaded = count(1), loaded2 = count(2);
  ZELK_BUCHUNG posting = validPosting();
  for (const char *id : {"A", "B", "A", "", "a", "A", "   "}) {
    put(posting.DMSID, id);
    ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK) << id;
  }
  auto all = postingsOf(1, 3);
  ASSERT_EQ(all.size(), 7u);
  const char *delivered[] = {"A", "B", "A", "", "a", "A", ""};
  for (size_t i = 0; i < all.size(); ++i)
    EXPECT_STREQ(all[i].DMSID, delivered[i]) << i;
  EXPECT_EQ(count(1), loaded + 3);
  EXPECT_EQ(count(2), loaded2);
  // One that a refused posting brought stays registered.
  put(posting.DMSID, "C");
  put(posting.Belegnummer, "");
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Belegnr);
  EXPECT_EQ(count(1), loaded + 4);
  // Checks before it leave it alone.
  put(posting.DMSID, "D");
  put(posting.ESR, "1");
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Data);
  EXPECT_EQ(count(1), loaded + 4);
}

TEST_F(Postings, PaymentSlipNumbersNeedTheirCheckDigit) {
  // The check digit by its definition: the row of the table that the digits before lead to.
  auto checkDigit = [](const std::string &digits) {
    static const int table[10][10] = {{0, 9, 4, 6, 8, 2, 7, 1, 3, 5}, {9, 4, 6, 8, 2, 7, 1, 3, 5, 0},
                                      {4, 6, 8, 2, 7, 1, 3, 5, 0, 9}, {6, 8, 2, 7, 1, 3, 5, 0, 9, 4},
                                      {8, 2, 7, 1, 3, 5, 0, 9, 4, 6}, {2, 7, 1, 3, 5, 0, 9, 4, 6, 8},
                                      {7, 1, 3, 5, 0, 9, 4, 6, 8, 2}, {1, 3, 5, 0, 9, 4, 6, 8, 2, 7},
                                      {3, 5, 0, 9, 4, 6, 8, 2, 7, 1}, {5, 0, 9, 4, 6, 8, 2, 7, 1, 3}};
    int carry = 0;
    for (char c : digits)
      carry = table[carry][c - '0'];
    return (10 - carry) % 10;
  };
  ZELK_BUCHUNG posting = validPosting();
  posting.Mandantennummer = posting.Stapelnummer = 2;
  put(posting.Sollkonto, "1020");
  auto insert = [&](const std::string &number) {
    put(posting.ESR, number);
    return ZELK_BuchungEinfuegen(&posting, 0);
  };
  for (std::string digits : {"21000000000313947143000901", "00000000000000000000000000", "99999999999999999999999999",
                             "12345678901234567890123456", "123456789012345", "000000000000001"})
    for (int digit = 0; digit < 10; ++digit) {
      std::string number = digits + char('0' + digit);
      EXPECT_EQ(insert(number), digit == checkDigit(digits) ? ZELK_OK : ZELKERR_uzl_Data) << number;
    }
  EXPECT_EQ(insert("21 00000 00003 13947 14300 09017"), ZELK_OK);
  EXPECT_STREQ(postingsOf(2, 2).back().ESR, "21 00000 00003 13947 14300 09017");
  for (const char *wrong :
       {"0", "7", "21000000000313947143000901", "2100000000031394714300090170", "0000000000000000000000000000000000000",
        "21000000000313947143000901x", "-10000000003139471430009017"})
    EXPECT_EQ(insert(wrong), ZELKERR_uzl_Data) << wrong;
}

TEST_F(Postings, AreSkippedWhileATableIsLocked) {
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr));
  auto other = session(), third = session(std::chrono::milliseconds(0));
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && found);
  ZELK_BUCHUNG posting = validPosting();
  std::string before = dump(*third, 1, {kStapel, kBatchbuchung, kSplit, kDmsId});
  put(posting.DMSID, "X");
  for (int table : kLockedTables) {
    ASSERT_TRUE(other->Lock(FileNumber(table), nullptr, 0));
    EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK) << table;
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(dump(*third, 1, {kStapel, kBatchbuchung, kSplit, kDmsId}), before) << table;
    EXPECT_EQ(ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr), 1);
    ASSERT_TRUE(other->Unlock(FileNumber(table), 0));
    EXPECT_TRUE(nothingLocked(*third, 1)) << table;
  }
  // Only these tables of this client matter.
  ASSERT_TRUE(other->Lock(kZahlziel, nullptr, 0));
  ASSERT_TRUE(third->SetzeFista(2, found) && found);
  ASSERT_TRUE(third->Lock(kSplit, nullptr, 0));
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK);
  EXPECT_EQ(postingsOf(1, 3).size(), 1u);
}

} // namespace
} // namespace test
