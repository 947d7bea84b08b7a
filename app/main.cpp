#include "app/CommandLine.h"
#include "app/GuiReporter.h"
#include "app/Runplan.h"
#include "app/SplashScreen.h"
#include "app/Translations.h"
#include "catalog/Database.h"

#include <QApplication>
#include <QFont>
#include <QTimer>

#include <cstdio>

namespace
{
void writeOut(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void writeErr(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

// The analysis of a project as plain text: every line the analysis writes to the output log, in
// order, and the design report and bill of materials asked for. 0 when it passes every check, 2
// when it fails one (the files are written), 1 when it could not be made (also for a project
// that was not read whole) or a file could not be written.
int printReport(Runplan& window, bool opened, const CommandLineOptions& options)
{
    if (!window.catalog()->isValid()) {
        writeErr(QStringLiteral("Runplan: the catalog %1 is not valid; no report.\n")
                     .arg(window.catalog()->path()));
        return 1;
    }
    if (options.projectFile.isEmpty()) {
        writeErr(QStringLiteral("Runplan: --report needs -nw and a project file.\n"));
        return 1;
    }
    // The reason a project was refused is already on standard error.
    if (!opened)
        return 1;
    // A report of part of a project would pass or fail a plan nobody drew.
    if (!window.notReadWholeReason().isEmpty()) {
        writeErr(QStringLiteral("Runplan: %1 was not read completely: it breaks off at %2.\n")
                     .arg(options.projectFile, window.notReadWholeReason()));
        return 1;
    }
    const AnalysisResult& result = window.lastResult();
    if (options.report)
        for (const auto& line : result.logLines())
            writeOut(line.first + QLatin1Char('\n'));
    QString error;
    if (!options.exportReportFile.isEmpty() && !window.writeReport(options.exportReportFile, &error)) {
        writeErr(
            QStringLiteral("Runplan: cannot write the report %1: %2\n").arg(options.exportReportFile, error));
        return 1;
    }
    if (!options.exportBomFile.isEmpty() && !window.writeBillOfMaterials(options.exportBomFile, &error)) {
        writeErr(QStringLiteral("Runplan: cannot write the bill of materials %1: %2\n")
                     .arg(options.exportBomFile, error));
        return 1;
    }
    return result.pass ? 0 : 2;
}
} // namespace

int main(int argc, char* argv[])
{
    // Without any screen the program draws off screen; a run that wants the window then ends with
    // a message below instead of failing to start.
    const bool noScreen = qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
                          qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    if (noScreen)
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QT_WARNING_POP
    QApplication app(argc, argv);
    installTranslations(app);

    // The command line is read once, here, after Qt has taken out its own options ("-platform",
    // "-style", ...): "runplan -platform offscreen -nw ..." is as unattended as "runplan -nw ...".
    const CommandLineOptions options = parseCommandLine(QCoreApplication::arguments().mid(1));

    // Answered before any window exists.
    if (options.help) {
        writeOut(commandLineUsage());
        return 0;
    }
    if (options.version) {
        writeOut(versionText());
        return 0;
    }
    if ((options.report || options.requestsDesignExport()) && !options.unattended) {
        writeErr(QStringLiteral("Runplan: --report needs -nw and a project file.\n"));
        return 1;
    }
    if (noScreen && !options.unattended) {
        writeErr(QStringLiteral("Runplan: there is no display to show the window on; "
                                "use -nw for an unattended run.\n"));
        return 1;
    }

    QFont font = QApplication::font();
    font.setPointSizeF(8.5);
    QApplication::setFont(font);

    SplashScreen splash;
    splash.show();
    QTimer::singleShot(1500, &splash, &SplashScreen::killSplash);
    QCoreApplication::processEvents();

    QCoreApplication::setOrganizationName(QStringLiteral("Vorlux"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("vorlux.invalid"));
    QCoreApplication::setApplicationName(QStringLiteral("Runplan"));

    // Messages become message boxes at the desktop; unattended they go to standard error, so
    // nothing ever waits for a click. Chosen before the catalog loads.
    GuiReporter guiReporter;
    if (!options.unattended)
        Reporter::setGlobal(&guiReporter);

    Runplan window;
    QCoreApplication::processEvents();

    const bool opened = window.processCommandLine(options);
    if (options.report || options.requestsDesignExport()) {
        const int status = printReport(window, opened, options);
        Reporter::setGlobal(nullptr);
        return status;
    }
    if (window.isRunningBatchCommands()) {
        // The closing splash must not end the run; the commands do.
        app.setQuitOnLastWindowClosed(false);
        QObject::connect(&window, &Runplan::commandsDone, &app, &QCoreApplication::quit);
        QObject::connect(&window, &Runplan::batchFinished, &app,
                         [](int status) { QCoreApplication::exit(status); });
    } else {
        QObject::connect(&app, &QGuiApplication::lastWindowClosed, &app, &QCoreApplication::quit);
    }

    window.show();
    // Only a person can answer whether to recover what a crashed run left behind.
    if (!options.unattended)
        window.offerRecovery();
    int status = app.exec();
    Reporter::setGlobal(nullptr);
    // A script must learn that the run had no catalog to work with; the message is already on stderr.
    if (options.unattended && status == 0 && !Database::instance()->isValid())
        status = 1;
    return status;
}
