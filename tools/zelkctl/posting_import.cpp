// buchen: postings from a CSV file into a batch, one by one.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "vlba98/text.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/posting_file.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

// How many postings the batch holds; -1 when that cannot be told.
long countPostings(int32_t client, int32_t batch) {
  ZELK_SPLITBUCHUNG posting;
  long count = 0;
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  while (result == ZELK_OK) {
    result = ZELK_HoleBatch(&posting);
    if (result > 0) ++count;
  }
  return result < 0 ? -1 : count;
}

// Refusals that the other postings would meet as well.
constexpr ZelkResult kConcernAll[] = {ZELKERR_Datenbank,   ZELKERR_Ini,           ZELKERR_Thread,
                                      ZELKERR_uzl_Mandnr,  ZELKERR_alter_Mandant, ZELKERR_neuerer_Mandant,
                                      ZELKERR_uzl_Stapelnr};

// Where a code has several meanings, the one that is meant here.
std::string meaning(ZelkResult result, const ZELK_BUCHUNG &posting, const char *text) {
  if (result == ZELKERR_uzl_Kontonr && std::strcmp(posting.Sollkonto, posting.Habenkonto) == 0)
    return "Soll- und Habenkontonummern sind gleich.";
  if (result == ZELKERR_kein_Kurs) return "Zum Belegdatum ist für die Währung kein Kurs gespeichert.";
  if (result == ZELKERR_uzl_Kostenrechnung)
    return "Die Kostenrechnung lässt dies nicht zu: Kostenart und Kostenstelle passen nicht zusammen, oder es fehlt "
           "eine "
           "Kostenstelle.";
  std::string all = shown(text);
  return all.substr(0, all.find('\n'));
}

// "Soll 1200, Haben 8400": the accounts that a refusal is about. Of a code that refuses one side only those of that
// side; of codes that refuse accounts only those that there are not, unless all are there.
std::string accountsOf(int32_t client, const FilePosting &posting, ZelkResult code) {
  struct Side {
    const char *name;
    const char *(*account)(const ZELK_BUCHUNG &);
    ZelkResult refusesTheOther;
  };
  static constexpr Side sides[] = {
      {"Soll ", [](const ZELK_BUCHUNG &line) -> const char * { return line.Sollkonto; }, ZELKERR_uzl_Habenkontonr},
      {"Haben ", [](const ZELK_BUCHUNG &line) -> const char * { return line.Habenkonto; }, ZELKERR_uzl_Sollkontonr}};
  const bool ofAccounts =
      code == ZELKERR_uzl_Kontonr || code == ZELKERR_uzl_Sollkontonr || code == ZELKERR_uzl_Habenkontonr;
  auto exists = [&](const char *account) {
    for (int32_t kind : {ZELK_SACHKONTO, ZELK_KREDITOR, ZELK_DEBITOR})
      if (ZELK_ExistiertKonto(client, account, kind, 0, nullptr) == ZELK_OK) return true;
    return false;
  };
  std::vector<std::string> all, missing;
  for (const PostingRow &row : posting.rows)
    for (const Side &side : sides) {
      const char *account = side.account(row.posting);
      if (!*account || code == side.refusesTheOther) continue;
      const std::string text = side.name + shown(account);
      if (std::find(all.begin(), all.end(), text) != all.end()) continue;
      all.push_back(text);
      if (ofAccounts && !exists(account)) missing.push_back(text);
    }
  constexpr size_t shownAtMost = 4;
  std::string text;
  for (const std::string &one : missing.empty() ? all : missing) {
    if (&one - (missing.empty() ? all : missing).data() == shownAtMost) return text + ", …";
    text += (text.empty() ? "" : ", ") + one;
  }
  return text;
}

ZelkResult addRow(const PostingRow &row) {
  const ZELK_BUCHUNG &line = row.posting;
  const CostPosting &cost = row.cost;
  ZelkResult result = ZELK_OK;
  if (row.hasLine) {
    // These numbers have 16 bits here.
    struct Number {
      int32_t value;
      ZelkResult code;
    };
    for (const Number &number : {Number{line.Sollart, ZELKERR_uzl_Sollkontonr},
                                 {line.Habenart, ZELKERR_uzl_Habenkontonr},
                                 {line.Kostenschablone, ZELKERR_uzl_Koscha}})
      if (int16_t(number.value) != number.value) return number.code;
    result = ZELK_SplitEinfuegen(line.Sollkonto, int16_t(line.Sollart), line.Habenkonto, int16_t(line.Habenart),
                                 line.Bruttobetrag, line.Steuersatz, line.Steuerbetrag, line.Text,
                                 int16_t(line.Kostenschablone), line.Text2);
  }
  if (result == ZELK_OK && row.hasCost)
    result = ZELK_SplitKobuEinfuegenEx(cost.Kostenstelle[0], cost.Kostenstelle[1], cost.Kostenkennung, cost.Betrag,
                                       cost.Menge, cost.Einheit, cost.Bemerkung, cost.Bemerkung2, cost.Kostenstelle[2],
                                       cost.Kostenstelle[3], cost.Kostenstelle[4], cost.Kostenstelle[5]);
  return result;
}

class Import {
public:
  Import(int32_t client, int32_t batch) : client_(client), batch_(batch) {}

  int run(const std::string &path) {
    PostingFile file = readPostings(path);
    if (!file.problem.empty()) {
      complain(path + ": " + file.problem);
      return kFailed;
    }
    Progress progress("Buchen", file.postings.size());
    long before = countPostings(client_, batch_);
    int stopped = 0;
    for (FilePosting &posting : file.postings) {
      progress.advance();
      if (insert(posting)) continue;
      stopped = posting.lastLine;
      break;
    }
    int code = report(file, stopped);
    // The library reports success also for a posting that it skips because its tables stayed locked by others.
    if (long after = countPostings(client_, batch_); after - before < long(inserted_)) {
      complain("Achtung: der Stapel hat nur " +
               vlba98::counted(size_t(std::max(after - before, 0L)), "Buchung", "Buchungen") +
               " mehr als zuvor. Was fehlt, wurde übersprungen, da die Tabellen gesperrt waren.");
      return kFailed;
    }
    return code;
  }

private:
  // \return false when going on makes no sense
  bool insert(FilePosting &posting) {
    if (!posting.problem.empty()) return refuse(posting, posting.problemCode, posting.problemField, posting.problem);
    for (PostingRow &row : posting.rows) {
      if (row.hasLine && row.posting.Sollart == 0) row.posting.Sollart = kindOf(row.posting.Sollkonto);
      if (row.hasLine && row.posting.Habenart == 0) row.posting.Habenart = kindOf(row.posting.Habenkonto);
    }
    ZELK_BUCHUNG &head = posting.rows.front().posting;
    head.Mandantennummer = client_;
    head.Stapelnummer = batch_;
    ZelkResult result = posting.inPieces ? insertInPieces(posting) : ZELK_BuchungEinfuegen(&head, 0);
    if (result == ZELK_OK) {
      ++inserted_;
      return true;
    }
    char name[50], text[250] = "";
    ZELK_HoleFehlertext(result, name, text);
    refuse(posting, result, columnOf(result), meaning(result, head, text));
    return std::find(std::begin(kConcernAll), std::end(kConcernAll), result) == std::end(kConcernAll);
  }

  static ZelkResult insertInPieces(const FilePosting &posting) {
    const ZELK_BUCHUNG &head = posting.rows.front().posting;
    ZelkResult result = ZELK_SplitStart(head.Mandantennummer, head.Stapelnummer, head.Belegdatum, head.Belegnummer,
                                        head.UStDirekt, head.Zahlungsziel, head.OPBelegnummer, head.Valutadatum,
                                        head.Waehrung, head.Umbuchung, head.ESR, head.DMSID);
    for (const PostingRow &row : posting.rows)
      if (result == ZELK_OK) result = addRow(row);
    ZelkResult ended = ZELK_SplitEnde(result == ZELK_OK, 0);
    return result == ZELK_OK ? ended : result;
  }

  // The file may leave the kinds out; an account that is none goes over as a general-ledger account and is refused.
  int32_t kindOf(const char *account) const {
    for (int32_t kind : {ZELK_SACHKONTO, ZELK_KREDITOR, ZELK_DEBITOR})
      if (ZELK_ExistiertKonto(client_, account, kind, 0, nullptr) == ZELK_OK) return kind;
    return ZELK_SACHKONTO;
  }

  bool refuse(const FilePosting &posting, ZelkResult code, const std::string &field, const std::string &text) {
    char name[50] = "";
    if (code != 0) ZELK_HoleFehlertext(code, name, nullptr);
    std::string lines = std::to_string(posting.firstLine);
    if (posting.lastLine != posting.firstLine) lines += "-" + std::to_string(posting.lastLine);
    const std::string document = posting.rows.empty() ? "" : shown(posting.rows.front().posting.Belegnummer);
    refused_.add({lines, code ? std::to_string(code) : "", shown(name), document, accountsOf(client_, posting, code),
                  field, text});
    return true;
  }

  int report(const PostingFile &file, int stopped) const {
    if (refused_.rows() > 0) {
      refused_.print();
      std::puts("");
    }
    std::printf("Stapel %d: %s gelesen, %s: %zu gebucht, %zu abgelehnt.\n", int(batch_),
                vlba98::counted(file.rows, "Zeile", "Zeilen").c_str(),
                vlba98::counted(file.postings.size(), "Buchung", "Buchungen").c_str(), inserted_, refused_.rows());
    if (stopped > 0) {
      complain("Abgebrochen in Zeile " + std::to_string(stopped) + ": die Zeilen dahinter wurden nicht gebucht.");
      return kFailed;
    }
    return refused_.rows() > 0 ? kRefused : kDone;
  }

  int32_t client_, batch_;
  size_t inserted_ = 0;
  TextTable refused_{{{"Zeile", true}, {"Code", true}, {"Name"}, {"Beleg"}, {"Konten"}, {"Feld"}, {"Grund"}}};
};

} // namespace

int importPostings(int32_t client, int32_t batch, const std::string &file) {
  return Import(client, batch).run(file);
}

} // namespace zelkctl
