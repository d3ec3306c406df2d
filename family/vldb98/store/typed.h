/// The store as our own code uses it, above the operations: records by their type, keys by their values, and a failure
/// of the store as an exception, which cannot be mistaken for "there is none".
///
///     if (auto batch = find<STAPEL>(store, number)) …
///     forEach<ZAHLZIEL>(store, [&](const ZAHLZIEL &term) { … });
///     forEach<KOST>(store, from(number), [&](const KOST &centre) { return same(centre, number); });
///     find<PERSONENKONTO>({store, kDebitor}, number);
///
/// A key is written down as the values of its fields, in their order and as many of them as matter: the fields left out
/// are the least. Its form is the schema's: whether a number or a text stands there, how wide, how padded. Texts are
/// cut to the field, a number that is none or does not fit is refused at once (KeyRefused, a fault of the program).
#pragma once

#include <concepts>
#include <exception>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

#include "records/key_writer.h"
#include "store/store.h"

namespace vldb98 {

/// The store could not do what it was asked. The frame makes it ZELKERR_Datenbank.
class StoreFailed : public std::exception {
public:
  const char *what() const noexcept override { return "the record store failed"; }
};

/// For the operations, which return non-zero for done.
inline void must(int done) {
  if (!done) throw StoreFailed();
}

/// Where the records of a type lie: their member in DATENBANK, and their table where there is one only (-1: several).
template <class Record> struct RecordTraits;
template <class Record, int number, Record DATENBANK::*in> struct RecordIn {
  static constexpr int table = number;
  static constexpr Record DATENBANK::*member = in;
};
constexpr int kSeveralTables = -1;
#define VLDB_RECORD(record, table, member)                                                                             \
  template <> struct RecordTraits<record> : RecordIn<record, table, &DATENBANK::member> {}
VLDB_RECORD(FIRMENSTAMM, kFirmenstamm, Firmenstamm);
VLDB_RECORD(FISTA_EXT, kFistaExt, FistaExt);
VLDB_RECORD(GESCHAEFTSJAHR, kGeschaeftsjahr, Geschaeftsjahr);
VLDB_RECORD(SACHKONTO, kSachkonto, Sachkonto);
VLDB_RECORD(PERSONENKONTO, kSeveralTables, Personenkonto);
VLDB_RECORD(KOST, kKost, Kost);
VLDB_RECORD(STAPEL, kStapel, Stapel);
VLDB_RECORD(BATCHBUCHUNG, kBatchbuchung, Batchbuchung);
VLDB_RECORD(SPLIT, kSplit, Split);
VLDB_RECORD(KOBU, kKobu, Kobu);
VLDB_RECORD(ZAHLZIEL, kZahlziel, Zahlziel);
VLDB_RECORD(STEUSA, kSteusa, Steusa);
VLDB_RECORD(KURSE, kKurse, Kurse);
VLDB_RECORD(AUFBAU, kSeveralTables, Aufbau);
VLDB_RECORD(DMS_ID, kDmsId, DmsId);
VLDB_RECORD(KOSCHA, kKoscha, Koscha);
VLDB_RECORD(KOSCHA_ZEILE, kKoschaZeile, KoschaZeile);
VLDB_RECORD(KOMBINATION, kKombination, Kombination);
VLDB_RECORD(BUCHUNGSBELEG, kBuchungsbeleg, Buchungsbeleg);
VLDB_RECORD(KOSTENBELEG, kKostenbeleg, Kostenbeleg);
VLDB_RECORD(OPBELEG, kSeveralTables, Opbeleg);
VLDB_RECORD(OPHISTORIE, kSeveralTables, Ophistorie);
VLDB_RECORD(BENUTZER, kBenutzer, Benutzer);
VLDB_RECORD(KONTOPROTOKOLL, kKontoprotokoll, Kontoprotokoll);
#undef VLDB_RECORD

/// A store with what is meant in it: a table and a key of it. A store alone is the type's own table by its primary key.
/// DATENBANK as the record is for whoever does not know the table before.
struct In {
  In(Store &in) : store(in) {}
  In(Store &in, FileNumber named, int32_t select = 0) : store(in), file(named), selector(select) {}
  Store &store;
  int32_t file = -1;
  int32_t selector = 0; ///< for reads that position: other than 0 waits for who writes the table
};

namespace detail {

template <class Record> FileNumber fileOf(const In &in) {
  if constexpr (!std::is_same_v<Record, DATENBANK>)
    if (in.file < 0 && RecordTraits<Record>::table >= 0) return FileNumber(RecordTraits<Record>::table);
  if (in.file < 0) throw KeyRefused();
  return FileNumber(in.file);
}

template <class Record> Record &recordIn(DATENBANK &buffer) {
  if constexpr (std::is_same_v<Record, DATENBANK>)
    return buffer;
  else
    return buffer.*RecordTraits<Record>::member;
}

/// \param operation one of the store's, given the buffer, the found flag and the file number
template <class Record, class Operation> std::optional<Record> read(const In &in, Operation &&operation) {
  uint8_t found = 0;
  if constexpr (std::is_same_v<Record, DATENBANK>) {
    std::optional<DATENBANK> record(std::in_place);
    must(operation(*record, found, fileOf<Record>(in)));
    if (!found) record.reset();
    return record;
  } else {
    DATENBANK buffer;
    must(operation(buffer, found, fileOf<Record>(in)));
    if (!found) return std::nullopt;
    return recordIn<Record>(buffer);
  }
}

} // namespace detail

/// The key of a file number with these values in its first fields.
template <class... Values> SCHLUESSEL keyOf(FileNumber file, const Values &...values) {
  KeyWriter writer(file);
  (writer.add(values), ...);
  return writer.key();
}
/// A key that is built already.
inline const SCHLUESSEL &keyOf(FileNumber, const SCHLUESSEL &key) {
  return key;
}

/// The record with exactly this key. Where several have it, the first.
template <class Record, class... Values> std::optional<Record> find(In in, const Values &...values) {
  return detail::read<Record>(in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.UsedGet(buffer, keyOf(file, values...), found, file);
  });
}

template <class Record, class... Values> bool exists(In in, const Values &...values) {
  const FileNumber file = detail::fileOf<Record>(in);
  uint8_t found = 0;
  must(in.store.Used(keyOf(file, values...), found, file));
  return found;
}

/// The first record whose key is at least this one.
template <class Record, class... Values> std::optional<Record> atLeast(In in, const Values &...values) {
  return detail::read<Record>(in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetGeExt(buffer, keyOf(file, values...), found, file, ZELK_ENG_DEFAULT, in.selector);
  });
}
/// The last record whose key is at most this one.
template <class Record, class... Values> std::optional<Record> atMost(In in, const Values &...values) {
  return detail::read<Record>(in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetLeExt(buffer, keyOf(file, values...), found, file, ZELK_ENG_DEFAULT, in.selector);
  });
}

template <class Record> std::optional<Record> first(In in) {
  return detail::read<Record>(in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetFirstExt(buffer, found, file, ZELK_ENG_DEFAULT, in.selector);
  });
}
template <class Record> std::optional<Record> last(In in) {
  return detail::read<Record>(in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetLastExt(buffer, found, file, ZELK_ENG_DEFAULT, in.selector);
  });
}
/// The record after the one that was read last.
template <class Record> std::optional<Record> next(In in) {
  return detail::read<Record>(
      in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) { return in.store.GetNextExt(buffer, found, file); });
}
/// The record before the one that was read last.
template <class Record> std::optional<Record> previous(In in) {
  return detail::read<Record>(
      in, [&](DATENBANK &buffer, uint8_t &found, FileNumber file) { return in.store.GetPrevExt(buffer, found, file); });
}

/// Where a walk begins: the values of a key. Lasts as long as they do.
template <class... Values> struct From {
  std::tuple<const Values &...> values;
  SCHLUESSEL key(FileNumber file) const {
    return std::apply([&](const Values &...each) { return keyOf(file, each...); }, values);
  }
};
template <class... Values> From<Values...> from(const Values &...values) {
  return {std::tie(values...)};
}
/// Two keys, both included.
struct Between {
  SCHLUESSEL lower, upper;
};

namespace detail {

/// \param start,step read the first record and the next one; \param visit see forEach
template <class Record, class Start, class Step, class Visit>
void walk(const In &in, Start &&start, Step &&step, Visit &&visit) {
  const FileNumber file = fileOf<Record>(in);
  DATENBANK buffer{};
  uint8_t found = 0;
  Record &record = recordIn<Record>(buffer);
  for (must(start(buffer, found, file)); found; must(step(buffer, found, file))) {
    if constexpr (std::is_void_v<std::invoke_result_t<Visit &, Record &>>)
      visit(record);
    else if (!visit(record))
      return;
  }
}

inline auto nextIn(Store &store) {
  return [&store](DATENBANK &buffer, uint8_t &found, FileNumber file) { return store.GetNextExt(buffer, found, file); };
}

} // namespace detail

/// Every record in the order of the key. \param visit gets the record; where it returns something, false ends the walk.
/// Where it reads the same table itself, the walk goes on from there
template <class Record, class Visit> void forEach(In in, Visit &&visit) {
  const auto start = [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetFirstExt(buffer, found, file, ZELK_ENG_DEFAULT, in.selector);
  };
  detail::walk<Record>(in, start, detail::nextIn(in.store), visit);
}
/// Every record whose key is at least the one given.
template <class Record, class... Values, class Visit> void forEach(In in, From<Values...> from, Visit &&visit) {
  const auto start = [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetGeExt(buffer, from.key(file), found, file, ZELK_ENG_DEFAULT, in.selector);
  };
  detail::walk<Record>(in, start, detail::nextIn(in.store), visit);
}
/// Every record whose key lies between two keys, both included.
template <class Record, class Visit> void forEach(In in, const Between &range, Visit &&visit) {
  const auto start = [&](DATENBANK &buffer, uint8_t &found, FileNumber file) {
    return in.store.GetRangeExt(buffer, range.lower, range.upper, found, file);
  };
  detail::walk<Record>(in, start, detail::nextIn(in.store), visit);
}
/// Every record, in the order of the table itself.
template <class Record, class Visit> void forEachStored(In in, Visit &&visit) {
  detail::walk<Record>(
      in,
      [&](DATENBANK &buffer, uint8_t &found, FileNumber file) { return in.store.StepFirstExt(buffer, found, file); },
      [&](DATENBANK &buffer, uint8_t &found, FileNumber file) { return in.store.StepNextExt(buffer, found, file); },
      visit);
}

/// Inserts a record; a number that the table assigns is written back.
template <class Record> void insert(In in, Record &record) {
  DATENBANK buffer{};
  detail::recordIn<Record>(buffer) = record;
  must(in.store.Insert(buffer, detail::fileOf<Record>(in)));
  record = detail::recordIn<Record>(buffer);
}
/// Makes a record that was read earlier the one that was read last, for update and for the steps of a walk.
template <class Record> void makeCurrent(In in, const Record &record) {
  DATENBANK buffer{};
  detail::recordIn<Record>(buffer) = record;
  in.store.setCurrent(buffer, detail::fileOf<Record>(in));
}
/// Puts a record in the place of the one that was read last.
template <class Record> void update(In in, const Record &record) {
  DATENBANK buffer{};
  detail::recordIn<Record>(buffer) = record;
  must(in.store.Update(buffer, detail::fileOf<Record>(in)));
}

} // namespace vldb98
