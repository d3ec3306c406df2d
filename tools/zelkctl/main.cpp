// zelkctl: provisions books and drives the exports of zelk98 from a shell.
#include <CLI/CLI.hpp>

#include <functional>

#include "platform/system.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/verbs.h"

namespace {

const char kOptions[] = "Optionen";

// The option library speaks English; what people meet here is said in German.
class GermanFormatter : public CLI::Formatter {
public:
  GermanFormatter() {
    label("OPTIONS", "OPTIONEN");
    label("Usage", "Aufruf");
    label("Options", "Optionen");
    label("Positionals", "Angaben");
    label("Subcommands", "Befehle");
    label("SUBCOMMAND", "BEFEHL");
    label("REQUIRED", "(Pflicht)");
    label("Needs", "(nur mit)");
    label("TEXT", "");
    label("INT", "");
    column_width(30);
  }
};

std::string germanError(const CLI::App *app, const CLI::Error &error) {
  // The option library names the option, or what was typed, before or after its sentence.
  struct Sentence {
    const char *error, *german;
  };
  static constexpr Sentence sentences[] = {{"RequiredError", "Es fehlt eine Angabe"},
                                           {"RequiresError", "Eine Angabe fehlt zu einer anderen"},
                                           {"ConversionError", "Eine Angabe ist keine Zahl"},
                                           {"ValidationError", "Eine Angabe ist nicht zulässig"}};
  const CLI::App *command = app;
  std::string path;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
    path += command->get_name() + " ";
  }
  const std::string help = "\nHilfe: " + app->get_name() + " " + path + "--hilfe\n";
  const bool hasCommands = !command->get_subcommands([](const CLI::App *) { return true; }).empty();
  const std::vector<std::string> unknown = app->remaining(true);
  if (!unknown.empty() && unknown.front().substr(0, 1) == "-") return "Unbekannte Option: " + unknown.front() + help;
  if (!unknown.empty() && hasCommands) return "Unbekannter Befehl: " + path + unknown.front() + help;
  std::string text = "Eine Angabe passt nicht", what = error.what();
  for (const Sentence &sentence : sentences)
    if (error.get_name() == sentence.error) text = sentence.german;
  if (what == "A subcommand is required") what = "BEFEHL";
  for (std::string_view english : {" is required", "The following argument was not expected: ",
                                   "The following arguments were not expected: ", "Could not convert: "})
    if (size_t at = what.find(english); at != std::string::npos) what.erase(at, english.size());
  if (size_t at = what.find(" requires "); at != std::string::npos) what.replace(at, 10, " nur mit ");
  if (size_t at = what.find(" not in "); at != std::string::npos) what.replace(at, 8, "; zulässig: ");
  // Its name is that of the command.
  if (dynamic_cast<const CLI::ExtrasError *>(&error)) text = "Eine Angabe ist unbekannt oder zu viel";
  if (hasCommands && error.get_name() == std::string("ConversionError"))
    text = "Eine Angabe ist weder Befehl noch Zahl";
  return text + ": " + what + help;
}

} // namespace

int main(int argc, char **argv) {
  using namespace zelkctl;
  watchOutput();
  CLI::App app("Richtet Bücher ein und bedient die Schnittstelle zelk98.", "zelkctl");
  app.set_help_flag("--hilfe,--help,-h", "Diese Hilfe zeigen")->group(kOptions);
  app.set_version_flag("--version", std::string("zelkctl ") + ZELK_VERSION, "Die Version zeigen")->group(kOptions);
  app.formatter(std::make_shared<GermanFormatter>());
  app.failure_message(germanError);
  app.footer(
      "Exitcodes: 0 getan; 1 etwas wurde abgelehnt, das Übrige ist getan; 2 nicht oder nicht zu Ende getan;\n"
      "3 die Ausgabe konnte nicht geschrieben werden (Datenträger voll, Leser fort), in den Büchern ist getan, was\n"
      "zu tun war.");
  app.allow_windows_style_options(false); // "/" begins a path
  app.require_subcommand(1);

  std::function<int()> chosen;
  std::string path, kind = "sachkonten", from, to;
  int32_t client = 0, batch = 0, code = 0, order = 0;
  auto verb = [&](CLI::App &parent, const char *name, const char *what, std::function<int()> work) {
    CLI::App *sub = parent.add_subcommand(name, what);
    sub->group("Befehle");
    sub->get_help_ptr()->group(kOptions);
    if (work) sub->callback([&chosen, work] { chosen = work; });
    return sub;
  };
  auto clientOf = [&](CLI::App *sub) { sub->add_option("MANDANT", client, "Mandantennummer")->required(); };

  verb(app, "einrichten",
       "Ein Programmverzeichnis mit leerer Datenbank anlegen und zum Verzeichnis der Schnittstelle machen",
       [&] { return provision(path); })
      ->add_option("VERZEICHNIS", path, "Das Programmverzeichnis")
      ->required();
  verb(app, "anlegen", "Einen Mandanten aus einem Ordner von CSV-Dateien anlegen", [&] { return createClient(path); })
      ->add_option("ORDNER", path, "Der Ordner des Mandanten")
      ->required();
  std::string target;
  bool removeSource = false;
  CLI::App *copied =
      verb(app, "kopieren", "Einen Mandanten aus der Datenbankdatei auf den eingestellten Server kopieren, oder zurück",
           [&] { return copyClient(client, target, removeSource); });
  clientOf(copied);
  copied->add_option("ZIEL", target, "server oder datei")
      ->required()
      ->check(CLI::IsMember({"server", "datei"}).description(""));
  copied->add_flag("--verschieben", removeSource, "Den Mandanten danach dort löschen, woher er kommt")->group(kOptions);
  verb(app, "mandanten", "Die Mandanten auflisten", [] { return listClients(); });

  CLI::App *accounts = verb(app, "konten", "Die Konten eines Mandanten auflisten",
                            [&] { return listAccounts(client, kind, order, from); });
  clientOf(accounts);
  accounts->option_defaults()->group(kOptions);
  accounts->add_option("--art", kind, "sachkonten (Vorgabe), kreditoren, debitoren oder kostenstellen")
      ->check(CLI::IsMember({"sachkonten", "kreditoren", "debitoren", "kostenstellen"}).description(""));
  accounts->add_option("--sortierung", order, "0 nach Nummer (Vorgabe), 1 nach Kürzel, 2 nach Name")
      ->check(CLI::Range(0, 2).description(""));
  accounts->add_option("--ab", from, "Erst ab diesem Wert der Sortierung");

  CLI::App *freeNumber = verb(app, "frei", "Die nächste freie Kontonummer eines Mandanten vorschlagen",
                              [&] { return showFreeNumber(client, kind, from, to); });
  clientOf(freeNumber);
  freeNumber->add_option("ART", kind, "sachkonten, kreditoren oder debitoren")
      ->required()
      ->check(CLI::IsMember({"sachkonten", "kreditoren", "debitoren"}).description(""));
  freeNumber->option_defaults()->group(kOptions);
  freeNumber->add_option("--von", from, "Kleinste Kontonummer des Bereichs");
  freeNumber->add_option("--bis", to, "Größte Kontonummer des Bereichs");

  BatchValues batchValues;
  CLI::App *batches = verb(
      app, "stapel",
      "Die Stapel eines Mandanten zeigen (auch kurz: stapel MANDANT [STAPEL]), anlegen, ändern, leeren, löschen", {});
  auto showBatches = [&] { return batch ? showBatch(client, batch) : listBatches(client); };
  auto batchOf = [&](CLI::App *sub) {
    clientOf(sub);
    sub->add_option("STAPEL", batch, "Stapelnummer")->required();
  };
  CLI::Option *clientOfBatches = batches->add_option("MANDANT", client, "Mandantennummer");
  batches->add_option("STAPEL", batch, "Stapelnummer: dessen Buchungen zeigen");
  batches->callback([&, batches, clientOfBatches, showBatches] {
    if (!batches->get_subcommands().empty()) return;
    if (clientOfBatches->empty()) throw CLI::RequiredError("MANDANT");
    chosen = showBatches;
  });
  CLI::App *batchesShown =
      verb(*batches, "zeigen", "Die Stapel auflisten, oder die Buchungen eines Stapels", showBatches);
  clientOf(batchesShown);
  batchesShown->add_option("STAPEL", batch, "Stapelnummer: dessen Buchungen zeigen");
  auto batchOptions = [&](CLI::App *sub) {
    sub->option_defaults()->group(kOptions);
    sub->add_option("--wiederkehr", batchValues.recurrence, "Wiederkehr in Monaten, 0 bis 99");
    auto yesNo = [&](const char *name, std::optional<bool> &value, const char *what) {
      sub->add_option_function<std::string>(
             name, [&value](const std::string &answer) { value = answer == "ja"; }, what)
          ->check(CLI::IsMember({"ja", "nein"}).description(""));
    };
    yesNo("--transitorisch", batchValues.transitory, "ja oder nein");
    yesNo("--abstimm0", batchValues.reconciliation, "ja oder nein: Abstimmung");
  };
  CLI::App *newBatch =
      verb(*batches, "anlegen", "Einen Stapel anlegen", [&] { return createBatch(client, batch, batchValues); });
  clientOf(newBatch);
  newBatch->add_option("NAME", batchValues.name, "Sein Name, höchstens 40 Zeichen")->required();
  batchOptions(newBatch);
  newBatch->add_option("--nummer", batch, "Seine Nummer; Vorgabe: die nächste freie");
  CLI::App *changedBatch = verb(*batches, "aendern", "Angaben eines Stapels ändern; was nicht genannt wird, bleibt",
                                [&] { return changeBatch(client, batch, batchValues); });
  batchOf(changedBatch);
  batchOptions(changedBatch);
  changedBatch->add_option("--name", batchValues.name, "Sein Name, höchstens 40 Zeichen");
  batchOf(verb(*batches, "leeren", "Alle Buchungen eines Stapels löschen",
               [&] { return deleteBatch(client, batch, false); }));
  batchOf(verb(*batches, "loeschen", "Einen Stapel mit seinen Buchungen löschen",
               [&] { return deleteBatch(client, batch, true); }));

  TermValues term;
  std::string whichTerm;
  CLI::App *terms = verb(app, "zahlungsziel", "Die Zahlungsziele eines Mandanten anlegen, ändern und zeigen", {});
  terms->require_subcommand(1);
  auto termOf = [&](CLI::App *sub) {
    clientOf(sub);
    sub->add_option("ZAHLUNGSZIEL", whichTerm, "Nummer oder Kürzel")->required();
  };
  auto termOptions = [&](CLI::App *sub) {
    sub->option_defaults()->group(kOptions);
    sub->add_option("--skontotage1", term.days1, "Erste Skontofrist in Tagen");
    sub->add_option("--skontosatz1", term.rate1, "Erster Skontosatz in Prozent, z. B. 3,00");
    sub->add_option("--skontotage2", term.days2, "Zweite, längere Skontofrist in Tagen");
    sub->add_option("--skontosatz2", term.rate2, "Zweiter, kleinerer Skontosatz in Prozent");
    sub->add_option("--zahltage", term.days, "Zahlungsfrist ohne Abzug in Tagen");
    sub->add_option("--tag-im-monat", term.dayOfMonth, "Tag, an dem zu zahlen ist, 1 bis 31; 0: jeder");
    sub->add_option("--monate-plus", term.months, "Folgemonate, 0 bis 99");
    sub->add_option("--zahlungsart", term.method, "Zahlungsart, 0 bis 5");
    sub->add_option("--bemerkung", term.remark, "Bemerkung, höchstens 40 Zeichen");
  };
  CLI::App *newTerm = verb(*terms, "anlegen", "Ein Zahlungsziel anlegen", [&] { return createTerm(client, term); });
  clientOf(newTerm);
  newTerm->add_option("KUERZEL", term.shortName, "Sein Kürzel, höchstens 10 Zeichen")->required();
  termOptions(newTerm);
  CLI::App *changedTerm = verb(*terms, "aendern", "Angaben eines Zahlungsziels ändern; was nicht genannt wird, bleibt",
                               [&] { return changeTerm(client, whichTerm, term); });
  termOf(changedTerm);
  termOptions(changedTerm);
  changedTerm->add_option("--kuerzel", term.shortName, "Sein Kürzel, höchstens 10 Zeichen");
  termOf(verb(*terms, "zeigen", "Ein Zahlungsziel zeigen", [&] { return showTerm(client, whichTerm); }));
  clientOf(verb(*terms, "liste", "Die Zahlungsziele auflisten", [&] { return listTerms(client); }));

  CLI::App *postings = verb(app, "buchen", "Buchungen aus einer CSV-Datei in einen Stapel einfügen",
                            [&] { return importPostings(client, batch, path); });
  clientOf(postings);
  postings->add_option("STAPEL", batch, "Stapelnummer")->required();
  postings->add_option("DATEI", path, "Die CSV-Datei")->required();

  ItemQuery items;
  CLI::App *openItems =
      verb(app, "op", "Die offenen Posten eines Mandanten oder eines Kontos zeigen, oder die historischen",
           [&] { return listItems(client, items); });
  clientOf(openItems);
  openItems->add_option("KONTO", items.account, "Kontonummer; ohne sie die Posten aller Konten");
  openItems->option_defaults()->group(kOptions);
  openItems->add_option("--art", items.kind, "debi oder kred; Vorgabe: die des Kontos, ohne Konto debi")
      ->check(CLI::IsMember({"debi", "kred"}).description(""));
  CLI::Option *historical = openItems->add_flag("--historisch", items.historical,
                                                "Die Posten, wie sie nach jeder Zahlung waren, aller Geschäftsjahre");
  openItems->add_option("--ab", items.from, "Nur historische, die an diesem Tag oder später bezahlt wurden")
      ->needs(historical);
  openItems->add_option("--beleg", items.document, "Nur historische mit dieser Belegnummer")->needs(historical);
  openItems->add_option("--op", items.openItem, "Nur historische mit dieser OP-Belegnummer")->needs(historical);
  openItems->add_flag("--csv", items.csv, "Alle Angaben als CSV-Datei ausgeben");

  CLI::App *dunning = verb(app, "mahnstufe", "Die Mahnstufe eines Debitors zeigen: die höchste seiner offenen Posten",
                           [&] { return showDunningLevel(client, items.account, items.csv); });
  clientOf(dunning);
  dunning->add_option("KONTO", items.account, "Kontonummer")->required();
  dunning->add_flag("--csv", items.csv, "Als CSV-Datei ausgeben")->group(kOptions);

  FigureQuery figures;
  auto kindOption = [&](CLI::App *sub, const char *what) {
    sub->add_option("--art", figures.kind, what)
        ->check(CLI::IsMember({"sako", "kred", "debi", "kost"}).description(""))
        ->group(kOptions);
  };
  auto costCentreOptions = [&](CLI::App *sub, const char *dimension = "Dimension der Kostenstelle; Vorgabe: 0") {
    sub->add_option("--dimension", figures.dimension, dimension)->group(kOptions);
    sub->add_option("--kostref", figures.reference, "Referenz der Kostenstelle")->group(kOptions);
  };
  auto csvOption = [&](CLI::App *sub) {
    sub->add_flag("--csv", figures.csv, "Als CSV-Datei ausgeben")->group(kOptions);
  };
  const char *const kindOfAccount = "sako, kred, debi oder kost; Vorgabe: die des Kontos, ohne Konto sako";
  CLI::App *balances = verb(app, "saldo", "Den Saldo eines Kontos oder die Salden aller Konten einer Art zeigen",
                            [&] { return showBalances(client, figures); });
  clientOf(balances);
  balances->add_option("KONTO", figures.account, "Kontonummer; ohne sie alle Konten der Art");
  kindOption(balances, kindOfAccount);
  balances->add_option("--datum", figures.date, "Saldo am Ende dieses Tages; Vorgabe: der des laufenden Geschäftsjahrs")
      ->group(kOptions);
  costCentreOptions(balances, "Dimension der Kostenstelle; Vorgabe: 0, ohne Konto alle, mit einer Summe für jede");
  csvOption(balances);

  CLI::App *turnover = verb(app, "umsatz", "Die Umsätze eines Kontos nach Monaten, Quartalen und im Jahr zeigen",
                            [&] { return showTurnover(client, figures); });
  clientOf(turnover);
  turnover->add_option("KONTO", figures.account, "Kontonummer")->required();
  kindOption(turnover, "sako, kred, debi oder kost; Vorgabe: die des Kontos");
  turnover->add_option("--jahr", figures.year, "Geschäftsjahr; Vorgabe: das laufende")->group(kOptions);
  costCentreOptions(turnover);
  csvOption(turnover);

  CLI::App *budgets = verb(app, "sollwerte", "Die Sollwerte (Planwerte) der Konten einer Art zeigen",
                           [&] { return showBudgets(client, figures); });
  clientOf(budgets);
  kindOption(budgets, "sako (Vorgabe), kred, debi oder kost");
  budgets->add_option("--jahr", figures.year, "Geschäftsjahr; Vorgabe: das laufende")->group(kOptions);
  budgets->add_option("--sortierung", figures.order, "0 nach Nummer (Vorgabe), 1 nach Kürzel, 2 nach Name")
      ->check(CLI::Range(0, 2).description(""))
      ->group(kOptions);
  budgets->add_option("--ab", figures.from, "Erst ab diesem Wert der Sortierung")->group(kOptions);
  costCentreOptions(budgets);
  budgets->add_flag("--alle", figures.all, "Auch Konten ohne Sollwerte")->group(kOptions);
  csvOption(budgets);

  int32_t structure = 0;
  CLI::App *structures = verb(app, "aufbau", "Den Aufbau einer Auswertung als Gliederung zeigen",
                              [&] { return showStructure(client, structure, figures); });
  clientOf(structures);
  structures->add_option("KLASSE", structure, "Klasse des Aufbaus, 0 bis 32")->required();
  structures->add_flag("--alle", figures.all, "Auch verborgene Zeilen")->group(kOptions);
  csvOption(structures);

  std::string day;
  int32_t user = 0;
  CLI::App *posted = verb(app, "verbuchen", "Die Buchungen eines Stapels verbuchen und den Stapel leeren",
                          [&] { return postToLedger(client, batch, day, user); });
  batchOf(posted);
  posted->option_defaults()->group(kOptions);
  posted->add_option("--tag", day, "Tag der Verbuchung, TT.MM.JJJJ; Vorgabe: heute");
  posted->add_option("--benutzer", user, "Nummer des Benutzers, der bei den Zahlungen stehen soll");

  verb(app, "fehlertext", "Name und Text eines Ergebniscodes zeigen", [&] { return showResultText(code); })
      ->add_option("CODE", code, "Der Code, -103 bis 2")
      ->required();

  CLI::App *protocol = verb(app, "protokoll", "Das Protokoll der Aufrufe ein- und ausschalten und zeigen", {});
  protocol->require_subcommand(1);
  verb(*protocol, "an", "Jedes Programm, das ab jetzt startet, protokolliert seine Aufrufe",
       [] { return switchProtocol(true); });
  verb(*protocol, "aus", "Programme, die ab jetzt starten, protokollieren nicht mehr",
       [] { return switchProtocol(false); });
  verb(*protocol, "datei", "Die Datei für Programme wählen, die das Protokoll selbst starten",
       [&] { return chooseProtocolFile(path); })
      ->add_option("DATEI", path, "Die Textdatei")
      ->required();
  verb(*protocol, "zeigen", "Das Protokoll zeigen", [&] {
    return showProtocol(path);
  })->add_option("DATEI", path, "Eine andere Protokolldatei als die, in die jetzt geschrieben wird");

  std::vector<std::string> arguments = platform::commandLine(argc, argv);
  std::vector<const char *> pointers;
  for (const std::string &argument : arguments)
    pointers.push_back(argument.c_str());
  try {
    app.parse(int(pointers.size()), pointers.data());
  } catch (const CLI::ParseError &error) {
    return finishOutput(app.exit(error) == 0 ? kDone : kFailed);
  }
  int exitCode = kFailed;
  try {
    exitCode = chosen();
  } catch (const std::exception &error) {
    complain(std::string("Ein unerwarteter Fehler ist aufgetreten: ") + error.what());
  }
  // Closes the database, which folds its log into the file.
  ZELK_Detach();
  return finishOutput(exitCode);
}
