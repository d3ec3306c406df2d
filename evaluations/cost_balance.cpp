// The balance of cost postings.
#include <limits>

#include "evaluations/figures.h"
#include "frame/call.h"
#include "frame/client.h"
#include "frame/snapshot.h"
#include "store/typed.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"
#include "vlfn98/cost_postings.h"
#include "vlfn98/costs.h"
#include "vlfn98/periods.h"
#include "vlfn98/structure_lines.h"

using namespace evaluations;
using namespace frame;
using namespace vldb98;

namespace {

constexpr size_t kMaxNumber = 9;

/// What a call asks for. Empty texts: not given.
struct CostRequest {
  int32_t client;
  std::string_view costCentre, costType;
  int32_t structure, period, year, dimension;
  std::string_view reference;
};

Outcome tooLong(const char *what, std::string_view value) {
  Outcome outcome = inadmissible(ZELKERR_uzl_Kontonr, what);
  outcome.fill.replace(outcome.fill.find("%s"), 2, value);
  return outcome;
}

Outcome checkNumbers(std::string_view costCentre, std::string_view costType) {
  if (vlba98::trimmed(costCentre).empty() && vlba98::trimmed(costType).empty())
    return {ZELKERR_uzl_Kontonr, resources::kCostCentreOrType};
  if (costCentre.size() > kMaxNumber) return tooLong("Die Kostenstelle %s ist", costCentre);
  if (costType.size() > kMaxNumber) return tooLong("Die Kostenart %s ist", costType);
  return {};
}

Outcome checkYear(Store &store, int32_t year) {
  char first[3];
  must(store.HoleMinJahr(first));
  const bool inRange = year >= vlba98::yearOfCode(first) && year <= vlba98::yearOfCode(store.HoleBuchJahr());
  return inRange && vlfn98::OeffneJahr(store, year) ? Outcome{}
                                                    : inadmissible(ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist");
}

/// The numbers that the visible account lines of a report structure name.
std::set<std::string> numbersOf(Store &store, int32_t structure) {
  std::set<std::string> numbers;
  forEachStored<AUFBAU>({store, kStructureTables[size_t(structure)]}, [&](const AUFBAU &line) {
    if ((line.Flags & vlfn98::kAccountLine) && !(line.Flags & vlfn98::kHidden))
      numbers.emplace(vlba98::trimmed(line.Name));
  });
  return numbers;
}

/// The cost centres of the open year that a call asks for, as what restricts the postings.
class CostCentres {
public:
  CostCentres(Store &store, const CostRequest &request) : store_(store), request_(request) {}

  /// \param selection its cost centres stay nothing when the call does not restrict them
  Outcome select(vlfn98::CostSelection &selection) {
    if (request_.structure >= int32_t(kStructureTables.size()))
      return inadmissible(ZELKERR_uzl_Kontonr, "Der Aufbau ist");
    const bool hasDimension = request_.dimension >= 0 && request_.dimension < vlfn98::kDimensions;
    const bool referenced = !request_.reference.empty() && vlfn98::IsKostrefActive(store_);
    if (request_.structure > 0) inStructure_ = numbersOf(store_, request_.structure);
    if (request_.costCentre.empty() && request_.structure <= 0 && !referenced) return {};

    auto &numbers = selection.costCentres.emplace();
    if (referenced) selection.reference = request_.reference;
    // In the order of numbers, from the one asked for.
    constexpr auto anyDimension = std::numeric_limits<int16_t>::min();
    forEach<KOST>(store_, from(request_.costCentre, anyDimension), [&](const KOST &centre) {
      const std::string_view number = vlba98::trimmed(centre.Nr);
      if (!request_.costCentre.empty() && number != request_.costCentre) return false;
      const bool wanted = (!hasDimension || centre.Dimension == request_.dimension) &&
                          (!referenced || vlba98::trimmed(centre.Kostref) == request_.reference) &&
                          (request_.structure <= 0 || inStructure_.count(std::string(number)));
      if (wanted) numbers.emplace(number);
      return true;
    });
    return numbers.empty() ? inadmissible(ZELKERR_uzl_Kontonr, "Die Kostenstelle ist") : Outcome{};
  }

private:
  Store &store_;
  const CostRequest &request_;
  std::set<std::string> inStructure_;
};

Outcome select(Store &store, const CostRequest &request, vlfn98::CostSelection &selection) {
  selection.costType = request.costType;
  selection.dimension = request.dimension;
  const bool known = request.costType.empty() || exists<SACHKONTO>(store, request.costType);
  if (!known || request.costType.size() >= sizeof SACHKONTO::Nr)
    return inadmissible(ZELKERR_uzl_Kontonr, "Die Kostenart ist");
  return CostCentres(store, request).select(selection);
}

Outcome costsOf(Store &store, const CostRequest &request, int64_t &euro) {
  if (Outcome opened = openQuietly(store, request.client); opened.result <= 0) return opened;
  if (Outcome checked = checkYear(store, request.year); checked.result <= 0) return checked;
  vlfn98::CostSelection selection;
  if (Outcome selected = select(store, request, selection); selected.result <= 0) return selected;
  int first = request.period, last = first;
  if (request.period == vlfn98::kYearOfCosts) {
    first = 1;
    last = vlfn98::kMonths;
  } else if (request.period >= vlfn98::kFirstQuarter && request.period < vlfn98::kYearOfCosts) {
    first = 3 * (request.period - vlfn98::kFirstQuarter) + 1;
    last = first + 2;
  } else if (request.period < 1 || request.period > vlfn98::kMonths)
    return {ZELKERR_uzl_Zeitraum, resources::kIsInadmissible, "Zeitraum"};
  const auto year = vlfn98::findFiscalYear(store, request.year).value_or(GESCHAEFTSJAHR{});
  waitForYear(store, kYearRecords, kKostenbeleg);
  const vlfn98::DateRange days = vlfn98::daysOfMonths(year, first, last);
  euro = vlfn98::sumOfCosts(store, days, selection).euroBalance();
  return {};
}

std::string_view given(const char *text) {
  return text ? text : "";
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleKostenSaldo(int32_t Mandantennummer, const char *Kontonummer, const char *Kostenart,
                                          int32_t Aufbau, int32_t Zeitraum, int32_t Jahr, int32_t Fehlermeldungen,
                                          int32_t Ausgabeart, char *Eurosaldo, int32_t Dimension, const char *Kostref) {
  static constexpr Export self{.name = "ZELK_HoleKostenSaldo", .fetch = true};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer),
              text("Kostenart:", Kostenart), number("Aufbau:", Aufbau), number("Zeitraum:", Zeitraum),
              number("Jahr:", Jahr), messages(Fehlermeldungen), number("Ausgabeart:", Ausgabeart),
              out("Eurosaldo:", Eurosaldo), number("Dimension:", Dimension), text("Kostref:", Kostref)},
             [&](ThreadContext *context) {
               const CostRequest request{Mandantennummer,
                                         vlba98::trimmed(given(Kontonummer)),
                                         vlba98::trimmed(given(Kostenart)),
                                         Aufbau,
                                         Zeitraum,
                                         Jahr,
                                         Dimension,
                                         vlba98::trimmed(given(Kostref))};
               Outcome outcome = checkForm(Ausgabeart);
               if (outcome.result > 0) outcome = checkNumbers(given(Kontonummer), given(Kostenart));
               if (outcome.result <= 0) return finish(*context, outcome);
               Store &store = context->store();
               int64_t euro = 0;
               inSnapshot(store, [&] {
                 outcome = costsOf(store, request, euro);
                 return outcome.result;
               });
               if (outcome.result > 0) outcome = deliver(Ausgabeart, {{Eurosaldo, euro}});
               return finish(*context, outcome);
             });
}
