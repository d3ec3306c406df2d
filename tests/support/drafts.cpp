#include "support/drafts.h"

#include "vlba98/text.h"

namespace test {

using namespace vldb98;

int32_t kindOf(const std::string &account) {
  return account.size() != 5 ? ZELK_SACHKONTO : account[0] == '7' ? ZELK_KREDITOR : ZELK_DEBITOR;
}

namespace {

int32_t debitKind(const DraftLine &line) {
  return line.debitKind >= 0 ? line.debitKind : kindOf(line.debit);
}
int32_t creditKind(const DraftLine &line) {
  return line.creditKind >= 0 ? line.creditKind : kindOf(line.credit);
}

ZelkResult addLine(const Draft &draft, const DraftLine &line) {
  const char *debit = line.debit.c_str(), *credit = line.credit.c_str();
  auto kinds = std::pair{int16_t(debitKind(line)), int16_t(creditKind(line))};
  if (draft.ex)
    return ZELK_SplitEinfuegenEx(debit, kinds.first, credit, kinds.second, line.gross.c_str(), line.ownGross.c_str(),
                                 line.rate.c_str(), line.tax.c_str(), line.ownTax.c_str(), line.text.c_str(),
                                 int16_t(line.costTemplate), line.text2.c_str());
  return ZELK_SplitEinfuegen(debit, kinds.first, credit, kinds.second, line.gross.c_str(), line.rate.c_str(),
                             line.tax.c_str(), line.text.c_str(), int16_t(line.costTemplate), line.text2.c_str());
}

ZelkResult addCost(const DraftCost &cost) {
  const char *centre[6] = {};
  for (size_t i = 0; i < cost.centres.size(); ++i)
    centre[i] = cost.centres[i].c_str();
  const char *amount = cost.amount.c_str(), *quantity = cost.quantity.empty() ? nullptr : cost.quantity.c_str(),
             *unit = cost.unit.empty() ? nullptr : cost.unit.c_str();
  if (cost.centres.size() <= 2)
    return ZELK_SplitKobuEinfuegen(centre[0], centre[1], cost.kind, amount, quantity, unit, cost.remark.c_str(),
                                   cost.remark2.c_str());
  return ZELK_SplitKobuEinfuegenEx(centre[0], centre[1], cost.kind, amount, quantity, unit, cost.remark.c_str(),
                                   cost.remark2.c_str(), centre[2], centre[3], centre[4], centre[5]);
}

} // namespace

ZELK_SPLITBUCHUNG toRecord(const Draft &draft) {
  ZELK_SPLITBUCHUNG p{};
  p.Mandantennummer = draft.client;
  p.Stapelnummer = draft.batch;
  p.Teilbuchungsanzahl = int32_t(draft.lines.size());
  p.UStDirekt = draft.direct;
  p.Zahlungsziel = draft.term;
  p.Eroeffnungsbuchung = draft.opening;
  p.Abschlussbuchung = draft.closing;
  p.Umbuchung = draft.transfer;
  put(p.Belegdatum, draft.date);
  put(p.Belegnummer, draft.number);
  put(p.OPBelegnummer, draft.openItem);
  put(p.Valutadatum, draft.valueDate);
  put(p.Waehrung, draft.currency);
  put(p.ESR, draft.slip);
  put(p.DMSID, draft.document);
  for (size_t i = 0; i < std::min(draft.lines.size(), std::size(p.Teilbuchung)); ++i) {
    const DraftLine &from = draft.lines[i];
    ZELK_TEILBUCHUNG &line = p.Teilbuchung[i];
    line.Sollart = debitKind(from);
    line.Habenart = creditKind(from);
    line.Kostenschablone = from.costTemplate;
    put(line.Sollkonto, from.debit);
    put(line.Habenkonto, from.credit);
    put(line.Bruttobetrag, from.gross);
    put(line.Steuersatz, from.rate);
    put(line.Steuerbetrag, from.tax);
    put(line.Text, from.text);
    put(line.Text2, from.text2);
  }
  return p;
}

ZELK_BUCHUNG toSingle(const Draft &draft) {
  ZELK_SPLITBUCHUNG split = toRecord(draft);
  const ZELK_TEILBUCHUNG &line = split.Teilbuchung[0];
  ZELK_BUCHUNG p{};
  p.Mandantennummer = split.Mandantennummer;
  p.Stapelnummer = split.Stapelnummer;
  p.Kostenschablone = line.Kostenschablone;
  p.Zahlungsziel = split.Zahlungsziel;
  p.Eroeffnungsbuchung = split.Eroeffnungsbuchung;
  p.Abschlussbuchung = split.Abschlussbuchung;
  p.Sollart = line.Sollart;
  p.Habenart = line.Habenart;
  p.UStDirekt = split.UStDirekt;
  p.Umbuchung = split.Umbuchung;
  put(p.Belegdatum, split.Belegdatum);
  put(p.Belegnummer, split.Belegnummer);
  put(p.Text, line.Text);
  put(p.Sollkonto, line.Sollkonto);
  put(p.Habenkonto, line.Habenkonto);
  put(p.Bruttobetrag, line.Bruttobetrag);
  put(p.Steuersatz, line.Steuersatz);
  put(p.Steuerbetrag, line.Steuerbetrag);
  put(p.OPBelegnummer, split.OPBelegnummer);
  put(p.Valutadatum, split.Valutadatum);
  put(p.Waehrung, split.Waehrung);
  put(p.ESR, split.ESR);
  put(p.Text2, line.Text2);
  put(p.DMSID, split.DMSID);
  return p;
}

ZelkResult insertFlat(const ZELK_BUCHUNG &p, const char *date, const char *valueDate, int32_t flag) {
  return ZELK_BuchungEinfuegenDirekt(flag, p.Mandantennummer, p.Stapelnummer, date, p.Belegnummer, p.Text, p.Sollkonto,
                                     p.Sollart, p.Habenkonto, p.Habenart, p.Bruttobetrag, p.Steuersatz, p.Steuerbetrag,
                                     p.UStDirekt, p.Kostenschablone, p.Zahlungsziel, p.Eroeffnungsbuchung,
                                     p.Abschlussbuchung, p.OPBelegnummer, valueDate, p.Waehrung, p.Umbuchung, p.ESR,
                                     p.Text2, p.DMSID);
}

ZelkResult insertWhole(const Draft &draft, int32_t flag) {
  ZELK_SPLITBUCHUNG posting = toRecord(draft);
  return ZELK_SplitBuchungEinfuegen(&posting, flag);
}

ZelkResult insertInPieces(const Draft &draft, int32_t flag) {
  ZelkResult added =
      ZELK_SplitStart(draft.client, draft.batch, draft.date.c_str(), draft.number.c_str(), draft.direct, draft.term,
                      draft.openItem.c_str(), draft.valueDate.c_str(), draft.currency.c_str(), draft.transfer,
                      draft.slip.c_str(), draft.document.c_str());
  for (const DraftLine &line : draft.lines) {
    if (added == ZELK_OK) added = addLine(draft, line);
    if (line.movement) ZELK_SetAnbuBewegungsart(line.movement);
    if (line.document) ZELK_SetDmsID(line.document);
    for (const DraftCost &cost : line.costs)
      if (added == ZELK_OK) added = addCost(cost);
  }
  ZelkResult result = ZELK_SplitEnde(added == ZELK_OK, flag);
  return added == ZELK_OK ? result : added;
}

std::vector<StoredPosting> storedPostings(Store &store, int32_t client, int32_t batch) {
  std::vector<StoredPosting> all;
  uint8_t found = 0;
  EXPECT_TRUE(store.SetzeFista(uint16_t(client), found) && found);
  for (int32_t number = 0;; ++number) {
    StoredPosting stored;
    EXPECT_TRUE(store.ReadBat(stored.posting, batch, number, found));
    if (!found) return all;
    number = stored.posting.Nr;
    for (size_t i = 0; i < store.lineCount(); ++i)
      stored.lines.push_back(*store.PSplit(i));
    for (size_t i = 0; i < store.costCount(); ++i)
      stored.costs.push_back(*store.costAt(i));
    all.push_back(std::move(stored));
  }
}

std::string plain(const char *money) {
  std::string text(money);
  size_t separator = text.find_first_of(",-");
  if (separator == std::string::npos) return text;
  bool negative = text[separator] == '-';
  text[separator] = ',';
  text.erase(0, std::min(text.find_first_not_of('0'), separator - 1));
  return (negative ? "-" : "") + text;
}

std::string taxOf(const SPLIT &line) {
  return plain(line.Netto) + '+' + plain(line.Steuerbetrag) + ' ' + plain(line.Steuersatz) + "% " +
         std::to_string(line.Steuerschluessel) + '/' + std::to_string(line.Steuerseite);
}

std::string conversionOf(const StoredPosting &stored, size_t at) {
  const SPLIT &line = stored.lines.at(at);
  std::string own = plain(line.Brutto) + '-' + plain(line.Steuerbetrag);
  if (!*stored.posting.Kurs && !*line.BruttoFW) return own;
  return own + " = " + plain(line.BruttoFW) + '-' + plain(line.SteuerFW) + " at " + stored.posting.Kurs + '/' +
         std::to_string(stored.posting.Einheiten);
}

std::string costsOf(const StoredPosting &stored, size_t line) {
  std::string all;
  for (const KOBU &cost : stored.costs) {
    if (cost.Split != int32_t(line)) continue;
    std::string centres;
    for (const char *centre : {cost.Kostenstelle1, cost.Kostenstelle2, cost.Kostenstelle3, cost.Kostenstelle4,
                               cost.Kostenstelle5, cost.Kostenstelle6})
      centres += '.' + std::string(vlba98::trimmed(centre));
    centres.erase(centres.find_last_not_of('.') + 1);
    all += (all.empty() ? "" : " ") + centres.substr(1) + ':' + plain(cost.Betrag) + '/' + plain(cost.Prozent) + '%';
  }
  return all;
}

std::string PostingBooks::dumpAll() {
  std::string all;
  for (uint16_t client : {1, 2})
    all += dump(*other_, client, {kStapel, kBatchbuchung, kSplit, kKobu, kSachkonto, kDebitor, kKreditor, kKurse});
  return all;
}

std::string PostingBooks::insert(const Draft &draft, Way way) {
  std::string before = dumpAll();
  // Whoever looks at a message box keeps nobody from posting.
  if (!recorder.whileShown)
    recorder.whileShown = [&] { EXPECT_TRUE(nothingLocked(*other_, draft.client == 2 ? 2 : 1)); };
  ZelkResult result = way == Way::Whole ? insertWhole(draft) : insertInPieces(draft);
  recorder.whileShown = nullptr;
  std::string outcome = std::to_string(result), message = recorder.takeText();
  if (!message.empty()) outcome += ' ' + message;
  EXPECT_EQ(dumpAll() == before, result != ZELK_OK) << outcome;
  EXPECT_TRUE(nothingLocked(*other_, draft.client == 2 ? 2 : 1)) << outcome;
  return outcome;
}

StoredPosting PostingBooks::last(const Draft &draft) {
  auto all = storedPostings(*other_, draft.client, draft.batch);
  return all.empty() ? StoredPosting{} : all.back();
}

void PostingBooks::change(uint16_t client, FileNumber file, const SCHLUESSEL &key,
                          const std::function<void(DATENBANK &)> &edit) {
  uint8_t found = 0;
  DATENBANK record{};
  ASSERT_TRUE(other_->SetzeFista(client, found) && found);
  ASSERT_TRUE(other_->UsedGet(record, key, found, file) && found);
  edit(record);
  ASSERT_TRUE(other_->Update(record, file));
}

void PostingBooks::setting(const char *section, const char *key, const char *value) {
  ASSERT_TRUE(MFWritePrivateProfileString(section, key, value, nullptr));
  ZELK_Detach();
}

} // namespace test
