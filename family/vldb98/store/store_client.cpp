// The open client and its fiscal years.
#include "store/store.h"

#include <cstring>

#include "vlba98/date.h"
#include "vlba98/text.h"

namespace vldb98 {

int Store::openCalendarYear() const {
  return vlba98::yearOfCode(openYear_);
}

void Store::applyScope() {
  engine_->setScope(client_.Nummer, openCalendarYear());
}

int Store::SetzeFista(uint16_t client, uint8_t &found) {
  const auto version = engine_->stateVersion();
  found = client == client_.Nummer && version && version == clientVersion_;
  if (!found) {
    DATENBANK record{};
    if (!UsedGet(record, KeyBuilder().number(client), found, kFirmenstamm)) return 0;
    if (!found) return 1;
    if (client != client_.Nummer) {
      // The posting in memory is the former client's.
      SplitFree();
      posting_ = {};
    }
    client_ = record.Firmenstamm;
    clientVersion_ = version;
  }
  std::memcpy(openYear_, client_.AktJahr, sizeof openYear_);
  applyScope();
  return 1;
}

int Store::SaveFista(const FIRMENSTAMM &client) {
  DATENBANK record{};
  uint8_t found;
  if (!UsedGet(record, KeyBuilder().number(client.Nummer), found, kFirmenstamm)) return 0;
  record.Firmenstamm = client;
  int done = found ? Update(record, kFirmenstamm) : Insert(record, kFirmenstamm);
  if (done && client.Nummer == client_.Nummer) {
    client_ = client;
    clientVersion_.reset();
  }
  return done;
}

int Store::GetExtFista(FISTA_EXT &extension, uint8_t &found) {
  DATENBANK record{};
  int done = UsedGet(record, KeyBuilder().number(client_.Nummer), found, kFistaExt);
  if (done && found) extension = record.FistaExt;
  return done;
}

int Store::SetExtFista(const FISTA_EXT &extension) {
  if (client_.Nummer == 0) return 0;
  DATENBANK record{};
  uint8_t found;
  if (!UsedGet(record, KeyBuilder().number(client_.Nummer), found, kFistaExt)) return 0;
  record.FistaExt = extension;
  record.FistaExt.Nummer = client_.Nummer;
  return found ? Update(record, kFistaExt) : Insert(record, kFistaExt);
}

int Store::SetzeOpenJahr(const char *yearCode) {
  uint8_t exists;
  if (!ExistiertJahr(yearCode, exists) || !exists) return 0;
  vlba98::strncpy2(openYear_, yearCode);
  applyScope();
  return 1;
}

int Store::SetzeBuchJahr(const char *yearCode) {
  uint8_t exists;
  if (!ExistiertJahr(yearCode, exists) || !exists) return 0;
  FIRMENSTAMM changed = client_;
  vlba98::strncpy2(changed.AktJahr, yearCode);
  return SaveFista(changed);
}

int Store::ExistiertJahr(const char *yearCode, uint8_t &exists) {
  return Used(KeyBuilder().number(int16_t(vlba98::yearOfCode(yearCode))), exists, kGeschaeftsjahr);
}

int Store::IsBuchjahr(const char *yearCode, uint8_t &bookable) {
  DATENBANK record{};
  int done = UsedGet(record, KeyBuilder().number(int16_t(vlba98::yearOfCode(yearCode))), bookable, kGeschaeftsjahr);
  if (bookable) bookable = !record.Geschaeftsjahr.Abgeschlossen;
  return done;
}

int Store::HoleMinJahr(char (&yearCode)[3]) {
  DATENBANK record{};
  return GetFirst(record, kGeschaeftsjahr) && vlba98::itotwo(record.Geschaeftsjahr.Jahr - vlba98::firstYear, yearCode);
}

} // namespace vldb98
