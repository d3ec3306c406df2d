/// What the functions that deliver figures of one account have in common.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "frame/context.h"
#include "frame/messages.h"
#include "store/store.h"

namespace evaluations {

/// The account that a call is about.
struct AccountRequest {
  int32_t client;
  const char *number; ///< may be null
  int32_t kind;       ///< at the boundary: 1, 2, 4 or 8
  int32_t dimension;  ///< of a cost centre
  const char *reference;
};

/// An amount and where the caller wants it; null: nowhere.
struct Figure {
  char *buffer;
  int64_t hundredths;
};

/// Refuses with "%s unzulässig!". \param what UTF-8, with its verb: "Die Kostenstelle ist"
frame::Outcome inadmissible(ZelkResult code, std::string_view what);

/// -20 for an output form other than 1 to 3, else 1.
frame::Outcome checkForm(int32_t form);

/// -23 for a cost centre, -10 for another account.
frame::Outcome noSuchAccount(int32_t kind);

/// Reads the account in the open fiscal year.
/// \return 1; that there is none
frame::Outcome readAccount(vldb98::Store &store, const AccountRequest &account, vldb98::DATENBANK &record);

/// Resources of a client's fiscal year, by which its records (accounts, cost postings) and its entries are waited for.
/// The former is also the kind of the fetch of budget values, whatever their table.
constexpr vldb98::FileNumber kYearRecords = 117, kYearEntries = 118;

/// Waits for whoever changes records of a client's fiscal year. Takes nothing itself: what is read holds together
/// because it is read in a snapshot.
/// \param resource kYearRecords or kYearEntries
/// \param table    -1: all
/// \throws StoreFailed when it takes too long
void waitForYear(vldb98::Store &store, vldb98::FileNumber resource, int table);

/// Hands figures out, all of them or none: -2 where one that is wanted lies beyond ±999.999.999,99.
frame::Outcome deliver(int32_t form, std::initializer_list<Figure> figures);

} // namespace evaluations
