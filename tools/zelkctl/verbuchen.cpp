// verbuchen: a batch posted to the ledger, all or nothing.
#include <cstdio>
#include <cstring>
#include <optional>

#include "ledger/batch_run.h"
#include "platform/system.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "zelkctl/amounts.h"
#include "zelkctl/console.h"
#include "zelkctl/provision.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

std::optional<vlba98::Date> dayOf(const std::string &text) {
  if (!text.empty()) return vlba98::parseDate(text);
  const platform::LocalTime now = platform::localTime();
  return vlba98::Date{now.year, now.month, now.day};
}

int report(const ledger::BatchOrder &order, const ledger::BatchOutcome &outcome) {
  const std::string batch = "Stapel " + std::to_string(order.batch);
  switch (outcome.state) {
  case ledger::BatchOutcome::StoreFailed:
    complain("Fehler beim Zugriff auf die Datenbank. Es wurde nichts verbucht.");
    return kFailed;
  case ledger::BatchOutcome::TablesLocked:
    complain("Die Tabellen des Mandanten sind gesperrt. Es wurde nichts verbucht.");
    return kFailed;
  case ledger::BatchOutcome::NothingToPost:
    std::printf("%s hat keine Buchungen. Es gibt nichts zu verbuchen.\n", batch.c_str());
    return kDone;
  case ledger::BatchOutcome::Refused: {
    TextTable refused({{"Buchung", true}, {"Beleg"}, {"Grund"}});
    for (const ledger::RefusedPosting &one : outcome.refused)
      refused.add({one.posting ? std::to_string(one.posting) : "", one.document, one.reason});
    refused.print();
    std::printf("\n");
    complain(batch + ": es wurde nichts verbucht.");
    return kRefused;
  }
  case ledger::BatchOutcome::Posted:
    break;
  }
  TextTable years({{"Geschäftsjahr"},
                   {"Buchungen", true},
                   {"Belegzeilen", true},
                   {"Kostenbuchungen", true},
                   {"Soll", true},
                   {"Haben", true}});
  size_t postings = 0;
  for (const auto &[year, figures] : outcome.years) {
    years.add({std::to_string(year), std::to_string(figures.postings), std::to_string(figures.entries),
               std::to_string(figures.costs), grouped(figures.debit), grouped(figures.credit)});
    postings += figures.postings;
  }
  years.print();
  std::printf("\nOffene Posten: %zu angelegt, %zu erhöht, %s, %zu ausgeglichen.\n", outcome.items.created,
              outcome.items.raised, vlba98::counted(outcome.items.payments, "Zahlung", "Zahlungen").c_str(),
              outcome.items.settled);
  std::printf("%s: %s verbucht, der Stapel ist geleert.\n", batch.c_str(),
              vlba98::counted(postings, "Buchung", "Buchungen").c_str());
  return kDone;
}

} // namespace

int postToLedger(int32_t client, int32_t batch, const std::string &day, int32_t user) {
  const auto date = dayOf(day);
  if (!date) {
    complain("--tag " + day + ": erwartet wird ein Datum wie 31.01.2026.");
    return kFailed;
  }
  auto store = openBooks();
  if (!store) return kFailed;
  ledger::BatchOrder order;
  order.client = client;
  order.batch = batch;
  order.user = user;
  std::memcpy(order.day, vlba98::toReversed(*date).data(), sizeof order.day);
  std::optional<Progress> progress;
  order.progress = [&](size_t done, size_t total) {
    if (done == 0)
      progress.emplace("Verbuchen", total);
    else
      progress->advance();
  };
  const ledger::BatchOutcome outcome = ledger::postBatch(*store, order);
  progress.reset();
  return report(order, outcome);
}

} // namespace zelkctl
