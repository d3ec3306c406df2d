// kopieren: a client from one database into another.
#include <cstdio>
#include <limits>

#include "store/typed.h"
#include "vlba98/text.h"
#include "zelkctl/console.h"
#include "zelkctl/copy.h"
#include "zelkctl/provision.h"
#include "zelkctl/verbs.h"

using namespace vldb98;

namespace zelkctl {
namespace {

std::string hexadecimal(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%08lx%08lx", static_cast<unsigned long>(value >> 32),
                static_cast<unsigned long>(value & 0xFFFFFFFFu));
  return text;
}

int failed(CopyOutcome outcome, int32_t client, bool toServer) {
  const std::string number = std::to_string(client), nothing = " Es wurde nichts kopiert.";
  const std::string there = toServer ? "auf dem Server" : "in der Datei",
                    here = toServer ? "in der Datei" : "auf dem Server";
  switch (outcome) {
  case CopyOutcome::NoSuchClient:
    complain("Den Mandanten " + number + " gibt es " + here + " nicht.");
    return kRefused;
  case CopyOutcome::ClientIsThere:
    complain("Den Mandanten " + number + " gibt es " + there + " bereits." + nothing);
    return kRefused;
  case CopyOutcome::Different:
    complain("Die Prüfsummen stimmen nicht überein." + nothing);
    return kFailed;
  case CopyOutcome::SourceFailed:
    complain("Der Mandant kann " + here + " nicht gelesen werden." + nothing);
    return kFailed;
  default:
    complain("Der Mandant kann " + there + " nicht geschrieben werden." + nothing);
    return kFailed;
  }
}

// With a bar that shows how far it has come.
CopyOutcome copy(Store &from, Store &to, uint16_t client, std::vector<TableContent> &copied) try {
  uint64_t rows = 0;
  for (const TableContent &table : content(from, client))
    rows += table.rows;
  Progress progress("Kopieren", size_t(rows));
  return Kopiere(from, to, client, copied, [&] { progress.advance(); });
} catch (const StoreFailed &) {
  return CopyOutcome::SourceFailed;
}

} // namespace

int copyClient(int32_t client, const std::string &target, bool remove) {
  const bool toServer = target == "server";
  auto from = openEnd(!toServer, false);
  auto to = from ? openEnd(toServer, true) : nullptr;
  if (!from || !to) return kFailed;
  if (client < 1 || client > std::numeric_limits<uint16_t>::max())
    return failed(CopyOutcome::NoSuchClient, client, toServer);
  std::vector<TableContent> copied;
  const CopyOutcome outcome = copy(*from, *to, uint16_t(client), copied);
  if (outcome != CopyOutcome::Done) return failed(outcome, client, toServer);

  TextTable table({{"Tabelle"}, {"Zeilen", true}, {"Prüfsumme"}});
  uint64_t rows = 0;
  for (const TableContent &one : copied) {
    table.add({one.table->name, std::to_string(one.rows), hexadecimal(one.checksum)});
    rows += one.rows;
  }
  table.print();
  std::printf("\nMandant %d: %s kopiert und verglichen.\n", int(client),
              vlba98::counted(size_t(rows), "Zeile", "Zeilen").c_str());
  if (!remove) return kDone;
  try {
    if (removeCopied(*from, uint16_t(client), copied)) {
      std::printf("Mandant %d ist %s gelöscht.\n", int(client), toServer ? "in der Datei" : "auf dem Server");
      return kDone;
    }
    complain("Der Mandant ist kopiert, aber nicht gelöscht: er wurde inzwischen geändert.");
  } catch (const StoreFailed &) {
    complain("Der Mandant ist kopiert, aber nicht gelöscht: die Datenbank lässt es nicht zu.");
  }
  return kFailed;
}

} // namespace zelkctl
