// Random valid postings, in whichever way they come, are stored and read back as reckoned here.
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <random>

#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

/// An account that stands on the side that changes from line to line.
struct Contra {
  const char *number;
  int32_t key = 0;
  std::vector<int64_t> rates = {}; ///< of the key, in hundredths of a percent
  bool costType = false, excluded = false;
  int64_t deductible = 100;
  int32_t costTemplate = 0; ///< default
};
struct Day {
  const char *text;
  std::vector<std::pair<const char *, std::pair<const char *, int32_t>>> rates;
};
struct Pool {
  int32_t client;
  const char *own;
  bool swiss;
  std::vector<const char *> ledger, personal;
  std::vector<Contra> contras;
  std::vector<Day> days;
  std::vector<const char *> centres, units, regions;
};
const Pool kPools[] = {
    {1,
     "EUR",
     false,
     {"1200", "1000", "9000"},
     {"10010", "10020", "70010", "70020"},
     {{"8400", 3, {1900, 1600}},
      {"8300", 2, {700, 500}},
      {"3400", 5, {1900}, true},
      {"4535", 9, {1900, 1600}, true, false, 50},
      {"3425", 8, {1900}, true, true},
      {"4120", 0, {}, true},
      {"2100"},
      {"1360"},
      {"4600", 5, {1900}, true, false, 100, 3}},
     {{"210126", {{"CHF", {"1,074", 1}}, {"USD", {"0,8525", 1}}, {"JPY", {"0,548", 100}}}},
      {"150826", {{"CHF", {"1,0695", 1}}, {"USD", {"0,861", 1}}}}},
     {"100", "200", "300", "420"},
     {"", "5001", "5002"},
     {"", "NORD", "SUED"}},
    {2,
     "CHF",
     true,
     {"1020", "1000", "1100"},
     {"10010", "10030", "70010", "70020"},
     {{"3200", 1, {810, 770}},
      {"3210", 2, {260}},
      {"6500", 6, {810}, true},
      {"6200", 9, {810}, true, false, 50},
      {"5000", 0, {}, true},
      {"6100", 6, {810}, true, false, 100, 1},
      {"1090"}},
     {{"100126", {{"EUR", {"0,9308", 1}}, {"USD", {"0,7931", 1}}}}, {"280227", {{"EUR", {"0,9319", 1}}}}},
     {"10", "20", "30"},
     {"", "801", "802"},
     {""}}};

int64_t divided(int64_t dividend, int64_t divisor) { // commercially
  int64_t quotient = (std::abs(dividend) * 2 + divisor) / (divisor * 2);
  return dividend < 0 ? -quotient : quotient;
}
int64_t toFive(int64_t amount) {
  return divided(amount, 5) * 5;
}
std::string internal(int64_t amount, int digits = 9) {
  char text[32];
  std::snprintf(text, sizeof text, "%0*lld%c%02lld", digits, std::abs(amount) / 100LL, amount < 0 ? '-' : ',',
                std::abs(amount) % 100LL);
  return text;
}
int64_t hundredths(const char *money) {
  std::string text = plain(money);
  text.erase(text.find(','), 1);
  return std::stoll(text);
}
int64_t millionths(std::string rate) {
  rate += "000000";
  size_t comma = rate.find(',');
  return std::stoll(rate.substr(0, comma) + rate.substr(comma + 1, 6));
}

enum class Costs { None, Given, Template };

/// A posting, and its lines and given cost postings in words.
struct Expected {
  Draft draft;
  bool foreign = false;
  std::pair<std::string, int32_t> rate;
  std::vector<std::string> lines, costs;
  std::vector<int64_t> net, ownNet;
  std::vector<Costs> kinds;
};

class Generator {
public:
  explicit Generator(uint32_t seed) : random_(seed) {}
  size_t below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(random_); }

  Expected make(size_t most, bool pieces) {
    const Pool &pool = kPools[below(2)];
    const Day &day = oneOf(pool.days);
    Expected e;
    Draft &d = e.draft;
    d = {pool.client, int32_t(1 + below(2)), {}, "", day.text, "B" + text(16), below(2) ? day.text : "", text(17)};
    d.closing = pieces ? 0 : int32_t(below(2));
    d.transfer = int32_t(below(2));
    d.direct = int32_t(below(2));
    d.term = int32_t(below(4));
    if (below(3) == 0) d.document = "D" + text(50);
    bool personal = below(2);
    std::string fixed = oneOf(personal ? pool.personal : pool.ledger);
    if (below(2) && (personal || pool.swiss)) {
      e.foreign = below(3) != 0;
      d.currency = pool.own;
      if (e.foreign) std::tie(d.currency, e.rate) = oneOf(day.rates);
    }
    bool debitStays = below(2);
    std::string unit = below(2) ? "Std" : "";
    for (size_t count = 1 + below(most); count > 0; --count)
      addLine(e, pool, fixed, debitStays, pieces, unit);
    return e;
  }

private:
  template <class T> const T &oneOf(const std::vector<T> &all) { return all[below(all.size())]; }
  std::string text(size_t width) {
    std::string all(below(width), ' ');
    for (char &c : all)
      c = char(33 + below(223));
    return all;
  }
  /// As a host may write it.
  std::string written(int64_t amount) {
    std::string whole = std::to_string(std::abs(amount) / 100), text = internal(amount);
    if (below(2)) return text;
    text = whole + text.substr(text.size() - 3);
    text[whole.size()] = ',';
    return amount >= 0 ? (below(2) ? text : '+' + text) : below(2) ? '-' + text : text + '-';
  }

  void addLine(Expected &e, const Pool &pool, const std::string &fixed, bool debitStays, bool pieces,
               const std::string &unit) {
    const Contra &contra = oneOf(pool.contras);
    int64_t gross = int64_t(100 + below(below(2) ? 10'000 : 999'999'900));
    if (below(3) == 0) gross = -gross;
    int64_t rate = contra.key && below(4) ? oneOf(contra.rates) : 0, tax = 0;
    bool five = e.foreign && pool.swiss;
    DraftLine line{debitStays ? fixed : contra.number, debitStays ? contra.number : fixed, written(gross)};
    if (rate) {
      line.rate = internal(rate, 2);
      tax = gross - divided(gross * 10000, 10000 + rate);
      if (five) tax = gross - toFive(gross - tax);
      tax = divided(tax * contra.deductible, 100);
      if (below(2)) {
        // An invoice that rounds line by line.
        int64_t stated = gross - divided(gross * 10000, 10000 + rate);
        tax = divided(stated * contra.deductible, 100) + int64_t(below(11)) - 5;
        if (tax == 0 || (tax < 0) != (gross < 0)) tax = stated; // of another sign it is refused
        line.tax = written(tax);
      }
      if (five) tax = toFive(tax);
      if (contra.excluded) tax = 0;
    }
    line.text = text(36);
    line.text2 = text(36);
    int64_t net = gross - tax, ownGross = converted(gross, e), ownTax = converted(tax, e), ownNet = ownGross - ownTax;
    if (pieces && below(4) == 0) line.movement = int32_t(below(99)), line.document = int32_t(below(99));
    Costs kind = Costs::None;
    if (contra.costType && pieces && below(2)) {
      kind = Costs::Given;
      addCosts(e, pool, line, net, unit);
    } else if (contra.costType) {
      line.costTemplate = int32_t(below(2));
      if (line.costTemplate || contra.costTemplate) kind = Costs::Template;
    }
    e.kinds.push_back(kind);
    e.net.push_back(net);
    e.ownNet.push_back(ownNet);
    e.lines.push_back(
        line.debit + ' ' + line.credit + ' ' + internal(gross) + ' ' + internal(contra.excluded ? 0 : rate, 2) + ' ' +
        internal(tax) + ' ' + std::to_string(rate ? contra.key * 10 + (debitStays ? 1 : 2) : 0) + ' ' +
        internal(ownGross) + ' ' + internal(ownNet) + ' ' + internal(ownTax) + ' ' + std::to_string(line.costTemplate) +
        ' ' + std::to_string(line.movement) + ' ' + std::to_string(line.document) + line.text + '|' + line.text2);
    e.draft.lines.push_back(line);
  }

  void addCosts(Expected &e, const Pool &pool, DraftLine &line, int64_t net, const std::string &unit) {
    int64_t left = net;
    for (size_t count = 1 + below(5); count > 0; --count) {
      int64_t amount = count == 1 ? left : int64_t(below(size_t(std::abs(net)) + 1)) - std::abs(net) / 4;
      left -= amount;
      DraftCost cost{{oneOf(pool.centres), oneOf(pool.units), oneOf(pool.regions)}, written(amount), int32_t(below(3))};
      int64_t quantity = int64_t(below(100'000));
      if (quantity % 2) cost.quantity = written(quantity);
      cost.unit = unit;
      cost.remark = text(41);
      cost.remark2 = text(41);
      int64_t percent = divided(net < 0 ? -amount * 10000 : amount * 10000, std::abs(net));
      e.costs.push_back(std::to_string(e.draft.lines.size()) + ' ' + cost.centres[0] + ' ' + cost.centres[1] + ' ' +
                        cost.centres[2] + ' ' + std::to_string(cost.kind) + ' ' + internal(amount) + ' ' +
                        internal(percent) + ' ' + (cost.quantity.empty() ? "" : internal(quantity)) + ' ' + unit +
                        cost.remark + '|' + cost.remark2);
      // Without a third centre by the function that takes two.
      if (cost.centres[2].empty()) cost.centres.pop_back();
      line.costs.push_back(cost);
    }
  }

  static int64_t converted(int64_t amount, const Expected &e) {
    return e.foreign ? divided(amount * millionths(e.rate.first), 1'000'000LL * e.rate.second) : amount;
  }

  std::mt19937 random_;
};

std::string headerOf(const ZELK_SPLITBUCHUNG &p) {
  std::string all = std::string(p.Belegdatum) + '|' + p.Belegnummer + '|' + p.OPBelegnummer + '|' + p.Valutadatum +
                    '|' + p.Waehrung + '|' + p.DMSID;
  for (int32_t number : {p.Teilbuchungsanzahl, p.Zahlungsziel, p.Abschlussbuchung, p.Umbuchung, p.UStDirekt})
    all += ' ' + std::to_string(number);
  return all;
}

std::string lineOf(const ZELK_BATCHZEILE &read) {
  const ZELK_TEILBUCHUNG &line = read.Teilbuchung;
  return std::string(line.Sollkonto) + ' ' + line.Habenkonto + ' ' + line.Bruttobetrag + ' ' + line.Steuersatz + ' ' +
         line.Steuerbetrag + ' ' + std::to_string(read.Steuerschluessel * 10 + read.Steuerseite) + ' ' + read.Brutto +
         ' ' + read.Netto + ' ' + read.Steuer + ' ' + std::to_string(line.Kostenschablone) + ' ' +
         std::to_string(read.Bewegungsart) + ' ' + std::to_string(read.DmsId) + line.Text + '|' + line.Text2;
}

/// Compares the posting under the cursor of the batch reading.
void expectDelivered(const Expected &expected) {
  ZELK_SPLITBUCHUNG posting;
  ASSERT_GT(ZELK_HoleBatch(&posting), 0);
  EXPECT_EQ(headerOf(posting), headerOf(toRecord(expected.draft)));
  std::vector<std::string> lines, costs;
  ZELK_BATCHZEILE line;
  for (ZelkResult result = ZELK_OK; result == ZELK_OK;) {
    ASSERT_GT(result = ZELK_HoleBatchZeile(&line), 0);
    EXPECT_EQ(hundredths(line.Brutto), hundredths(line.Netto) + hundredths(line.Steuer));
    EXPECT_EQ(+line.Teilbuchung.Sollart, kindOf(line.Teilbuchung.Sollkonto));
    EXPECT_EQ(+line.Teilbuchung.Habenart, kindOf(line.Teilbuchung.Habenkonto));
    lines.push_back(lineOf(line));
  }
  EXPECT_EQ(lines, expected.lines);
  std::map<size_t, std::pair<int64_t, int64_t>> sums; // in the posting's currency, in the client's
  ZELK_BATCHKOBU cost;
  for (ZelkResult result = ZELK_OK; result == ZELK_OK && (result = ZELK_HoleBatchKobu(&cost)) > 0;) {
    size_t at = size_t(cost.Teilbuchung);
    ASSERT_LT(at, lines.size());
    const char *amount = expected.foreign ? cost.BetragFW : cost.Betrag;
    EXPECT_EQ(*cost.BetragFW != 0, expected.foreign);
    sums[at].first += hundredths(amount);
    sums[at].second += hundredths(cost.Betrag);
    if (expected.kinds.at(at) == Costs::Given)
      costs.push_back(std::to_string(at) + ' ' + cost.Kostenstelle1 + ' ' + cost.Kostenstelle2 + ' ' +
                      cost.Kostenstelle3 + ' ' + std::to_string(cost.Kostenkennung) + ' ' + amount + ' ' +
                      cost.Prozent + ' ' + cost.Menge + ' ' + cost.Einheit + cost.Bemerkung + '|' + cost.Bemerkung2);
  }
  EXPECT_EQ(costs, expected.costs);
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(sums.count(i) != 0, expected.kinds[i] != Costs::None) << lines[i];
    if (sums.count(i)) {
      EXPECT_EQ(sums[i], std::pair(expected.net[i], expected.ownNet[i])) << lines[i];
    }
  }
}

using PostingProperty = PostingBooks;

TEST_F(PostingProperty, RandomOnesAreReadBackAsReckoned) {
  const char *given = std::getenv("ZELK_TEST_SEED");
  uint32_t seed = given ? uint32_t(std::strtoul(given, nullptr, 10)) : std::random_device()();
  SCOPED_TRACE("ZELK_TEST_SEED=" + std::to_string(seed));
  Generator random(seed);
  std::map<std::pair<int32_t, int32_t>, std::vector<Expected>> all;
  for (int i = 0; i < 250; ++i) {
    size_t way = random.below(5);
    Expected expected = random.make(way < 2 ? 1 : way == 4 ? 40 : 10, way >= 3);
    const Draft &draft = expected.draft;
    ZELK_BUCHUNG single = toSingle(draft);
    ZelkResult result = way == 0   ? ZELK_BuchungEinfuegen(&single, 1)
                        : way == 1 ? insertFlat(single, draft.date.c_str(), draft.valueDate.c_str())
                        : way == 2 ? insertWhole(draft)
                                   : insertInPieces(draft);
    ASSERT_EQ(result, ZELK_OK) << recorder.takeText() << ", posting " << i;
    all[{draft.client, draft.batch}].push_back(std::move(expected));
  }
  ZELK_Detach();
  for (const auto &[where, postings] : all) {
    auto stored = storedPostings(*other_, where.first, where.second);
    ASSERT_EQ(stored.size(), postings.size());
    ASSERT_EQ(ZELK_InitHoleBatch(where.first, where.second, 0), ZELK_OK);
    for (size_t i = 0; i < postings.size() && !HasFailure(); ++i) {
      expectDelivered(postings[i]);
      EXPECT_EQ(stored[i].posting.Kurs, postings[i].rate.first);
      EXPECT_EQ(+stored[i].posting.Einheiten, postings[i].rate.second);
    }
  }
}

} // namespace
} // namespace test
