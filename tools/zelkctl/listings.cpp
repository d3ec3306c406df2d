// Verbs that show what is in the books.
#include <cstdio>

#include "vlba98/datum.h"
#include "vlba98/encoding.h"
#include "vlba98/geld.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

std::string amount(const char *internalForm) {
  char display[vlba98::geldDisplaySize];
  return vlba98::MakeGeld(display, internalForm, 1) ? display : shown(internalForm);
}

std::string date(const char *external) {
  auto parsed = vlba98::parseDatum(external);
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

std::vector<TextTable::Column> accountColumns(int32_t kind) {
  if (kind == ZELK_SACHKONTO) return {{"Konto"}, {"Kürzel"}, {"Name"}, {"Art"}, {"Steuerschlüssel", true}};
  if (kind == ZELK_KOSTENSTELLE) return {{"Nr"}, {"Kürzel"}, {"Name"}, {"Dimension", true}, {"von"}, {"bis"}};
  return {{"Konto"}, {"Kürzel"}, {"Name"}, {"PLZ"}, {"Ort"}, {"Land"}};
}

} // namespace

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
  int32_t number = 0;
  for (const AccountList &list : kAccountLists)
    if (kind == list.name) number = list.kind;
  std::string start = vlba98::toWindows1252(from).value_or("");
  ZelkResult result = ZELK_InitHoleKonto(client, number, order, start.c_str(), 0);
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

int listBatches(int32_t client) {
  ZelkResult result = ZELK_InitHoleStapel(client, 0);
  if (result == ZELKERR_keine_Mandanten) {
    std::puts("Der Mandant hat keine Stapel.");
    return kDone;
  }
  TextTable table({{"Nr", true}, {"Name"}, {"Wiederkehr", true}, {"transitorisch"}, {"gesperrt"}, {"bebucht"}});
  while (result == ZELK_OK) {
    int32_t number, recurrence, transitory, locked, posted;
    char name[41];
    result = ZELK_HoleStapel(&number, name, &recurrence, &transitory, &locked, &posted, nullptr);
    if (result > 0)
      table.add({std::to_string(number), shown(name), recurrence ? std::to_string(recurrence) : "",
                 yesOrEmpty(transitory), yesOrEmpty(locked), yesOrEmpty(posted)});
  }
  if (result < 0) return complainOf("stapel", result);
  table.print();
  return kDone;
}

int showBatch(int32_t client, int32_t batch) {
  TextTable table({{"Datum"}, {"Beleg"}, {"Soll"}, {"Haben"}, {"Betrag", true}, {"Text"}});
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  if (result == ZELK_keinKonto) {
    std::puts("Der Stapel hat keine Buchungen.");
    return kDone;
  }
  while (result == ZELK_OK) {
    ZELK_SPLITBUCHUNG posting;
    result = ZELK_HoleBatch(&posting);
    if (result < 0) break;
    for (int i = 0; i < posting.Teilbuchungsanzahl && i < 10; ++i) {
      const ZELK_TEILBUCHUNG &line = posting.Teilbuchung[i];
      table.add({i ? "" : date(posting.Belegdatum), i ? "" : shown(posting.Belegnummer), shown(line.Sollkonto),
                 shown(line.Habenkonto), amount(line.Bruttobetrag), shown(line.Text)});
    }
  }
  if (result < 0) return complainOf("stapel", result);
  table.print();
  std::printf("\n%zu Zeilen\n", table.rows());
  return kDone;
}

} // namespace zelkctl
