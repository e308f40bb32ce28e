#include "Commands.h"
#include "ExportRun.h"

#include <memory>

namespace footprint
{

void AddExport(CLI::App& program, TCommand& selected)
{
    const auto options = std::make_shared<CExportOptions>();
    const auto seconds = std::make_shared<double>(60);
    CLI::App* const command = program.add_subcommand(
        "export", "Put the footprints of a fleet into tables. A damaged file is named and skipped. Into an output that "
                  "is there already, only what has changed is loaded again.");
    command->add_option("PATH", options->paths, "Footprint files, or folders with such files in them and below")
        ->required();
    command->add_option("-f,--format", options->format, "sqlite: a database; ndjson, csv: a file for each table")
        ->type_name("FORM")
        ->check(CLI::IsMember({"sqlite", "ndjson", "csv"}))
        ->capture_default_str();
    command
        ->add_option("-o,--output", options->output,
                     "The database, or the folder for the files; ndjson goes to standard output without it")
        ->type_name("OUT");
    command
        ->add_option("-j,--jobs", options->jobs, "Processes that load files, 1 to 1024; one for each core if not given")
        ->type_name("NUMBER")
        ->check(CLI::Range(1, 1024).description(""));
    command->add_option("--timeout", *seconds, "After so many seconds loading a file is given up, 0.1 to 86400")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 86400.0).description(""))
        ->capture_default_str();
    command->add_flag("--verify", options->verify, "Take files with a wrong checksum for damaged");
    command->add_flag("--redact", options->redact,
                      "Hide serial numbers, device ids, persons and file names, equal ones in the same way; the output "
                      "is always made anew");
    command->footer(Examples({{"footprint export archive -o fleet.sqlite", "a database of all below archive"},
                              {"footprint export archive --format csv -o tables", "tables/boards.csv and so on"}}));
    command->callback([options, seconds, &selected] {
        options->timeout = std::chrono::milliseconds(static_cast<std::int64_t>(*seconds * 1000));
        selected = [options](const COutputs& outputs) { return RunExport(*options, outputs); };
    });
}

} // namespace footprint
