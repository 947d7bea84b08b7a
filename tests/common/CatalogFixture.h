#pragma once

// Set-up shared by the suites: files and tables under tests/data, a catalog loaded with a reporter that
// records its messages, a session (and with it a ConfigDocument) over that catalog, and golden
// files compared byte for byte.

#include "TestSupport.h"

#include "calc/Session.h"
#include "catalog/Database.h"
#include "catalog/Reporter.h"
#include "model/CWidget.h"
#include "model/ConfigDocument.h"

#include <QFile>
#include <QtTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>

inline QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeFileBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// Runs f while writes of this process and its children stop after `bytes` (the limit binds root
// too and stands in for a full disk); false when the limit could not be set.
template <typename F> bool withFileSizeLimit(rlim_t bytes, F f)
{
    struct rlimit saved {};
    getrlimit(RLIMIT_FSIZE, &saved);
    const struct rlimit small{bytes, saved.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const bool set = setrlimit(RLIMIT_FSIZE, &small) == 0;
    if (set)
        f();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, handler);
    return set;
}

inline QByteArray testDataBytes(const QString& relative)
{
    return fileBytes(testDataPath(relative));
}

// The rows of a table under tests/data: one a line, "#" lines and blank lines skipped. A table
// without rows fails the test that reads it, so a missing file cannot pass.
inline QStringList dataLines(const QString& relative)
{
    QStringList lines = QString::fromUtf8(testDataBytes(relative)).split('\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString& line) { return line.startsWith('#'); });
    if (lines.isEmpty())
        QTest::qFail(qPrintable("no rows in " + relative), __FILE__, __LINE__);
    return lines;
}

// A "|"-separated row's fields, trimmed.
inline QStringList dataFields(const QString& line)
{
    QStringList fields = line.split(QLatin1Char('|'));
    for (QString& field : fields)
        field = field.trimmed();
    return fields;
}

// The rows of a tab-separated table.
inline QList<QStringList> dataRows(const QString& relative)
{
    QList<QStringList> rows;
    for (const QString& line : dataLines(relative))
        rows << line.split('\t');
    return rows;
}

// The golden file's bytes; with RUNPLAN_UPDATE_GOLDEN=1 in the environment the file is first
// rewritten with what the test produced (to review with git diff).
inline QByteArray goldenBytes(const QByteArray& produced, const QString& relative)
{
    if (qEnvironmentVariableIntValue("RUNPLAN_UPDATE_GOLDEN") == 1) {
        QFile file(testDataPath(relative));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(produced);
    }
    return testDataBytes(relative);
}
#define COMPARE_GOLDEN(produced, relative)                                                             \
    do {                                                                                               \
        const QByteArray produced_ = (produced);                                                       \
        QCOMPARE(produced_, goldenBytes(produced_, relative));                                         \
    } while (false)

// A catalog file of tests/data loaded with a recording reporter.
struct LoadedCatalog {
    explicit LoadedCatalog(const QString& relative) : path(testDataPath(relative))
    {
        loaded = db.loadFile(path, &loadMessages);
    }
    // Loaded, valid and without a word.
    bool ready() const { return loaded && db.isValid() && loadMessages.messages.isEmpty(); }
    // The load's messages, one after another with a blank line between, the catalog's absolute
    // path shown by its file name: the form of the golden message files.
    QByteArray messageText() const
    {
        QString out;
        for (const QString& text : loadMessages.texts())
            out += QString(text).replace(path, QFileInfo(path).fileName()) + QStringLiteral("\n\n");
        return out.toUtf8();
    }

    QString path;
    Database db;
    RecordingReporter loadMessages;
    bool loaded = false;
};

// A session over a catalog of tests/data, as the main window holds one: the document starts with
// the first enabler placed, or, given a fixture name, with that fixture selected and the canvas reset.
struct CatalogSession : LoadedCatalog {
    explicit CatalogSession(const QString& relative, const QString& fixture = QString())
        : LoadedCatalog(relative), session(std::make_unique<Session>(db, &log))
    {
        if (!fixture.isEmpty()) {
            session->header().fixture = fixture;
            session->reset();
        }
    }
    ConfigDocument& doc() { return session->document(); }
    SupplyWidget* root() { return static_cast<SupplyWidget*>(doc().root()); }
    // A fresh canvas whose enabler feeds Feedwise, with a receiver below it (branch wire, then receiver).
    CWidget* feedwiseReceiver()
    {
        session->reset();
        root()->setOutputMode(Modes::feedwise());
        return doc().addReceiver();
    }

    RecordingReporter log; // what the session reported after loading
    std::unique_ptr<Session> session;
};
