// Verbs that create, change, empty and delete batches.
#include <cstdio>

#include "vlba98/encoding.h"
#include "vlba98/text.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

constexpr int32_t kCreate = 1, kChange = 2;

struct Batch {
  int32_t number = 0;
  char name[41] = "";
  int32_t recurrence = 0, transitory = 0, reconciliation = 0;
};

/// Looks a batch of the list up. \return 1; 0 when there is none; below 0: why the list cannot be had
template <class Matches> ZelkResult findBatch(int32_t client, Batch &batch, Matches matches) {
  ZelkResult result = ZELK_InitHoleStapel(client, 0);
  if (result == ZELKERR_keine_Stapel) return 0;
  while (result == ZELK_OK) {
    int32_t locked, posted;
    result = ZELK_HoleStapel(&batch.number, batch.name, &batch.recurrence, &batch.transitory, &locked, &posted,
                             &batch.reconciliation);
    if (result > 0 && matches(batch)) {
      ZELK_BeendeHolen();
      return 1;
    }
  }
  return result < 0 ? result : 0;
}

ZelkResult write(int32_t action, int32_t client, const Batch &batch, const std::string &name) {
  return ZELK_Stapel(action, client, batch.number, name.c_str(), batch.recurrence, batch.transitory,
                     batch.reconciliation, 0);
}

// \return false, said so, when the name cannot be stored
bool apply(const BatchValues &values, Batch &batch, std::string &name) {
  name = batch.name;
  if (values.name) {
    auto ansi = vlba98::toWindows1252(*values.name);
    if (!ansi) complainOfCharacters("NAME", *values.name);
    if (!ansi) return false;
    name = *ansi;
  }
  batch.recurrence = values.recurrence.value_or(batch.recurrence);
  batch.transitory = values.transitory.value_or(batch.transitory);
  batch.reconciliation = values.reconciliation.value_or(batch.reconciliation);
  return true;
}

} // namespace

int createBatch(int32_t client, int32_t number, const BatchValues &values) {
  Batch batch;
  std::string name;
  batch.number = number;
  if (!apply(values, batch, name)) return kFailed;
  if (ZelkResult result = write(kCreate, client, batch, name); result != ZELK_OK)
    return complainOf("stapel anlegen", result);
  // Names are unique, and stored without the white space around them.
  vlba98::KillWhiteSpaces(name.data());
  ZelkResult found =
      findBatch(client, batch, [&](const Batch &listed) { return name.c_str() == std::string(listed.name); });
  if (found != 1) return complainOf("stapel anlegen", found);
  std::printf("Stapel %d angelegt.\n", int(batch.number));
  return kDone;
}

int changeBatch(int32_t client, int32_t number, const BatchValues &values) {
  Batch batch;
  std::string name;
  ZelkResult found = findBatch(client, batch, [&](const Batch &listed) { return listed.number == number; });
  if (found < 1) return complainOf("stapel aendern", found < 0 ? found : ZELKERR_uzl_Stapelnr);
  if (!apply(values, batch, name)) return kFailed;
  if (ZelkResult result = write(kChange, client, batch, name); result != ZELK_OK)
    return complainOf("stapel aendern", result);
  std::printf("Stapel %d geändert.\n", int(number));
  return kDone;
}

int deleteBatch(int32_t client, int32_t number, bool withBatch) {
  ZelkResult result = ZELK_LoescheStapel(client, number, withBatch, 0);
  Batch batch;
  // The code's own text asks for the batch's existence only.
  if (result == ZELKERR_uzl_Stapelnr &&
      findBatch(client, batch, [&](const Batch &listed) { return listed.number == number; }) > 0) {
    complain(
        "Stapel " + std::to_string(number) +
        " ist geschützt. Gelöscht und geleert werden nur Stapel, die über die Schnittstelle angelegt wurden, nicht "
        "gecleart sind und kein Passwort haben.");
    return kRefused;
  }
  if (result != ZELK_OK) return complainOf(withBatch ? "stapel loeschen" : "stapel leeren", result);
  std::printf("Stapel %d %s.\n", int(number), withBatch ? "gelöscht" : "geleert");
  return kDone;
}

} // namespace zelkctl
