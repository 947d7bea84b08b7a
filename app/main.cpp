#include "app/CommandLine.h"
#include "app/GuiReporter.h"
#include "app/Runplan.h"
#include "app/SplashScreen.h"
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
// order. 0 when it passes every check, 2 when it fails one, 1 when it could not be made (also
// for a project that was not read whole).
int printReport(const Runplan& window, bool opened, const QString& projectFile)
{
    if (!window.catalog()->isValid()) {
        writeErr(QStringLiteral("Runplan: the catalog %1 is not valid; no report.\n")
                     .arg(window.catalog()->path()));
        return 1;
    }
    if (projectFile.isEmpty()) {
        writeErr(QStringLiteral("Runplan: --report needs -nw and a project file.\n"));
        return 1;
    }
    // The reason a project was refused is already on standard error.
    if (!opened)
        return 1;
    // A report of part of a project would pass or fail a plan nobody drew.
    if (!window.notReadWholeReason().isEmpty()) {
        writeErr(QStringLiteral("Runplan: %1 was not read completely: it breaks off at %2.\n")
                     .arg(projectFile, window.notReadWholeReason()));
        return 1;
    }
    const AnalysisResult& result = window.lastResult();
    for (const auto& line : result.logLines())
        writeOut(line.first + QLatin1Char('\n'));
    return result.pass ? 0 : 2;
}
} // namespace

int main(int argc, char* argv[])
{
    QStringList rawArguments;
    for (int i = 1; i < argc; ++i)
        rawArguments.append(QString::fromLocal8Bit(argv[i]));
    const CommandLineOptions options = parseCommandLine(rawArguments);

    // Answered before any window exists.
    if (options.help) {
        writeOut(commandLineUsage());
        return 0;
    }
    if (options.version) {
        writeOut(versionText());
        return 0;
    }
    if (options.report && !options.unattended) {
        writeErr(QStringLiteral("Runplan: --report needs -nw and a project file.\n"));
        return 1;
    }
    // An unattended run needs no screen: without one it draws off screen.
    if (options.unattended && qEnvironmentVariableIsEmpty("DISPLAY") &&
        qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QT_WARNING_POP
    QApplication app(argc, argv);

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

    const bool opened = window.processCommandLine(QCoreApplication::arguments());
    if (options.report) {
        const int status = printReport(window, opened, options.projectFile);
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
    int status = app.exec();
    Reporter::setGlobal(nullptr);
    // A script must learn that the run had no catalog to work with; the message is already on stderr.
    if (options.unattended && status == 0 && !Database::instance()->isValid())
        status = 1;
    return status;
}
