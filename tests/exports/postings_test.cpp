// Postings as they are inserted and read back.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>

#include "support/books.h"

namespace test {
namespace {

using namespace vldb98;

using Postings = Books;

/// A text field in words, for comparisons that name the field.
std::string show(const ZELK_TEILBUCHUNG &l) {
  auto kinds = std::to_string(l.Sollart) + '/' + std::to_string(l.Habenart) + '/' + std::to_string(l.Kostenschablone);
  return kinds + " Soll=" + l.Sollkonto + " Haben=" + l.Habenkonto + " Brutto=" + l.Bruttobetrag +
         " Satz=" + l.Steuersatz + " Steuer=" + l.Steuerbetrag + " Text=" + l.Text + " Text2=" + l.Text2;
}

std::string show(const ZELK_SPLITBUCHUNG &p) {
  std::string text;
  for (int32_t number : {p.Mandantennummer, p.Stapelnummer, p.Teilbuchungsanzahl, p.UStDirekt, p.Zahlungsziel,
                         p.Eroeffnungsbuchung, p.Abschlussbuchung, p.Umbuchung})
    text += std::to_string(number) + ' ';
  for (const char *field : {p.Belegdatum, p.Belegnummer, p.OPBelegnummer, p.Valutadatum, p.Waehrung, p.ESR, p.DMSID})
    text += std::string(" [") + field + ']';
  for (const ZELK_TEILBUCHUNG &line : p.Teilbuchung)
    text += "\n  " + show(line);
  return text;
}

/// Brings the lines of a posting to the form in which they are delivered.
void normalise(ZELK_SPLITBUCHUNG &posting, int line, const char *amount) {
  put(posting.Teilbuchung[line].Bruttobetrag, amount);
  put(posting.Teilbuchung[line].Steuersatz, "00,00");
  put(posting.Teilbuchung[line].Steuerbetrag, "000000000,00");
}

TEST_F(Postings, SingleOneIsReadBackInEveryField) {
  ZELK_BUCHUNG posting = validPosting();
  posting.Zahlungsziel = 3;
  posting.Abschlussbuchung = 5;
  posting.UStDirekt = -1;
  posting.Umbuchung = 1;
  posting.Sollart = ZELK_DEBITOR;
  posting.Habenart = ZELK_KREDITOR;
  put(posting.Belegnummer, "ABCDEFGHIJKLMNOP");
  put(posting.Text, "\xC4nderung der Miete f\xFCr 35 Zeichen ...");
  put(posting.Text2, "Zweiter Text: \x80 500,- ................");
  posting.Text[35] = posting.Text2[35] = 0;
  put(posting.Sollkonto, "10010");
  put(posting.Habenkonto, "70010");
  put(posting.Bruttobetrag, "-1.234,5");
  put(posting.OPBelegnummer, "OP-3456789012345");
  put(posting.Valutadatum, "290228");
  put(posting.Waehrung, "EUR");
  put(posting.DMSID, "0123456789-0123456789-0123456789-0123456789-012345");
  ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK);
  EXPECT_EQ(recorder.takeText(), "");

  ZELK_SPLITBUCHUNG expected{};
  expected.Mandantennummer = 1;
  expected.Stapelnummer = 3;
  expected.Teilbuchungsanzahl = expected.UStDirekt = expected.Abschlussbuchung = expected.Umbuchung = 1;
  expected.Zahlungsziel = 3;
  put(expected.Belegdatum, "210126");
  put(expected.Belegnummer, posting.Belegnummer);
  put(expected.OPBelegnummer, posting.OPBelegnummer);
  put(expected.Valutadatum, "290228");
  put(expected.DMSID, posting.DMSID);
  ZELK_TEILBUCHUNG &line = expected.Teilbuchung[0];
  line.Sollart = ZELK_DEBITOR;
  line.Habenart = ZELK_KREDITOR;
  put(line.Sollkonto, "10010");
  put(line.Habenkonto, "70010");
  put(line.Text, posting.Text);
  put(line.Text2, posting.Text2);
  normalise(expected, 0, "000001234-50");
  auto all = postingsOf(1, 3);
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(show(all[0]), show(expected));
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

/// A client's accounts for random postings.
struct Pool {
  int32_t client;
  std::vector<int32_t> batches;
  std::vector<const char *> ledger, creditors, debtors, days;
};
const Pool kPools[] = {{1,
                        {1, 3, 8},
                        {"0027", "1000", "1010", "1200", "1360", "2100", "4210", "9000"},
                        {"70010", "70020"},
                        {"10010", "10020"},
                        {"010125", "311225", "010126", "280226", "311226"}},
                       {2,
                        {1, 2},
                        {"1000", "1020", "1100", "3200", "6000", "9100"},
                        {"70010", "70020"},
                        {"10010", "10030"},
                        {"010725", "300626", "010726", "290227", "300627"}}};

class RandomPosting {
public:
  explicit RandomPosting(uint32_t seed) : random_(seed) {}

  size_t below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random_); }
  template <class T> T oneOf(const std::vector<T> &all) { return all[below(all.size())]; }

  std::string text(size_t width) {
    std::string all(below(width), ' ');
    for (char &c : all)
      c = char(1 + below(255));
    return all;
  }

  /// An amount: as a host may write it, and in internal form.
  std::pair<std::string, std::string> amount() {
    int64_t value = std::uniform_int_distribution<int64_t>(0, below(2) ? 100'000 : 99'999'999'999)(random_);
    bool negative = below(3) == 0 && value != 0;
    char internal[40], written[40];
    int units = int(value / 100), cents = int(value % 100);
    std::snprintf(internal, sizeof internal, "%09d%c%02d", units, negative ? '-' : ',', cents);
    switch (below(4)) {
    case 0:
      return {internal, internal};
    case 1:
      std::snprintf(written, sizeof written, "%s%d,%02d", negative ? "-" : "", units, cents);
      break;
    case 2:
      std::snprintf(written, sizeof written, "%d,%02d%s", units, cents, negative ? "-" : "");
      break;
    default:
      if (units > 999'999) return {internal, internal};
      if (units > 999)
        std::snprintf(written, sizeof written, "%s%d.%03d,%02d", negative ? "-" : "+", units / 1000, units % 1000,
                      cents);
      else
        std::snprintf(written, sizeof written, " %s%d,%02d ", negative ? "-" : "", units, cents);
    }
    return {written, internal};
  }

  /// A valid posting, and how it is to be read back.
  std::pair<ZELK_SPLITBUCHUNG, ZELK_SPLITBUCHUNG> make() {
    const Pool &pool = kPools[below(2)];
    ZELK_SPLITBUCHUNG p{};
    p.Mandantennummer = pool.client;
    p.Stapelnummer = oneOf(pool.batches);
    p.Teilbuchungsanzahl = int32_t(1 + below(10));
    p.Zahlungsziel = int32_t(below(4));
    p.Abschlussbuchung = int32_t(below(2));
    p.Umbuchung = int32_t(below(2));
    p.UStDirekt = int32_t(below(2));
    std::string day = oneOf(pool.days);
    if (day == "290227") day = "280227";
    put(p.Belegdatum, day);
    put(p.Belegnummer, "B" + text(16));
    put(p.OPBelegnummer, text(17));
    if (below(2)) put(p.Valutadatum, day);
    if (below(3) == 0) put(p.DMSID, "D" + text(50));
    ZELK_SPLITBUCHUNG expected = p;
    bool debitStays = below(2);
    size_t kind = below(3);
    const char *fixed = kind == 0 ? pool.ledger[0] : kind == 1 ? oneOf(pool.creditors) : oneOf(pool.debtors);
    for (int i = 0; i < p.Teilbuchungsanzahl; ++i) {
      ZELK_TEILBUCHUNG &line = p.Teilbuchung[i];
      const char *other = pool.ledger[1 + below(pool.ledger.size() - 1)];
      int32_t fixedKind = kind == 0 ? ZELK_SACHKONTO : kind == 1 ? ZELK_KREDITOR : ZELK_DEBITOR;
      line.Sollart = debitStays ? fixedKind : ZELK_SACHKONTO;
      line.Habenart = debitStays ? ZELK_SACHKONTO : fixedKind;
      put(line.Sollkonto, debitStays ? fixed : other);
      put(line.Habenkonto, debitStays ? other : fixed);
      put(line.Text, text(36));
      put(line.Text2, text(36));
      auto [written, internal] = amount();
      put(line.Bruttobetrag, written.size() > 12 ? internal : written);
      expected.Teilbuchung[i] = line;
      normalise(expected, i, internal.c_str());
    }
    return {p, expected};
  }

private:
  std::mt19937 random_;
};

TEST_F(Postings, RandomOnesAreReadBackAsTheyWereGiven) {
  const char *given = std::getenv("ZELK_TEST_SEED");
  uint32_t seed = given ? uint32_t(std::strtoul(given, nullptr, 10)) : std::random_device()();
  SCOPED_TRACE("ZELK_TEST_SEED=" + std::to_string(seed));
  RandomPosting random(seed);
  std::map<std::pair<int32_t, int32_t>, std::vector<std::string>> expected;
  for (int i = 0; i < 150; ++i) {
    auto [posting, delivered] = random.make();
    ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), ZELK_OK) << show(posting) << recorder.takeText();
    expected[{posting.Mandantennummer, posting.Stapelnummer}].push_back(show(delivered));
  }
  ZELK_Detach();
  for (const auto &[where, postings] : expected) {
    std::vector<std::string> read;
    for (const ZELK_SPLITBUCHUNG &posting : postingsOf(where.first, where.second))
      read.push_back(show(posting));
    EXPECT_EQ(read, postings) << "client " << where.first << ", batch " << where.second;
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
  auto count = [&](uint16_t client) {
    std::string rows = dump(*other, client, {kDmsId});
    return std::count(rows.begin(), rows.end(), '\n');
  };
  EXPECT_EQ(count(1), 3);
  EXPECT_EQ(count(2), 0);
  // One that a refused posting brought stays registered.
  put(posting.DMSID, "C");
  put(posting.Belegnummer, "");
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Belegnr);
  EXPECT_EQ(count(1), 4);
  // Checks before it leave it alone.
  put(posting.DMSID, "D");
  put(posting.ESR, "1");
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Data);
  EXPECT_EQ(count(1), 4);
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
    ASSERT_TRUE(other->Lock(FileNumber(table), nullptr, 0, ZELK_ENG_DEFAULT));
    EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK) << table;
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(dump(*third, 1, {kStapel, kBatchbuchung, kSplit, kDmsId}), before) << table;
    EXPECT_EQ(ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr), 1);
    ASSERT_TRUE(other->Unlock(FileNumber(table), 0, ZELK_ENG_DEFAULT));
    EXPECT_TRUE(nothingLocked(*third, 1)) << table;
  }
  // Only these tables of this client matter.
  ASSERT_TRUE(other->Lock(kZahlziel, nullptr, 0, ZELK_ENG_DEFAULT));
  ASSERT_TRUE(third->SetzeFista(2, found) && found);
  ASSERT_TRUE(third->Lock(kSplit, nullptr, 0, ZELK_ENG_DEFAULT));
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK);
  EXPECT_EQ(postingsOf(1, 3).size(), 1u);
}

} // namespace
} // namespace test
