#include "ledger/ledger_books.h"

#include <sstream>

#include "vlba98/date.h"
#include "vlba98/text.h"

namespace test {

using namespace vldb98;

ledger::BatchOutcome LedgerBooks::post(int32_t client, int32_t batch, int32_t user) {
  ledger::BatchOrder order;
  order.client = client;
  order.batch = batch;
  order.user = user;
  put(order.day, "461121");
  return ledger::postBatch(*store_, order);
}

void LedgerBooks::openYear(uint16_t client, int year) {
  uint8_t found = 0;
  char code[3];
  ASSERT_TRUE(store_->SetzeFista(client, found) && found && vlba98::itotwo(year - vlba98::firstYear, code) &&
              store_->SetzeOpenJahr(code));
}

std::vector<std::string> LedgerBooks::journal(uint16_t client, int year) {
  openYear(client, year);
  std::map<int32_t, std::string> entries;
  eachRow(*store_, kBuchungsbeleg, [&](const DATENBANK &record) {
    const BUCHUNGSBELEG row = record.Buchungsbeleg;
    std::string &entry = entries[row.Nr];
    const bool debit = plain(row.Haben) == "0,00";
    entry += (entry.empty() ? "" : "; ") + std::to_string(row.Kontotabelle) + ':' +
             std::string(vlba98::trimmed(row.Konto)) + (debit ? " S " : " H ") + plain(debit ? row.Soll : row.Haben);
    if (*row.BetragFW) entry += '=' + plain(row.BetragFW) + row.Waehrung;
    if (row.Steuerschluessel) entry += ' ' + std::to_string(row.Steuerschluessel) + '/' + plain(row.Steuersatz);
    if (row.Art) entry += row.Art == 1 ? " (opening)" : " (closing)";
  });
  std::vector<std::string> all;
  for (auto &[number, entry] : entries)
    all.push_back(entry);
  return all;
}

std::string LedgerBooks::itemsOf(uint16_t client, const std::string &number) {
  std::string all;
  auto left = [](const OPBELEG &item) {
    std::string text = "left " + plain(item.Ausstand);
    return *item.BetragFW ? text + " (" + plain(item.Ausstand2) + ' ' + item.Waehrung + ')' : text;
  };
  auto add = [&](const std::string &text) { all += (all.empty() ? "" : "; ") + text; };
  for (int year : {2025, 2026}) {
    openYear(client, year);
    for (int table : {int(kHistOPKreditor), int(kHistOPDebitor)})
      eachRow(*store_, table, [&](const DATENBANK &record) {
        const OPHISTORIE payment = record.Ophistorie;
        if (number != payment.OP.OPBelegnummer) return;
        std::string discount = *payment.Skontobetrag ? " less " + plain(payment.Skontobetrag) : "";
        add(std::to_string(year) + '/' + std::to_string(payment.Zeile) + ": paid " + plain(payment.Zahlung) + discount +
            ' ' + left(payment.OP));
      });
  }
  for (int table : {int(kOPKreditor), int(kOPDebitor)})
    eachRow(*store_, table, [&](const DATENBANK &record) {
      if (number == record.Opbeleg.OPBelegnummer) add(plain(record.Opbeleg.Brutto) + ' ' + left(record.Opbeleg));
    });
  return all;
}

std::string LedgerBooks::dumpClient(uint16_t client) {
  std::ostringstream text;
  for (int year : {2025, 2026}) {
    openYear(client, year);
    for (const Table &table : allTables())
      if (table.scope != Scope::Global)
        eachRow(*store_, table.number, [&](const DATENBANK &record) {
          text << year << table.name << ':' << std::string(record.bytes, table.recordSize) << '\n';
        });
  }
  return text.str();
}

} // namespace test
