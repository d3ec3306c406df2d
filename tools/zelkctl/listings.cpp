// Verbs that show what is in the books.
#include <cstdio>
#include <cstring>

#include "vlba98/date.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

std::string amount(const char *internalForm) {
  char display[vlba98::moneyDisplaySize];
  return vlba98::MakeGeld(display, internalForm, 1) ? display : shown(internalForm);
}

std::string date(const char *external) {
  auto parsed = vlba98::parseDate(external);
  return parsed ? vlba98::toDisplay(*parsed).data() : "";
}

struct AccountList {
  const char *name;
  int32_t kind;
};
constexpr AccountList kAccountLists[] = {{"sachkonten", ZELK_SACHKONTO},
                                         {"kreditoren", ZELK_KREDITOR},
                                         {"debitoren", ZELK_DEBITOR},
                                         {"kostenstellen", ZELK_KOSTENSTELLE}};

int32_t kindOf(const std::string &listName) {
  for (const AccountList &list : kAccountLists)
    if (listName == list.name) return list.kind;
  return 0;
}

const char *yesOrEmpty(int32_t flag) {
  return flag ? "ja" : "";
}

// Fetches the account under the cursor as a row of the table of its kind.
ZelkResult nextAccount(int32_t kind, std::vector<std::string> &row) {
  ZelkResult result;
  if (kind == ZELK_SACHKONTO) {
    ZELK_SAKO account;
    if ((result = ZELK_HoleSako(&account)) > 0)
      row = {shown(account.Kontonummer), shown(account.Kuerzel), shown(account.Name), account.GuV ? "GuV" : "Bilanz",
             account.Steuerschluessel ? std::to_string(account.Steuerschluessel) : ""};
  } else if (kind == ZELK_KOSTENSTELLE) {
    ZELK_KOST centre;
    if ((result = ZELK_HoleKost(&centre)) > 0)
      row = {shown(centre.Kontonummer),        shown(centre.Kuerzel),    shown(centre.Name),
             std::to_string(centre.Dimension), date(centre.LaufzeitVon), date(centre.LaufzeitBis)};
  } else {
    ZELK_PEKO account;
    if ((result = ZELK_HolePeko(&account)) > 0)
      row = {shown(account.Kontonummer), shown(account.Kuerzel), shown(account.Name),
             shown(account.PLZ),         shown(account.Ort),     shown(account.Land)};
  }
  return result;
}

constexpr size_t kLineWidth = 120;

/// What a posting has besides its head.
struct PostingDetails {
  std::vector<ZELK_BATCHZEILE> lines;
  std::vector<ZELK_BATCHKOBU> costs; ///< in the order of their lines
};

template <class Record> ZelkResult readAll(ZelkResult(ZELK_CALL *next)(Record *), std::vector<Record> &records) {
  ZelkResult result;
  do {
    Record record;
    result = next(&record);
    if (result > 0) records.push_back(record);
  } while (result == ZELK_OK);
  return result;
}

ZelkResult readDetails(PostingDetails &details) {
  ZelkResult result = readAll(&ZELK_HoleBatchZeile, details.lines);
  return result < 0 ? result : readAll(&ZELK_HoleBatchKobu, details.costs);
}

std::string shortDate(const char *external) {
  std::string text = date(external);
  return text.empty() ? text : text.erase(6, 2); // the century
}

// A rate as people say it: "19", "8,1".
std::string shortRate(const char *rate) {
  std::string text = shown(rate);
  if (vlba98::parseMoney(rate).value_or(0) == 0) return "";
  text.erase(0, text.front() == '0' ? 1 : 0);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == ',') text.pop_back();
  return text;
}

std::string amountUnlessZero(const char *internalForm) {
  return vlba98::parseMoney(internalForm).value_or(0) ? amount(internalForm) : "";
}

std::string describe(const ZELK_BATCHKOBU &cost) {
  struct Centre {
    const char *label, *number;
  };
  const Centre centres[] = {{"KSt ", cost.Kostenstelle1},  {"KTr ", cost.Kostenstelle2},
                            {"KSt3 ", cost.Kostenstelle3}, {"KSt4 ", cost.Kostenstelle4},
                            {"KSt5 ", cost.Kostenstelle5}, {"KSt6 ", cost.Kostenstelle6}};
  std::string text;
  for (const Centre &centre : centres)
    if (*centre.number) text += centre.label + shown(centre.number) + " ";
  if (std::string share = amount(cost.Prozent); share != "100,00") text += share + " % ";
  if (cost.Kostenkennung) text += cost.Kostenkennung == 1 ? "fix " : "var. ";
  if (*cost.Menge) text += amount(cost.Menge) + " " + shown(cost.Einheit) + " ";
  if (*cost.Bemerkung) text += shown(cost.Bemerkung);
  return text;
}

// Its lines, each with the amounts of a foreign currency and with its cost postings below it. A cost posting's amount
// stands below the net amount, of which it is a part.
void addPosting(TextTable &table, const ZELK_SPLITBUCHUNG &posting, const PostingDetails &details) {
  auto cost = details.costs.begin();
  for (size_t i = 0; i < details.lines.size(); ++i) {
    const ZELK_BATCHZEILE &stored = details.lines[i];
    const ZELK_TEILBUCHUNG &line = stored.Teilbuchung;
    bool converted = std::strcmp(line.Bruttobetrag, stored.Brutto) != 0;
    table.add({i ? "" : shortDate(posting.Belegdatum), i ? "" : shown(posting.Belegnummer), shown(line.Sollkonto),
               shown(line.Habenkonto), amount(stored.Brutto), converted ? "" : shown(posting.Waehrung),
               shortRate(line.Steuersatz), amountUnlessZero(stored.Steuer), amount(stored.Netto),
               shortDate(stored.Faelligkeit), shown(line.Text)});
    if (converted) {
      char net[vlba98::moneyWidth + 1] = "";
      vlba98::formatMoney(
          vlba98::parseMoney(line.Bruttobetrag).value_or(0) - vlba98::parseMoney(line.Steuerbetrag).value_or(0), net);
      table.add({"", "", "", "", amount(line.Bruttobetrag), shown(posting.Waehrung), "",
                 amountUnlessZero(line.Steuerbetrag), amount(net), "", ""});
    }
    for (; cost != details.costs.end() && size_t(cost->Teilbuchung) == i; ++cost)
      table.add({"", "", "", "", "", "", "", "", amount(cost->Betrag), "", describe(*cost)});
  }
}

std::vector<TextTable::Column> accountColumns(int32_t kind) {
  if (kind == ZELK_SACHKONTO) return {{"Konto"}, {"Kürzel"}, {"Name"}, {"Art"}, {"Steuerschlüssel", true}};
  if (kind == ZELK_KOSTENSTELLE) return {{"Nr"}, {"Kürzel"}, {"Name"}, {"Dimension", true}, {"von"}, {"bis"}};
  return {{"Konto"}, {"Kürzel"}, {"Name"}, {"PLZ"}, {"Ort"}, {"Land"}};
}

} // namespace

int complainOfCharacters(const char *option, const std::string &value) {
  complain(std::string(option) + " " + value + ": enthält Zeichen, die es in den Büchern nicht gibt.");
  return kFailed;
}

int complainOf(const std::string &tried, int32_t result) {
  char name[50] = "", text[250] = "";
  ZELK_HoleFehlertext(result, name, text);
  complain(tried + ": " + std::to_string(result) + " " + shown(name) + ". " + shown(text));
  return kFailed;
}

int showResultText(int32_t code) {
  char name[50], text[250];
  ZelkResult result = ZELK_HoleFehlertext(code, name, text);
  if (result != ZELK_OK) return complainOf("fehlertext " + std::to_string(code), result);
  std::printf("%d  %s\n%s\n", int(code), shown(name).c_str(), shown(text).c_str());
  return kDone;
}

int listClients() {
  TextTable table({{"Nr", true}, {"Name"}, {"Zusatz"}, {"Land"}, {"Währung"}, {"Jahr", true}});
  ZelkResult result = ZELK_InitHoleMandant();
  if (result == ZELKERR_keine_Mandanten) {
    std::puts("Es gibt keine Mandanten.");
    return kDone;
  }
  while (result == ZELK_OK) {
    uint32_t number;
    char name[41], addition[41];
    ZELK_MANDANTENINFO info{};
    result = ZELK_HoleMandant(&number, name, addition);
    if (result < 0) break;
    ZelkResult read = ZELK_HoleMandantenInfo(int32_t(number), &info, 0);
    if (read != ZELK_OK) complainOf("Mandant " + std::to_string(number), read);
    table.add({std::to_string(number), shown(name), shown(addition), shown(info.Land), shown(info.Waehrung),
               info.AktuellesJahr ? std::to_string(info.AktuellesJahr) : ""});
  }
  if (result < 0) return complainOf("mandanten", result);
  table.print();
  return kDone;
}

int listAccounts(int32_t client, const std::string &kind, int32_t order, const std::string &from) {
  int32_t number = kindOf(kind);
  auto start = vlba98::toWindows1252(from);
  if (!start) return complainOfCharacters("--ab", from);
  ZelkResult result = ZELK_InitHoleKonto(client, number, order, start->c_str(), 0);
  if (result == ZELK_keinKonto) {
    std::puts("Es gibt keine Konten.");
    return kDone;
  }
  TextTable table(accountColumns(number));
  while (result == ZELK_OK) {
    std::vector<std::string> row;
    result = nextAccount(number, row);
    if (result > 0) table.add(std::move(row));
  }
  if (result < 0) return complainOf("konten", result);
  table.print();
  return kDone;
}

int showFreeNumber(int32_t client, const std::string &kind, const std::string &from, const std::string &to) {
  auto least = vlba98::toWindows1252(from), greatest = vlba98::toWindows1252(to);
  if (!least) return complainOfCharacters("--von", from);
  if (!greatest) return complainOfCharacters("--bis", to);
  char proposal[8];
  ZelkResult result = ZELK_HoleFreieKontonr(client, kindOf(kind), least->c_str(), greatest->c_str(), proposal);
  if (result != ZELK_OK) return complainOf("frei", result);
  std::puts(shown(proposal).c_str());
  return kDone;
}

int listBatches(int32_t client) {
  ZelkResult result = ZELK_InitHoleStapel(client, 0);
  if (result == ZELKERR_keine_Mandanten) {
    std::puts("Der Mandant hat keine Stapel.");
    return kDone;
  }
  TextTable table(
      {{"Nr", true}, {"Name"}, {"Wiederkehr", true}, {"transitorisch"}, {"gesperrt"}, {"bebucht"}, {"Abstimm0"}});
  while (result == ZELK_OK) {
    int32_t number, recurrence, transitory, locked, posted, reconciliation;
    char name[41];
    result = ZELK_HoleStapel(&number, name, &recurrence, &transitory, &locked, &posted, &reconciliation);
    if (result > 0)
      table.add({std::to_string(number), shown(name), recurrence ? std::to_string(recurrence) : "",
                 yesOrEmpty(transitory), yesOrEmpty(locked), yesOrEmpty(posted), yesOrEmpty(reconciliation)});
  }
  if (result < 0) return complainOf("stapel", result);
  table.print();
  return kDone;
}

int showBatch(int32_t client, int32_t batch) {
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  if (result == ZELK_keinKonto) {
    std::puts("Der Stapel hat keine Buchungen.");
    return kDone;
  }
  TextTable table({{"Datum"},
                   {"Beleg"},
                   {"Soll"},
                   {"Haben"},
                   {"Brutto", true},
                   {"Wä."},
                   {"%", true},
                   {"Steuer", true},
                   {"Netto", true},
                   {"Fällig"},
                   {"Text"}},
                  kLineWidth);
  size_t postings = 0, lines = 0, costs = 0;
  while (result == ZELK_OK) {
    ZELK_SPLITBUCHUNG posting;
    result = ZELK_HoleBatch(&posting);
    if (result < 0) break;
    PostingDetails details;
    if (ZelkResult read = readDetails(details); read < 0) {
      result = read;
      break;
    }
    addPosting(table, posting, details);
    ++postings;
    lines += details.lines.size();
    costs += details.costs.size();
  }
  if (result < 0) return complainOf("stapel", result);
  table.print();
  std::printf("\n%s, %s, %s\n", vlba98::counted(postings, "Buchung", "Buchungen").c_str(),
              vlba98::counted(lines, "Zeile", "Zeilen").c_str(),
              vlba98::counted(costs, "Kostenbuchung", "Kostenbuchungen").c_str());
  return kDone;
}

} // namespace zelkctl
