#include "host/command/command_line.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <istream>
#include <ostream>

#include "host/command/commands.h"
#include "host/folder.h"
#include "host/version.h"

namespace zrl::command {

namespace {

constexpr const char* help_of_do = R"(
Steps:
  NAME            click a button, an option button or a check box (which turns over)
  NAME=TEXT       text field: put the text in, as if typed; check box: 0 or 1;
                  combo box: choose or type; list: choose the first item with that
                  text; scroll bar: move to that position
  NAME#I          list or combo box: choose the item at index I, from 0
  NAME.key=KEYS   table: choose the rows with these keys (A,B,C); NAME#I the row at
                  position I alone
  NAME.sort=COLUMN, NAME.filter=TEXT, NAME.window=FROM,COUNT
                  table: its order ("COLUMN desc" falls), its filter, the rows to print
  NAME.tick       a timer's tick
  FORM.close      close a dialog; FORM.NAME... is a control of a dialog
  answer=cancel   how the message boxes that follow are answered (default: ok)
  -               read steps from standard input, one a line

Examples:
  zrlconsole do general checkmid=1
  zrlconsole do --json general Combo1=german
)";

constexpr const char* help_of_messages = R"(
A filter has parts that must all hold: words that a row contains, and
  from:ann@example.com   the sender; from:example.com those of a domain
  to:bob                 a text of the recipient
  ip:192.0.2.7           the client; also ip:192.0.2.0/24
  reason:rbl             a text of the reason or keyword
Values with blanks stand in quotes.

Examples:
  zrlconsole messages --since 24h --filter 'from:example.net'
  zrlconsole messages --filter 'ip:192.0.2.0/24 reason:"your helo"' --csv --limit 1000
)";

constexpr const char* help_of_registry = R"(
Examples:
  zrlconsole registry get 'HKLM\SOFTWARE\Mirvan\dataprovider'
  zrlconsole registry set 'HKLM\SOFTWARE\Mirvan\debug' REG_DWORD 1
  zrlconsole registry delete 'HKLM\SOFTWARE\Mirvan\language'
)";

constexpr const char* help_of_list = R"(
Adding and removing does what the list's page does when its entry is typed and its
button pressed: the same entries leave other lists, and the proxy is told. Pages that
have one button for two lists take an entry off both. The exit status is 1 if an entry
was refused or missing.

Examples:
  zrlconsole list
  zrlconsole list add domains.black spam.example --comment "phishing wave" --expires 30d
  zrlconsole list show ips.black --filter 198.51. --json
  zrlconsole list export domains.black - | sort
)";

constexpr const char* help_of_lookup = R"(
Examples:
  zrlconsole lookup 198.51.100.7
  zrlconsole lookup --dns --json bob@example.net
)";

constexpr const char* help_of_script = R"(
The files share one global module and run in their order. Scripts have the object
WScript with Echo, Quit and Sleep, read files beside the first one, and may ask the
look-ups of the console in the folder, see docs/scripting.md.

Examples:
  zrlconsole script check.vbs
  zrlconsole script --check *.vbs
  zrlconsole script --call checkhelo mail.example.com checkhelo.vbs
)";

constexpr const char* help_of_all = R"(
Start with:
  zrlconsole init --sample     a folder with sample data
  zrlconsole serve             the console in the browser
  zrlconsole do general        the general page on the terminal
)";

// The parser of the command line; it fills `arguments` and yields the command that was given.
struct Parser {
  CLI::App app{"The administration console of the mail filter.", "zrlconsole"};
  Arguments arguments;
  CLI::App* init;
  CLI::App* serve;
  CLI::App* pages;
  CLI::App* act;
  CLI::App* messages;
  CLI::App* overview;
  CLI::App* script;
  CLI::App* registry;
  CLI::App* get;
  CLI::App* set;
  CLI::App* remove;
  CLI::App* list;
  CLI::App* list_show;
  CLI::App* list_add;
  CLI::App* list_remove;
  CLI::App* list_import;
  CLI::App* list_export;
  CLI::App* lookup;

  Parser() {
    app.set_version_flag("--version", std::string(version));
    app.add_option("--folder", arguments.folder, "The console's folder")->type_name("DIR");
    app.footer(help_of_all);
    app.require_subcommand(1);
    app.get_formatter()->column_width(34);

    init = app.add_subcommand("init", "Lay out the folder and an embedded database");
    init->add_flag("--sample", arguments.sample, "Fill it with lists, logs, mails and scripts");

    serve = app.add_subcommand("serve", "Run the console for browsers; prints the address to open");
    serve->add_option("--listen", arguments.serve.listen, "Where to listen (default 127.0.0.1:8025)")
        ->type_name("ADDRESS:PORT");
    CLI::Option* certificate =
        serve->add_option("--certificate", arguments.serve.certificate, "Serve TLS with this certificate")
            ->type_name("PEM");
    CLI::Option* key =
        serve->add_option("--key", arguments.serve.key, "The certificate's private key")->type_name("PEM");
    certificate->needs(key);
    key->needs(certificate);
    serve
        ->add_option("--host", arguments.serve.hosts,
                     "A further host name of this console, behind a proxy say; may be repeated")
        ->type_name("NAME")
        ->expected(1)
        ->take_all();
    serve->add_option("--tabs", arguments.serve.tabs, "How many tabs somebody may have open (default 64)")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 1000));
    serve->add_flag(
        "--require-audit", arguments.serve.audit_required,
        "Refuse actions while the audit log cannot be written; else only report that they are lost");
    serve->add_flag("--allow-root", arguments.serve.allow_root,
                    "Run even as root, as in a container that has no other account");

    pages = app.add_subcommand("pages", "List the pages: name, group, title");
    pages->add_flag("--json", arguments.json, "Print JSON");

    act = app.add_subcommand("do", "Show a page, run steps on it, print what it then holds");
    act->add_flag("--json", arguments.json, "Print one JSON object");
    act->add_flag("--start-programs", arguments.start_programs,
                  "Start the programs that the page asks for; else they are only recorded");
    act->add_option("--query", arguments.query, "Open the page with this query, as a link does")
        ->type_name("TEXT");
    act->add_option("PAGE", arguments.page, "The page's name")->required();
    act->add_option("STEP", arguments.steps, "What to do on it, see below");
    act->positionals_at_end();
    act->footer(help_of_do);

    messages = app.add_subcommand("messages", "Print what the proxy logged, the newest first");
    messages->add_option("--since", arguments.messages.since, "From then on: 24h, 7d, 2026-01-31")
        ->type_name("TIME");
    messages->add_option("--filter", arguments.messages.filter, "As on the page messages, see below")
        ->type_name("TEXT");
    messages->add_option("--limit", arguments.messages.limit, "At most so many rows (default 100)")
        ->type_name("N");
    CLI::Option* json = messages->add_flag("--json", arguments.json, "Print an array of objects");
    messages->add_flag("--csv", arguments.messages.csv, "Print comma-separated values")->excludes(json);
    messages->footer(help_of_messages);

    overview = app.add_subcommand("overview", "What the logs count, and what needs an eye");
    overview->add_option("--period", arguments.period, "day (the default), week or month")
        ->check(CLI::IsMember({"day", "week", "month"}))
        ->type_name("PERIOD");
    overview->add_flag("--json", arguments.json, "Print JSON");

    script = app.add_subcommand("script", "Run script files");
    script->add_flag("--check", arguments.script.check, "Compile them only");
    script->add_option("--call", arguments.script.call, "Then call NAME with INPUT and print its result")
        ->type_name("NAME INPUT")
        ->expected(2);
    script->add_option("FILE", arguments.script.files)->required();
    script->footer(help_of_script);

    registry = app.add_subcommand("registry", "Read and write the registry values");
    registry->require_subcommand(1);
    registry->footer(help_of_registry);
    get = registry->add_subcommand("get", "Print a value");
    get->add_option("PATH", arguments.path)->required();
    set = registry->add_subcommand("set", "Write a value");
    set->add_option("PATH", arguments.path)->required();
    set->add_option("KIND", arguments.kind, "REG_SZ or REG_DWORD")->required();
    set->add_option("VALUE", arguments.value)->required();
    remove = registry->add_subcommand("delete", "Delete a value");
    remove->add_option("PATH", arguments.path)->required();

    add_list();
  }

  void add_list() {
    list = app.add_subcommand("list", "The lists by name, and their entries");
    list->require_subcommand(0, 1);
    list->add_flag("--json", arguments.json, "Print JSON");
    list->footer(help_of_list);
    const auto add = [this](const char* name, const char* help) {
      CLI::App* command = list->add_subcommand(name, help);
      command->add_option("NAME", arguments.list.name, "The list, domains.black for instance")->required();
      return command;
    };
    list_show = add("show", "Print the entries");
    list_show->add_option("--filter", arguments.list.filter, "Only those that contain this")
        ->type_name("TEXT");
    list_show->add_option("--limit", arguments.list.limit, "At most so many")->type_name("N");
    list_add = add("add", "Put entries on the list");
    list_add->add_option("--comment", arguments.list.comment, "Why they are there")->type_name("TEXT");
    list_add
        ->add_option("--expires", arguments.list.expires,
                     "The last day, 2027-01-31, or in how many days, 30d")
        ->type_name("DAY");
    list_remove = add("remove", "Take entries off the list");
    for (CLI::App* command : {list_add, list_remove}) {
      command->add_option("ENTRY", arguments.list.entries, "As they would be typed on the list's page")
          ->required();
    }
    for (CLI::App* command : {list_show, list_add, list_remove}) {
      command->add_flag("--json", arguments.json, "Print JSON");
    }
    list_import = add("import", "Add the entries of a file, one a line");
    list_export = add("export", "Write the entries into a file, one a line");
    for (CLI::App* command : {list_import, list_export}) {
      command->add_option("FILE", arguments.list.file, "A path; - is standard input or output")->required();
    }
    list_export->add_flag("--overwrite", arguments.list.overwrite, "Replace an existing file");

    lookup = app.add_subcommand("lookup", "Say where an address, a domain or a word stands, and why");
    lookup->add_flag("--json", arguments.json, "Print one JSON object");
    lookup->add_flag("--dns", arguments.lookup.dns, "Ask the DNS too");
    lookup
        ->add_option("WHAT", arguments.lookup.what, "An IP number, network, domain, e-mail address or words")
        ->required();
    lookup->footer(help_of_lookup);
  }
};

int run_list(const Parser& parser, std::istream& in, std::ostream& out) {
  const Arguments& arguments = parser.arguments;
  if (*parser.list_show) return run_list_show(arguments, out);
  if (*parser.list_add) return run_list_add(arguments, out);
  if (*parser.list_remove) return run_list_remove(arguments, out);
  if (*parser.list_import) return run_list_import(arguments, in, out);
  if (*parser.list_export) return run_list_export(arguments, out);
  return run_list_names(arguments, out);
}

int run(const Parser& parser, const Program& program, std::istream& in, std::ostream& out,
        std::ostream& err) {
  const Arguments& arguments = parser.arguments;
  if (*parser.init) return run_init(arguments, out);
  if (*parser.pages) return run_pages(arguments, program, out);
  if (*parser.act) return run_do(arguments, program, in, out, err);
  if (*parser.list) return run_list(parser, in, out);
  if (*parser.messages) return run_messages(arguments, program, out, err);
  if (*parser.lookup) return run_lookup(arguments, program, out);
  if (*parser.overview) return run_overview(arguments, program, out);
  if (*parser.script) {
    ScriptOptions options = arguments.script;
    options.folder = arguments.folder;
    return run_script(options, in, out, err);
  }
  if (*parser.get) return run_registry_get(arguments, out);
  if (*parser.set) return run_registry_set(arguments);
  if (*parser.remove) return run_registry_delete(arguments);
  if (!program.serve) throw std::runtime_error("this build has no web host");
  ServeOptions options = arguments.serve;
  options.folder = arguments.folder;
  return program.serve(options, program.pages);
}

}  // namespace

int run_command_line(const std::vector<std::string>& arguments, const Program& program, std::istream& in,
                     std::ostream& out, std::ostream& err) {
  Parser parser;
  try {
    parser.app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    return parser.app.exit(error, out, err) == 0 ? success : usage_error;
  }
  try {
    if (parser.arguments.folder.empty()) parser.arguments.folder = default_folder();
    return run(parser, program, in, out, err);
  } catch (const UsageError& error) {
    err << "zrlconsole: " << error.what() << '\n';
    return usage_error;
  } catch (const std::exception& error) {
    err << "zrlconsole: " << error.what() << '\n';
    return failure;
  }
}

}  // namespace zrl::command
