#include "app/CommandLine.h"

#include "catalog/Version.h"

CommandLineOptions parseCommandLine(const QStringList& arguments)
{
    CommandLineOptions options;
    int i = 0;
    const int count = arguments.size();
    auto takeValue = [&](QString* value) {
        if (i + 1 < count) {
            *value = arguments.at(++i);
            return true;
        }
        return false;
    };
    for (; i < count && arguments.at(i).contains(QLatin1Char('-')); ++i) {
        const QString& arg = arguments.at(i);
        QString value;
        if (arg == QLatin1String("--maximize-all")) {
            options.maximizeAll = true;
            takeValue(&options.maximizeAllFile);
        } else if (arg == QLatin1String("--maximize-fixture")) {
            options.maximizeFixture = true;
            takeValue(&options.maximizeFixtureFile);
        } else if (arg == QLatin1String("--fixture") || arg == QLatin1String("-f")) {
            if (takeValue(&value))
                options.selections.append({CommandLineOptions::Selection::Fixture, value});
        } else if (arg == QLatin1String("--power-supply") || arg == QLatin1String("-ps")) {
            if (takeValue(&value))
                options.selections.append({CommandLineOptions::Selection::PowerSupply, value});
        } else if (arg == QLatin1String("--max-circuit-load") || arg == QLatin1String("-ml")) {
            if (takeValue(&value))
                options.selections.append({CommandLineOptions::Selection::MaxCircuitLoad, value});
        } else if (arg == QLatin1String("-nw")) {
            options.unattended = true;
        } else if (arg == QLatin1String("--help")) {
            options.help = true;
        } else if (arg == QLatin1String("--version")) {
            options.version = true;
        } else if (arg == QLatin1String("--report")) {
            // The project to analyse is the next argument, whatever characters it holds.
            options.report = true;
            takeValue(&options.projectFile);
        } else if (arg == QLatin1String("--export-report")) {
            takeValue(&options.exportReportFile);
        } else if (arg == QLatin1String("--export-bom")) {
            takeValue(&options.exportBomFile);
        } else if (arg == QLatin1String("--")) {
            // Ends the options; the argument after it is the project, whatever it holds.
            if (i + 1 < count && options.projectFile.isEmpty())
                options.projectFile = arguments.at(i + 1);
            i = count;
            break;
        }
        // Anything else with a "-" is skipped.
    }
    // A project named by --report is the one analysed; otherwise the last argument left.
    if (i < count && options.projectFile.isEmpty())
        options.projectFile = arguments.last();
    return options;
}

QString commandLineUsage()
{
    return QStringLiteral(
        "Usage: runplan [options] [project.rpproj]\n"
        "\n"
        "Plans Dynaline runs of networked LED lighting. Without options the main window opens;\n"
        "a project file given last is opened in it.\n"
        "\n"
        "Options (read while an argument contains a \"-\"; \"--\" ends them, so that a project\n"
        "whose name holds a \"-\" can be given after it):\n"
        "  --maximize-all FILE        write the maximum count of every fixture at every line\n"
        "                             voltage to the CSV file FILE\n"
        "  --maximize-fixture FILE    the same for the selected fixture only\n"
        "  --fixture, -f NAME         select the fixture NAME (exact match)\n"
        "  --power-supply, -ps NAME   select the enabler NAME (any case)\n"
        "  --max-circuit-load, -ml A  select the circuit load A (\"15\", \"20\", \"Other\")\n"
        "  -nw                        unattended: no window, no dialogs; messages go to\n"
        "                             standard error and the program ends when done\n"
        "  --report FILE              with -nw: print the analysis of the project FILE to\n"
        "                             standard output (FILE is taken whatever it holds)\n"
        "  --export-report FILE       with -nw and a project file: write the project's design\n"
        "                             report to the PDF file FILE\n"
        "  --export-bom FILE          with -nw and a project file: write the project's bill of\n"
        "                             materials to the CSV file FILE\n"
        "  --help                     show this text\n"
        "  --version                  show the version\n"
        "  --                         end of the options: the next argument is the project\n"
        "\n"
        "Exit status: 0 when done; with --report, --export-report or --export-bom 2 when\n"
        "the project fails a check (the files are written);\n"
        "1 when a file cannot be read or written or the catalog is not valid.\n");
}

QString versionText()
{
    return QStringLiteral("%1 %2 (build %3-%4)\n")
        .arg(RunplanVersion::applicationName(), RunplanVersion::number())
        .arg(RunplanVersion::BuildDate)
        .arg(RunplanVersion::buildTag());
}
