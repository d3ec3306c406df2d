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
    label("TEXT", "");
    label("INT", "");
    column_width(30);
  }
};

std::string germanError(const CLI::App *app, const CLI::Error &error) {
  // The option library names the option, or what was typed, in front of or behind its sentence.
  struct Sentence {
    const char *error, *german;
  };
  static constexpr Sentence sentences[] = {{"RequiredError", "Es fehlt eine Angabe"},
                                           {"ExtrasError", "Eine Angabe ist unbekannt oder zu viel"},
                                           {"ConversionError", "Eine Angabe ist keine Zahl"},
                                           {"ValidationError", "Eine Angabe ist nicht zulässig"}};
  std::string text = "Eine Angabe passt nicht", what = error.what();
  for (const Sentence &sentence : sentences)
    if (error.get_name() == sentence.error) text = sentence.german;
  if (what == "A subcommand is required") what = "BEFEHL";
  for (std::string_view english : {" is required", "The following argument was not expected: ",
                                   "The following arguments were not expected: ", "Could not convert: "})
    if (size_t at = what.find(english); at != std::string::npos) what.erase(at, english.size());
  if (size_t at = what.find(" not in "); at != std::string::npos) what.replace(at, 8, "; zulässig: ");
  return text + ": " + what + "\nHilfe: " + app->get_name() + " --hilfe\n";
}

} // namespace

int main(int argc, char **argv) {
  using namespace zelkctl;
  CLI::App app("Richtet Bücher ein und bedient die Schnittstelle zelk98.", "zelkctl");
  app.set_help_flag("--hilfe,-h", "Diese Hilfe zeigen")->group(kOptions);
  app.set_version_flag("--version", std::string("zelkctl ") + ZELK_VERSION, "Die Version zeigen")->group(kOptions);
  app.formatter(std::make_shared<GermanFormatter>());
  app.failure_message(germanError);
  app.allow_windows_style_options(false); // "/" begins a path
  app.require_subcommand(1);

  std::function<int()> chosen;
  std::string path, kind = "sachkonten", from;
  int32_t client = 0, batch = 0, code = 0, order = 0;
  auto verb = [&](CLI::App &parent, const char *name, const char *what, std::function<int()> work) {
    CLI::App *sub = parent.add_subcommand(name, what);
    sub->group("Befehle");
    sub->get_help_ptr()->group(kOptions);
    sub->callback([&chosen, work] { chosen = work; });
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

  CLI::App *batches = verb(app, "stapel", "Die Stapel eines Mandanten auflisten, oder die Buchungen eines Stapels",
                           [&] { return batch ? showBatch(client, batch) : listBatches(client); });
  clientOf(batches);
  batches->add_option("STAPEL", batch, "Stapelnummer: dessen Buchungen zeigen");

  CLI::App *postings = verb(app, "buchen", "Buchungen aus einer CSV-Datei in einen Stapel einfügen",
                            [&] { return importPostings(client, batch, path); });
  clientOf(postings);
  postings->add_option("STAPEL", batch, "Stapelnummer")->required();
  postings->add_option("DATEI", path, "Die CSV-Datei")->required();

  verb(app, "fehlertext", "Name und Text eines Ergebniscodes zeigen", [&] { return showResultText(code); })
      ->add_option("CODE", code, "Der Code, -103 bis 2")
      ->required();

  std::vector<std::string> arguments = platform::commandLine(argc, argv);
  std::vector<const char *> pointers;
  for (const std::string &argument : arguments)
    pointers.push_back(argument.c_str());
  try {
    app.parse(int(pointers.size()), pointers.data());
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? kDone : kFailed;
  }
  int exitCode = kFailed;
  try {
    exitCode = chosen();
  } catch (const std::exception &error) {
    complain(std::string("Ein unerwarteter Fehler ist aufgetreten: ") + error.what());
  }
  // Closes the database, which folds its log into the file.
  ZELK_Detach();
  return exitCode;
}
